// SPDX-License-Identifier: Apache-2.0
// A picture from a JPEG file that stays in the file's own planes from beginning to end.
#ifndef LUMORA_TOOLS_PICTURE_JPEG_PICTURE_H_
#define LUMORA_TOOLS_PICTURE_JPEG_PICTURE_H_

#include "tools/lumora/picture/jpeg_planes.h"
#include "tools/lumora/picture/picture.h"

namespace lumora::tools {

class JpegPicture final : public Picture {
 public:
  /// `file` has a planar layout. Throws JpegError.
  JpegPicture(Bytes file, int orientation);

  Size size() const override { return planes_[0].size(); }
  Frame420 Frame() const override;
  void Merge(const Frame420& before, const Frame420& after) override;
  Image Bgr() const override;

  /// As JPEG, blocks without a changed sample keep their coefficients where the picture was stored
  /// upright; one that had to be turned is coded anew.
  Bytes Encode(FileFormat format) const override;

 private:
  Bytes file_;
  int orientation_;
  std::vector<SampleArea> areas_;  ///< of the planes below
  std::vector<Image> original_;    ///< upright planes as the file has them
  std::vector<Image> planes_;      ///< the same after Merge
};

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_PICTURE_JPEG_PICTURE_H_
