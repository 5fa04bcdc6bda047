// SPDX-License-Identifier: Apache-2.0
// YUV 4:2:0 frames as bare bytes: the planes one after another, without padding or header.
#ifndef LUMORA_TOOLS_PICTURE_RAW_FRAME_H_
#define LUMORA_TOOLS_PICTURE_RAW_FRAME_H_

#include <cstdint>
#include <optional>
#include <string>

#include "lumora/pipeline/frame.h"
#include "tools/lumora/images/image.h"
#include "tools/lumora/support/files.h"

namespace lumora::tools {

/// The format of that name, in any case: nv21, nv12, i420; yuv stands for i420.
std::optional<PixelFormat> FormatNamed(std::string name);

/// How many bytes a frame has.
size_t RawFrameBytes(Size size);

/// A frame in memory of that many bytes.
ConstFrameView RawFrameView(const uint8_t* bytes, PixelFormat format, Size size);
FrameView RawFrameView(uint8_t* bytes, PixelFormat format, Size size);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_PICTURE_RAW_FRAME_H_
