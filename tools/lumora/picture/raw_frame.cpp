// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/picture/raw_frame.h"

#include <algorithm>
#include <cctype>

namespace lumora::tools {
namespace {

int ChromaSide(int side) {
  return (side + 1) / 2;
}

size_t Area(int width, int height) {
  return static_cast<size_t>(width) * static_cast<size_t>(height);
}

template <typename Byte>
BasicFrameView<Byte> ViewOf(Byte* bytes, PixelFormat format, Size size) {
  const int columns = ChromaSide(size.width), rows = ChromaSide(size.height);
  Byte* const chroma = bytes + Area(size.width, size.height);
  if (format == PixelFormat::I420) {
    return {format,
            size.width,
            size.height,
            {bytes, chroma, chroma + Area(columns, rows)},
            {size.width, columns, columns}};
  }
  return {format, size.width, size.height, {bytes, chroma, nullptr}, {size.width, 2 * columns, 0}};
}

}  // namespace

std::optional<PixelFormat> FormatNamed(std::string name) {
  std::transform(name.begin(), name.end(), name.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (name == "nv21") return PixelFormat::NV21;
  if (name == "nv12") return PixelFormat::NV12;
  if (name == "i420" || name == "yuv") return PixelFormat::I420;
  return std::nullopt;
}

size_t RawFrameBytes(Size size) {
  return Area(size.width, size.height) + 2 * Area(ChromaSide(size.width), ChromaSide(size.height));
}

ConstFrameView RawFrameView(const uint8_t* bytes, PixelFormat format, Size size) {
  return ViewOf(bytes, format, size);
}

FrameView RawFrameView(uint8_t* bytes, PixelFormat format, Size size) {
  return ViewOf(bytes, format, size);
}

}  // namespace lumora::tools
