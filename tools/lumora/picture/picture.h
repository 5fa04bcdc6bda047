// SPDX-License-Identifier: Apache-2.0
// A picture file in memory: what the command needs of it, whatever its format.
#ifndef LUMORA_TOOLS_PICTURE_PICTURE_H_
#define LUMORA_TOOLS_PICTURE_PICTURE_H_

#include <memory>
#include <string>
#include <vector>

#include "tools/lumora/images/image.h"
#include "tools/lumora/picture/planes.h"
#include "tools/lumora/support/files.h"

namespace lumora::tools {

enum class FileFormat { Jpeg, Png };

/// Sentences for the user about what could not be kept.
using Notes = std::vector<std::string>;

/// Pictures have at least this many pixels across and down.
inline constexpr int kSmallestSide = 32;
/// Pictures with more pixels are refused: a small file can claim any size.
inline constexpr int64_t kMostPixels = 200'000'000;

/// A decoded picture, upright: the orientation that its metadata asks for has been carried out.
class Picture {
 public:
  virtual ~Picture() = default;

  virtual Size size() const = 0;

  /// The picture as the pipeline takes it.
  virtual Frame420 Frame() const = 0;

  /// Takes over those samples in which `after` differs from `before`, the frame from `Frame`. All
  /// others keep the values that they have in the file.
  virtual void Merge(const Frame420& before, const Frame420& after) = 0;

  /// 8-bit BGR for looking at it.
  virtual Image Bgr() const = 0;

  /// Whether some of it is not fully opaque.
  virtual bool IsTransparent() const { return false; }

  /// The picture as a file without metadata. JPEG to JPEG keeps quantisation and sampling; new
  /// JPEGs have quality 95.
  virtual Bytes Encode(FileFormat format) const = 0;
};

/// The format that a file name's ending asks for. Throws Failure (Usage) for an unknown one.
FileFormat FormatOfName(const std::string& path);

/// An 8-bit picture as a PNG file.
Bytes EncodePng(const Image& picture);
/// An 8-bit picture as a JPEG file of quality 95.
Bytes EncodeJpeg(const Image& picture);
/// One of the two.
Bytes EncodeNew(const Image& picture, FileFormat format);

/// Turns a plane or picture upright, by EXIF orientation 1..8.
Image Upright(Image pixels, int orientation);
/// Whether that orientation exchanges width and height.
constexpr bool SwapsSides(int orientation) {
  return orientation >= 5;
}

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_PICTURE_PICTURE_H_
