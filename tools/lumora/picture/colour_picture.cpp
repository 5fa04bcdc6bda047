// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/picture/colour_picture.h"

#include <algorithm>
#include <utility>

#include "tools/lumora/images/colours.h"
#include "tools/lumora/images/resample.h"

namespace lumora::tools {
namespace {

constexpr SampleArea kPixel = {1, 1};
constexpr int kOpacity = 3;  // its channel

}  // namespace

Image ColourPicture::Bgr() const {
  return BgrOf(pixels_);
}

Frame420 ColourPicture::Frame() const {
  if (pixels_.channels() == 1) return GrayFrame(pixels_);
  ColourPlanes planes = PlanesOf(pixels_);
  return {Fitted(std::move(planes.y), EvenSize(size())), ChromaTo420(planes.cb, kPixel, size()),
          ChromaTo420(planes.cr, kPixel, size())};
}

void ColourPicture::Merge(const Frame420& before, const Frame420& after) {
  if (pixels_.channels() == 1) {
    MergeLuma(before.y, after.y, pixels_);
    return;
  }
  const Image luma = Differences(before.y, after.y);
  const Image blue = Differences(before.cb, after.cb), red = Differences(before.cr, after.cr);
  const Size even = after.y.size();
  const Image bgr = BgrOf(after.y, Interpolated(after.cb, even), Interpolated(after.cr, even));
  const int channels = pixels_.channels();
  for (int y = 0; y < pixels_.height(); ++y) {
    const uint8_t* const here = luma.Row(y);
    const uint8_t* const blues = blue.Row(y / 2);
    const uint8_t* const reds = red.Row(y / 2);
    const uint8_t* from = bgr.Row(y);
    uint8_t* to = pixels_.Row(y);
    for (int x = 0; x < pixels_.width(); ++x, from += 3, to += channels) {
      if ((here[x] | blues[x / 2] | reds[x / 2]) != 0) std::copy_n(from, 3, to);
    }
  }
}

bool ColourPicture::IsTransparent() const {
  if (pixels_.channels() <= kOpacity) return false;
  for (size_t at = kOpacity; at < pixels_.bytes().size(); at += kOpacity + 1) {
    if (pixels_.bytes()[at] != 255) return true;
  }
  return false;
}

Bytes ColourPicture::Encode(FileFormat format) const {
  return EncodeNew(pixels_, format);
}

}  // namespace lumora::tools
