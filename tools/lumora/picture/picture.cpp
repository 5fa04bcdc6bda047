#include "tools/lumora/picture/picture.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <opencv2/imgcodecs.hpp>
#include <optional>

#include "tools/lumora/picture/colour_picture.h"
#include "tools/lumora/picture/jpeg_picture.h"
#include "tools/lumora/picture/jpeg_planes.h"
#include "tools/lumora/picture/metadata.h"
#include "tools/lumora/picture/png_chunks.h"
#include "tools/lumora/support/failure.h"

namespace lumora::tools {
namespace {

constexpr int kNewJpegQuality = 95;

bool StartsLikeJpeg(const Bytes& file) {
  return file.size() >= 3 && file[0] == 0xff && file[1] == 0xd8 && file[2] == 0xff;
}

Failure Unreadable(const std::string& name, const std::string& reason) {
  return {ExitCode::Unreadable, "cannot read " + name + ": " + reason};
}

void CheckSize(cv::Size size, const std::string& name) {
  const std::string pixels = "the picture has " + std::to_string(size.width) + " x " +
                             std::to_string(size.height) + " pixels, ";
  if (size.width < kSmallestSide || size.height < kSmallestSide) {
    throw Unreadable(name, pixels + "at least 32 x 32 are needed");
  }
  if (static_cast<int64_t>(size.width) * size.height > kMostPixels) {
    throw Unreadable(name, pixels + "more than 200 million");
  }
}

cv::Mat DecodeWithOpenCv(const Bytes& file, const std::string& name, int flags) {
  cv::Mat pixels;
  try {
    pixels = cv::imdecode(file, flags);
  } catch (const cv::Exception&) {
    // Reported below, like every picture that cannot be decoded.
  }
  if (pixels.empty()) throw Unreadable(name, "the picture's data are damaged");
  return pixels;
}

std::unique_ptr<Picture> DecodeJpeg(const Bytes& file, const std::string& name, int orientation,
                                    Notes& notes) {
  try {
    const JpegLayout layout = ReadJpegLayout(file);
    CheckSize(layout.size, name);
    if (layout.planar) return std::make_unique<JpegPicture>(file, orientation);
  } catch (const JpegError& error) {
    throw Unreadable(name, error.what());
  }
  notes.push_back("the JPEG does not hold luma and chroma planes; it is converted");
  const cv::Mat pixels =
      DecodeWithOpenCv(file, name, cv::IMREAD_COLOR | cv::IMREAD_IGNORE_ORIENTATION);
  return std::make_unique<ColourPicture>(Upright(pixels, orientation));
}

std::unique_ptr<Picture> DecodePng(const Bytes& file, const std::string& name, int orientation,
                                   Notes& notes) {
  CheckSize(PngSize(file), name);
  const std::optional<Bytes> essential = EssentialPng(file);
  if (!essential) throw Unreadable(name, "the file is cut short or damaged");
  cv::Mat pixels = DecodeWithOpenCv(*essential, name, cv::IMREAD_UNCHANGED);
  if (pixels.depth() == CV_16U) {
    notes.push_back("16 bits a channel are reduced to 8");
    pixels.convertTo(pixels, CV_8U, 1.0 / 257);
  }
  return std::make_unique<ColourPicture>(Upright(pixels, orientation));
}

Bytes EncodeWithOpenCv(const char* ending, const cv::Mat& picture,
                       const std::vector<int>& options) {
  Bytes file;
  if (!cv::imencode(ending, picture, file, options)) {
    throw Failure(ExitCode::Failed, std::string("cannot encode the result as ") + ending);
  }
  return file;
}

}  // namespace

LoadedPicture DecodePicture(const Bytes& file, const std::string& name) {
  LoadedPicture loaded;
  const bool jpeg = StartsLikeJpeg(file);
  if (!jpeg && !StartsLikePng(file)) throw Unreadable(name, "it is neither a JPEG nor a PNG");
  loaded.format = jpeg ? FileFormat::Jpeg : FileFormat::Png;
  loaded.orientation = ReadOrientation(file);
  const auto decode = jpeg ? DecodeJpeg : DecodePng;
  loaded.picture = decode(file, name, loaded.orientation, loaded.notes);
  return loaded;
}

FileFormat FormatOfName(const std::string& path) {
  std::string ending = std::filesystem::path(path).extension().string();
  std::transform(ending.begin(), ending.end(), ending.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (ending == ".jpg" || ending == ".jpeg") return FileFormat::Jpeg;
  if (ending == ".png") return FileFormat::Png;
  throw Failure(ExitCode::Usage, path + ": the name must end in .jpg, .jpeg or .png");
}

Bytes EncodePng(const cv::Mat& picture) {
  return EncodeWithOpenCv(".png", picture, {});
}

Bytes EncodeJpeg(const cv::Mat& picture) {
  return EncodeWithOpenCv(".jpg", picture, {cv::IMWRITE_JPEG_QUALITY, kNewJpegQuality});
}

Bytes EncodeNew(const cv::Mat& picture, FileFormat format) {
  return format == FileFormat::Jpeg ? EncodeJpeg(picture) : EncodePng(picture);
}

cv::Mat Upright(const cv::Mat& pixels, int orientation) {
  cv::Mat turned = pixels;
  if (SwapsSides(orientation)) cv::transpose(pixels, turned);
  cv::Mat result = turned;
  switch (orientation) {
    case 2:
    case 6:
      cv::flip(turned, result = cv::Mat(), 1);  // left and right
      break;
    case 3:
    case 7:
      cv::flip(turned, result = cv::Mat(), -1);  // both
      break;
    case 4:
    case 8:
      cv::flip(turned, result = cv::Mat(), 0);  // top and bottom
      break;
    default:
      break;
  }
  return result;
}

}  // namespace lumora::tools
