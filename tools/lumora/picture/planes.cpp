#include "tools/lumora/picture/planes.h"

#include <opencv2/imgproc.hpp>

namespace lumora::tools {
namespace {

template <typename Byte>
BasicFrameView<Byte> ViewOf(const cv::Mat& y, const cv::Mat& cb, const cv::Mat& cr) {
  BasicFrameView<Byte> view;
  view.format = PixelFormat::I420;
  view.width = y.cols;
  view.height = y.rows;
  view.planes = {y.data, cb.data, cr.data};
  view.strides = {static_cast<std::ptrdiff_t>(y.step), static_cast<std::ptrdiff_t>(cb.step),
                  static_cast<std::ptrdiff_t>(cr.step)};
  return view;
}

int RoundUpTo(int value, int multiple) {
  return (value + multiple - 1) / multiple * multiple;
}

cv::Mat Resampled(const cv::Mat& plane, cv::Size size, int interpolation) {
  if (plane.size() == size) return plane.clone();
  cv::Mat result;
  cv::resize(plane, result, size, 0, 0, interpolation);
  return result;
}

/// The size in which a plane of that sampling covers whole chroma samples of 4:2:0.
cv::Size WholeSize(cv::Size plane, SampleArea area) {
  return {RoundUpTo(plane.width, area.across % 2 == 0 ? 1 : 2),
          RoundUpTo(plane.height, area.down % 2 == 0 ? 1 : 2)};
}

cv::Size SizeIn420(cv::Size whole, SampleArea area) {
  return {whole.width * area.across / 2, whole.height * area.down / 2};
}

bool Shrinks(SampleArea area) {
  return area.across == 1 || area.down == 1;
}

}  // namespace

ConstFrameView Frame420::View() const {
  return ViewOf<const uint8_t>(y, cb, cr);
}

FrameView Frame420::MutableView() {
  return ViewOf<uint8_t>(y, cb, cr);
}

cv::Size EvenSize(cv::Size size) {
  return {RoundUpTo(size.width, 2), RoundUpTo(size.height, 2)};
}

cv::Mat Extended(const cv::Mat& plane, cv::Size size) {
  cv::Mat result;
  cv::copyMakeBorder(plane, result, 0, size.height - plane.rows, 0, size.width - plane.cols,
                     cv::BORDER_REPLICATE);
  return result;
}

cv::Mat ChromaTo420(const cv::Mat& plane, SampleArea area, cv::Size picture) {
  const cv::Size whole = WholeSize(plane.size(), area);
  const cv::Mat sampled = Resampled(Extended(plane, whole), SizeIn420(whole, area),
                                    Shrinks(area) ? cv::INTER_AREA : cv::INTER_LINEAR);
  const cv::Size even = EvenSize(picture);
  return sampled(cv::Rect(0, 0, even.width / 2, even.height / 2)).clone();
}

void MergeChroma(const cv::Mat& before, const cv::Mat& after, SampleArea area, cv::Mat& plane) {
  const cv::Size whole = WholeSize(plane.size(), area);
  const cv::Size in_420 = SizeIn420(whole, area);
  cv::Mat changed = before != after;
  changed = Resampled(Extended(changed, in_420), whole,
                      Shrinks(area) ? cv::INTER_NEAREST : cv::INTER_AREA) > 0;
  const cv::Mat samples =
      Resampled(Extended(after, in_420), whole, Shrinks(area) ? cv::INTER_LINEAR : cv::INTER_AREA);
  const cv::Rect inside({0, 0}, plane.size());
  samples(inside).copyTo(plane, changed(inside));
}

void MergeLuma(const cv::Mat& before, const cv::Mat& after, cv::Mat& plane) {
  const cv::Mat changed = before != after;
  const cv::Rect inside({0, 0}, plane.size());
  after(inside).copyTo(plane, changed(inside));
}

}  // namespace lumora::tools
