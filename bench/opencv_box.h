// SPDX-License-Identifier: Apache-2.0
// The peers of the cpu backend: what a user would write with OpenCV for one face, in the box around
// it only. Matrices are kept from frame to frame.
#ifndef LUMORA_BENCH_OPENCV_BOX_H_
#define LUMORA_BENCH_OPENCV_BOX_H_

#include <cstdint>
#include <opencv2/core.hpp>

#include "bench/scene.h"

namespace lumora::bench {

/// How a peer puts its result into the frame.
enum class Mask {
  kBlended,  ///< weighted by a mask of floats
  kCopied,   ///< where a mask of bytes says so
};

/// Brightens the first of a face's whitening ellipses, in place: the box to BGR, to HSV, V through
/// a table, and back. It does less than whitening: the skin is not measured, its mask is a plain
/// ellipse without features or a soft edge.
class OpenCvWhitening {
 public:
  OpenCvWhitening(Size size, const Face& face, Mask mask);
  void Run(uint8_t* frame);

 private:
  void Convert(const cv::Mat& luma, const cv::Mat& chroma);
  void PutBack(cv::Mat& luma, cv::Mat& chroma);

  Size size_;
  Ellipse ellipse_;
  Mask how_;
  cv::Rect box_;
  cv::Mat table_, bgr_, hsv_, value_, i420_, pairs_;
  cv::Mat mask_, inverse_, half_mask_, half_inverse_, blended_, blended_pairs_;
};

/// The warp of a face in the box of its circle, in place: luma and chroma planes by remap.
class OpenCvBoxSlimming {
 public:
  OpenCvBoxSlimming(Size size, const Face& face);
  /// Computes the warp for each sample: once for a face that stays where it is.
  void BuildMaps();
  void Run(uint8_t* frame);

 private:
  struct Map {
    cv::Mat x, y;
  };
  void Build(cv::Rect box, int pixels_a_sample, Map* map) const;

  Size size_;
  FaceWarp warp_;
  cv::Rect box_, half_box_;
  Map luma_map_, chroma_map_;
  cv::Mat luma_, chroma_;
};

}  // namespace lumora::bench

#endif  // LUMORA_BENCH_OPENCV_BOX_H_
