// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/picture/planes.h"

#include <algorithm>

#include "tools/lumora/images/colours.h"
#include "tools/lumora/images/resample.h"

namespace lumora::tools {
namespace {

template <typename Byte, typename Plane>
BasicFrameView<Byte> ViewOf(Plane& y, Plane& cb, Plane& cr) {
  const auto stride = [](const Image& plane) {
    return static_cast<std::ptrdiff_t>(plane.stride());
  };
  BasicFrameView<Byte> view;
  view.format = PixelFormat::I420;
  view.width = y.width();
  view.height = y.height();
  view.planes = {y.Row(0), cb.Row(0), cr.Row(0)};
  view.strides = {stride(y), stride(cb), stride(cr)};
  return view;
}

int RoundedUpTo(int value, int multiple) {
  return (value + multiple - 1) / multiple * multiple;
}

/// The size in which a plane of that sampling covers whole chroma samples of 4:2:0.
Size WholeSize(Size plane, SampleArea area) {
  return {RoundedUpTo(plane.width, area.across % 2 == 0 ? 1 : 2),
          RoundedUpTo(plane.height, area.down % 2 == 0 ? 1 : 2)};
}

Size SizeIn420(Size whole, SampleArea area) {
  return {whole.width * area.across / 2, whole.height * area.down / 2};
}

bool Shrinks(SampleArea area) {
  return area.across == 1 || area.down == 1;
}

/// Puts those samples of `from`, which is at least as large, into `plane` that are marked.
void TakeChanged(const Image& changed, const Image& from, Image& plane) {
  for (int y = 0; y < plane.height(); ++y) {
    const uint8_t* const marks = changed.Row(y);
    const uint8_t* const samples = from.Row(y);
    uint8_t* const to = plane.Row(y);
    for (int x = 0; x < plane.width(); ++x) to[x] = marks[x] != 0 ? samples[x] : to[x];
  }
}

}  // namespace

Image Differences(const Image& before, const Image& after) {
  Image differences(before.size());
  std::transform(before.bytes().begin(), before.bytes().end(), after.bytes().begin(),
                 differences.bytes().begin(),
                 [](uint8_t a, uint8_t b) { return static_cast<uint8_t>(a != b ? 255 : 0); });
  return differences;
}

ConstFrameView Frame420::View() const {
  return ViewOf<const uint8_t>(y, cb, cr);
}

FrameView Frame420::MutableView() {
  return ViewOf<uint8_t>(y, cb, cr);
}

Size EvenSize(Size size) {
  return {RoundedUpTo(size.width, 2), RoundedUpTo(size.height, 2)};
}

Frame420 GrayFrame(const Image& luma) {
  const Size even = EvenSize(luma.size());
  const Image gray({even.width / 2, even.height / 2}, 1, kNoColour);
  return {Fitted(luma, even), gray, gray};
}

Image ChromaTo420(const Image& plane, SampleArea area, Size picture) {
  const Size whole = WholeSize(plane.size(), area), in_420 = SizeIn420(whole, area);
  const Image extended = Fitted(plane, whole);
  const Size even = EvenSize(picture);
  return Fitted(Shrinks(area) ? Averaged(extended, in_420) : Interpolated(extended, in_420),
                {even.width / 2, even.height / 2});
}

void MergeChroma(const Image& before, const Image& after, SampleArea area, Image& plane) {
  const Size whole = WholeSize(plane.size(), area), in_420 = SizeIn420(whole, area);
  const Image differences = Fitted(Differences(before, after), in_420);
  const Image changed = Shrinks(area) ? Nearest(differences, whole) : Averaged(differences, whole);
  const Image extended = Fitted(after, in_420);
  TakeChanged(changed, Shrinks(area) ? Interpolated(extended, whole) : Averaged(extended, whole),
              plane);
}

void MergeLuma(const Image& before, const Image& after, Image& plane) {
  TakeChanged(Differences(before, after), after, plane);
}

}  // namespace lumora::tools
