// SPDX-License-Identifier: Apache-2.0
// A picture of 8-bit gray, BGR or BGRA pixels.
#ifndef LUMORA_TOOLS_PICTURE_COLOUR_PICTURE_H_
#define LUMORA_TOOLS_PICTURE_COLOUR_PICTURE_H_

#include "tools/lumora/picture/picture.h"

namespace lumora::tools {

class ColourPicture final : public Picture {
 public:
  explicit ColourPicture(Image pixels) : pixels_(std::move(pixels)) {}

  Size size() const override { return pixels_.size(); }
  Frame420 Frame() const override;
  void Merge(const Frame420& before, const Frame420& after) override;
  Image Bgr() const override;
  bool IsTransparent() const override;
  Bytes Encode(FileFormat format) const override;

 private:
  Image pixels_;
};

/// A 4:2:0 frame (without the columns and rows that made it even) as 8-bit BGR pixels.
Image BgrOf(const Frame420& frame, Size size);

/// 8-bit BGR pixels as a 4:2:0 frame.
Frame420 FrameOf(const Image& bgr);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_PICTURE_COLOUR_PICTURE_H_
