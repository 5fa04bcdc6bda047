// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/picture/jpeg_picture.h"

#include <utility>

#include "tools/lumora/images/colours.h"
#include "tools/lumora/images/resample.h"

namespace lumora::tools {
namespace {

Size Times(Size size, SampleArea area) {
  return {size.width * area.across, size.height * area.down};
}

/// A plane turned upright. Where the last sample stands for fewer pixels than the others, turning
/// moves the boundaries between samples, so that they have to be formed anew.
Image UprightPlane(Image plane, SampleArea area, Size picture, int orientation) {
  const bool whole = picture.width % area.across == 0 && picture.height % area.down == 0;
  if (whole || orientation == 1) return Upright(std::move(plane), orientation);
  Image turned = Upright(Fitted(Nearest(plane, Times(plane.size(), area)), picture), orientation);
  if (SwapsSides(orientation)) std::swap(area.across, area.down);
  const Size size = {(turned.width() + area.across - 1) / area.across,
                     (turned.height() + area.down - 1) / area.down};
  return Averaged(Fitted(std::move(turned), Times(size, area)), size);
}

/// A plane of which each pixel has a sample.
Image PerPixel(const Image& plane, SampleArea area, Size picture) {
  return Fitted(Interpolated(plane, Times(plane.size(), area)), picture);
}

}  // namespace

JpegPicture::JpegPicture(Bytes file, int orientation)
    : file_(std::move(file)), orientation_(orientation) {
  const JpegLayout layout = ReadJpegLayout(file_);
  areas_ = layout.areas;
  original_ = ReadJpegPlanes(file_);
  for (size_t i = 0; i < original_.size(); ++i) {
    original_[i] = UprightPlane(std::move(original_[i]), areas_[i], layout.size, orientation);
    planes_.push_back(original_[i]);
    if (SwapsSides(orientation)) std::swap(areas_[i].across, areas_[i].down);
  }
}

Frame420 JpegPicture::Frame() const {
  if (planes_.size() == 1) return GrayFrame(planes_[0]);
  return {Fitted(planes_[0], EvenSize(size())), ChromaTo420(planes_[1], areas_[1], size()),
          ChromaTo420(planes_[2], areas_[2], size())};
}

void JpegPicture::Merge(const Frame420& before, const Frame420& after) {
  MergeLuma(before.y, after.y, planes_[0]);
  if (planes_.size() == 1) return;
  MergeChroma(before.cb, after.cb, areas_[1], planes_[1]);
  MergeChroma(before.cr, after.cr, areas_[2], planes_[2]);
}

Image JpegPicture::Bgr() const {
  if (planes_.size() == 1) return BgrOf(planes_[0]);
  return BgrOf(planes_[0], PerPixel(planes_[1], areas_[1], size()),
               PerPixel(planes_[2], areas_[2], size()));
}

Bytes JpegPicture::Encode(FileFormat format) const {
  if (format == FileFormat::Png) return EncodePng(planes_.size() == 1 ? planes_[0] : Bgr());
  Bytes recoded = WriteJpegPlanes(planes_, file_, SwapsSides(orientation_));
  if (orientation_ != 1) return recoded;
  std::vector<Image> changed;
  for (size_t i = 0; i < planes_.size(); ++i) {
    changed.push_back(Differences(original_[i], planes_[i]));
  }
  return ReplaceJpegBlocks(file_, recoded, changed);
}

}  // namespace lumora::tools
