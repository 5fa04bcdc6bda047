// YUV planes: the 4:2:0 frame that the engine works on, and the way from other samplings and back.
#ifndef LUMORA_TOOLS_PICTURE_PLANES_H_
#define LUMORA_TOOLS_PICTURE_PLANES_H_

#include <opencv2/core.hpp>

#include "lumora/pipeline/frame.h"

namespace lumora::tools {

/// A full-range 4:2:0 frame of even size. A picture of odd size has its last column or row
/// repeated.
struct Frame420 {
  cv::Mat y, cb, cr;  ///< 8-bit; the chroma planes have half the columns and rows

  Frame420 Clone() const { return {y.clone(), cb.clone(), cr.clone()}; }
  ConstFrameView View() const;
  FrameView MutableView();
};

/// How many pixels share a sample of a plane, across and down: 1 x 1 for luma, 2 x 2 for the chroma
/// of 4:2:0, 2 x 1 for 4:2:2.
struct SampleArea {
  int across = 1;
  int down = 1;
};

/// `size` with both sides rounded up to even.
cv::Size EvenSize(cv::Size size);

/// A copy of the plane whose right column and bottom row are repeated up to that size.
cv::Mat Extended(const cv::Mat& plane, cv::Size size);

/// A chroma plane of any sampling as one of 4:2:0, for a picture of `picture` pixels.
cv::Mat ChromaTo420(const cv::Mat& plane, SampleArea area, cv::Size picture);

/// Puts into `plane` the samples of `after` where it differs from `before`, and leaves all others
/// untouched. `before` and `after` are 4:2:0 chroma planes, `plane` has the given sampling.
void MergeChroma(const cv::Mat& before, const cv::Mat& after, SampleArea area, cv::Mat& plane);

/// The same for luma.
void MergeLuma(const cv::Mat& before, const cv::Mat& after, cv::Mat& plane);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_PICTURE_PLANES_H_
