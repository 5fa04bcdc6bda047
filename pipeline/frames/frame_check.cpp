// SPDX-License-Identifier: Apache-2.0
#include "pipeline/frames/frame_check.h"

#include <limits>
#include <string>

#include "pipeline/frames/frame_layout.h"
#include "pipeline/support/failure.h"

namespace lumora {
namespace {

std::string SizeText(int width, int height) {
  return std::to_string(width) + " x " + std::to_string(height);
}

/// `which` is "input" or "output". Makes no text for a frame that is as it should be.
template <typename Byte>
Status CheckFrame(const BasicFrameView<Byte>& frame, const char* which) {
  const auto subject = [which] { return "the " + std::string(which) + " frame"; };
  switch (frame.format) {
    case PixelFormat::NV21:
    case PixelFormat::NV12:
    case PixelFormat::I420:
      break;
    default:
      return Invalid(subject() + " has an unknown pixel format (" +
                     std::to_string(static_cast<int>(frame.format)) + ")");
  }
  if (frame.width < kSmallestSide || frame.height < kSmallestSide) {
    return Invalid(subject() + " is " + SizeText(frame.width, frame.height) +
                   " pixels, but at least " + SizeText(kSmallestSide, kSmallestSide) +
                   " are needed");
  }
  if (frame.width > kLargestSide || frame.height > kLargestSide) {
    return Failure(StatusCode::TooLarge, subject() + " is " + SizeText(frame.width, frame.height) +
                                             " pixels, but at most " +
                                             std::to_string(kLargestSide) +
                                             " are possible in each direction");
  }
  for (size_t plane = 0; plane < PlaneCount(frame.format); ++plane) {
    const auto part = [&] { return "plane " + std::to_string(plane) + " of " + subject(); };
    if (frame.planes[plane] == nullptr) return Invalid(part() + " is null");
    const int row_bytes = RowBytes(frame.format, plane, frame.width);
    if (frame.strides[plane] < row_bytes) {
      return Invalid(part() + " has a stride of " + std::to_string(frame.strides[plane]) +
                     " bytes, but its rows hold " + std::to_string(row_bytes));
    }
    if (frame.strides[plane] > std::numeric_limits<int>::max()) {
      return Invalid(part() + " has a stride of " + std::to_string(frame.strides[plane]) +
                     " bytes, which is more than can be addressed");
    }
  }
  return {};
}

/// `which` is "RGB" or "HSI". An image that is left out is fine.
Status CheckImage(const ConstFrameView& in, const ImageView& image, const std::string& which) {
  if (image.data == nullptr) return {};
  const std::string subject = "the " + which + " image";
  if (image.width != in.width || image.height != in.height) {
    return Invalid(subject + " is " + SizeText(image.width, image.height) +
                   " pixels, but the frame is " + SizeText(in.width, in.height));
  }
  if (image.channels != 3 && image.channels != 4) {
    return Invalid(subject + " has " + std::to_string(image.channels) +
                   " channels, but only 3 or 4 are possible");
  }
  const int row_bytes = image.width * image.channels;
  if (image.stride < row_bytes) {
    return Invalid(subject + " has a stride of " + std::to_string(image.stride) +
                   " bytes, but its rows hold " + std::to_string(row_bytes));
  }
  return {};
}

}  // namespace

Status CheckFrames(const ConstFrameView& in, const FrameView& out) {
  if (Status status = CheckFrame(in, "input"); !status.ok()) return status;
  if (Status status = CheckFrame(out, "output"); !status.ok()) return status;
  if (in.width != out.width || in.height != out.height) {
    return Invalid("the input frame is " + SizeText(in.width, in.height) +
                   " pixels, but the output frame is " + SizeText(out.width, out.height));
  }
  return {};
}

Status CheckConversion(const ConstFrameView& in, const ImageView& rgb, const ImageView& hsi) {
  if (Status status = CheckFrame(in, "input"); !status.ok()) return status;
  if (rgb.data == nullptr && hsi.data == nullptr) return Invalid("no image to convert to is given");
  if (Status status = CheckImage(in, rgb, "RGB"); !status.ok()) return status;
  return CheckImage(in, hsi, "HSI");
}

}  // namespace lumora
