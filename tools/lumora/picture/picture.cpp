// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/picture/picture.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <utility>

#include "tools/lumora/picture/jpeg_codec.h"
#include "tools/lumora/picture/jpeg_pixels.h"
#include "tools/lumora/picture/png_pixels.h"
#include "tools/lumora/support/failure.h"

namespace lumora::tools {
namespace {

constexpr int kNewJpegQuality = 95;

Failure NotEncoded(const char* format, const std::string& reason) {
  return {ExitCode::Failed, std::string("cannot encode the result as ") + format + ": " + reason};
}

}  // namespace

FileFormat FormatOfName(const std::string& path) {
  std::string ending = std::filesystem::path(path).extension().string();
  std::transform(ending.begin(), ending.end(), ending.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (ending == ".jpg" || ending == ".jpeg") return FileFormat::Jpeg;
  if (ending == ".png") return FileFormat::Png;
  throw Failure(ExitCode::Usage, path + ": the name must end in .jpg, .jpeg or .png");
}

Bytes EncodePng(const Image& picture) {
  try {
    return WritePngPixels(picture);
  } catch (const PngError& error) {
    throw NotEncoded("PNG", error.what());
  }
}

Bytes EncodeJpeg(const Image& picture) {
  try {
    return WriteJpegPixels(picture, kNewJpegQuality);
  } catch (const JpegError& error) {
    throw NotEncoded("JPEG", error.what());
  }
}

Bytes EncodeNew(const Image& picture, FileFormat format) {
  return format == FileFormat::Jpeg ? EncodeJpeg(picture) : EncodePng(picture);
}

Image Upright(Image pixels, int orientation) {
  if (SwapsSides(orientation)) pixels = Transposed(pixels);
  switch (orientation) {
    case 2:
    case 6:
      return FlippedAcross(std::move(pixels));
    case 3:
    case 7:
      return FlippedDown(FlippedAcross(std::move(pixels)));
    case 4:
    case 8:
      return FlippedDown(std::move(pixels));
    default:
      return pixels;
  }
}

}  // namespace lumora::tools
