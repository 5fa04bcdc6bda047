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

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_PICTURE_COLOUR_PICTURE_H_
