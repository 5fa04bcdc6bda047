// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/picture/decode_picture.h"

#include <optional>
#include <utility>

#include "tools/lumora/picture/colour_picture.h"
#include "tools/lumora/picture/exif.h"
#include "tools/lumora/picture/jpeg_codec.h"
#include "tools/lumora/picture/jpeg_markers.h"
#include "tools/lumora/picture/jpeg_picture.h"
#include "tools/lumora/picture/jpeg_pixels.h"
#include "tools/lumora/picture/jpeg_planes.h"
#include "tools/lumora/picture/metadata.h"
#include "tools/lumora/picture/png_chunks.h"
#include "tools/lumora/picture/png_pixels.h"
#include "tools/lumora/support/failure.h"

namespace lumora::tools {
namespace {

constexpr int kMostScans = 1000;  // a small progressive file could otherwise take hours

Failure Unreadable(const std::string& name, const std::string& reason) {
  return {ExitCode::Unreadable, "cannot read " + name + ": " + reason};
}

bool IsJpeg(const Bytes& file, const std::string& name) {
  const bool jpeg = StartsLikeJpeg(file);
  if (!jpeg && !StartsLikePng(file)) throw Unreadable(name, "it is neither a JPEG nor a PNG");
  return jpeg;
}

void CheckSize(Size size, const std::string& name) {
  const std::string pixels = "the picture has " + std::to_string(size.width) + " x " +
                             std::to_string(size.height) + " pixels, ";
  if (size.width < kSmallestSide || size.height < kSmallestSide) {
    throw Unreadable(name, pixels + "at least 32 x 32 are needed");
  }
  if (static_cast<int64_t>(size.width) * size.height > kMostPixels) {
    throw Unreadable(name, pixels + "more than 200 million");
  }
}

std::unique_ptr<Picture> DecodeJpeg(const Bytes& file, const std::string& name, int orientation,
                                    Notes& notes) {
  try {
    const JpegLayout layout = ReadJpegLayout(file);
    CheckSize(layout.size, name);
    if (ReadJpegMarkers(file).scans > kMostScans) {
      throw Unreadable(name, "the picture has more than " + std::to_string(kMostScans) + " scans");
    }
    if (layout.planar) return std::make_unique<JpegPicture>(file, orientation);
    notes.emplace_back("the JPEG does not hold luma and chroma planes; it is converted");
    return std::make_unique<ColourPicture>(Upright(ReadJpegBgr(file), orientation));
  } catch (const JpegError& error) {
    throw Unreadable(name, error.what());
  }
}

std::unique_ptr<Picture> DecodePng(const Bytes& file, const std::string& name, int orientation,
                                   Notes& notes) {
  CheckSize(PngSize(file), name);
  const std::optional<Bytes> essential = EssentialPng(file);
  if (!essential) throw Unreadable(name, "the file is cut short or damaged");
  try {
    PngPixels decoded = ReadPngPixels(*essential);
    if (decoded.reduced) notes.emplace_back("16 bits a channel are reduced to 8");
    return std::make_unique<ColourPicture>(Upright(std::move(decoded.pixels), orientation));
  } catch (const PngError&) {
    throw Unreadable(name, "the picture data is damaged");
  }
}

}  // namespace

DecodedPicture DecodePicture(const Bytes& file, const std::string& name) {
  DecodedPicture decoded;
  const bool jpeg = IsJpeg(file, name);
  decoded.format = jpeg ? FileFormat::Jpeg : FileFormat::Png;
  decoded.metadata = ReadMetadata(file);
  decoded.orientation = ExifOrientation(decoded.metadata.exif);
  const auto pixels = jpeg ? DecodeJpeg : DecodePng;
  decoded.picture = pixels(file, name, decoded.orientation, decoded.notes);
  return decoded;
}

Size StatedSize(const Bytes& start, const std::string& name) {
  Size size;
  try {
    size = IsJpeg(start, name) ? ReadJpegLayout(start).size : PngSize(start);
  } catch (const JpegError&) {
    return {};
  }
  if (!size.empty()) CheckSize(size, name);
  return size;
}

}  // namespace lumora::tools
