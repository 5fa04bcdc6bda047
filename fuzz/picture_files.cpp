// Picture files before and around their decoders: PNG chunks, JPEG planes and blocks, metadata.
#include <cstdint>
#include <opencv2/core.hpp>
#include <vector>

#include "fuzz/support/require.h"
#include "tools/lumora/picture/exif.h"
#include "tools/lumora/picture/jpeg_codec.h"
#include "tools/lumora/picture/jpeg_markers.h"
#include "tools/lumora/picture/jpeg_pixels.h"
#include "tools/lumora/picture/jpeg_planes.h"
#include "tools/lumora/picture/metadata.h"
#include "tools/lumora/picture/picture.h"
#include "tools/lumora/picture/png_chunks.h"
#include "tools/lumora/picture/png_pixels.h"

using lumora::fuzz::Require;
using lumora::tools::Bytes;
namespace tools = lumora::tools;

namespace {

int OrientationOf(const Bytes& file) {
  return tools::ExifOrientation(tools::ReadMetadata(file).exif);
}

void Png(const Bytes& file) {
  const cv::Size size = tools::PngSize(file);
  Require(size.width >= 0 && size.height >= 0, "sides are not negative");
  const auto essential = tools::EssentialPng(file);
  if (!essential) return;
  Require(tools::EssentialPng(*essential) == essential, "what is essential remains so");
  if (!size.empty() && int64_t{size.width} * size.height <= 1 << 16) {
    try {
      Require(tools::ReadPngPixels(*essential).pixels.size() == size, "all pixels are read");
    } catch (const tools::PngError&) {
      // Samples that cannot be decoded.
    }
  }
  constexpr size_t kSignatureAndHeader = 8 + 25;
  if (essential->size() < kSignatureAndHeader) return;  // only whole pictures reach the rest
  const Bytes with = tools::WithChunksOf(file, *essential);
  Require(with.size() >= essential->size(), "chunks are added");
  tools::WithChunks(tools::ProfileChunk(file), *essential);
}

void Jpeg(const Bytes& file) {
  Require(tools::ReadJpegMarkers(file).end <= file.size(), "the end lies inside");
  if (tools::ReadJpegMarkers(file).scans > 100) return;  // as slow as they are many
  const tools::JpegLayout layout = tools::ReadJpegLayout(file);
  if (int64_t{layout.size.width} * layout.size.height > 1 << 16) return;
  if (!layout.planar) {
    Require(tools::ReadJpegBgr(file).size() == layout.size, "all pixels are read");
    return;
  }
  const std::vector<cv::Mat> planes = tools::ReadJpegPlanes(file);
  Require(planes.size() == layout.areas.size(), "there is a plane an area");
  Require(planes[0].size() == layout.size, "luma has the size of the picture");
  std::vector<cv::Mat> turned(planes.size());
  for (size_t i = 0; i < planes.size(); ++i) cv::transpose(planes[i], turned[i]);
  tools::WriteJpegPlanes(turned, file, true);
  const Bytes recoded = tools::WriteJpegPlanes(planes, file, false);
  std::vector<cv::Mat> unchanged;
  for (const cv::Mat& plane : planes) {
    unchanged.push_back(cv::Mat::zeros(plane.size(), CV_8UC1));
  }
  const Bytes same = tools::ReplaceJpegBlocks(file, recoded, unchanged);
  const std::vector<cv::Mat> again = tools::ReadJpegPlanes(same);
  for (size_t i = 0; i < planes.size(); ++i) {
    Require(cv::norm(planes[i], again.at(i), cv::NORM_INF) == 0, "no block changes unasked");
  }
}

/// Whatever metadata a file has, its results are upright and their pixels are left alone.
void Metadata(const Bytes& file) {
  const cv::Mat picture(32, 32, CV_8UC1, cv::Scalar(9));
  const bool cut_short = tools::StartsLikePng(file) && !tools::EssentialPng(file);
  for (const bool jpeg : {false, true}) {
    if (cut_short && !jpeg) continue;  // only chunks of whole files are copied
    const Bytes plain = jpeg ? tools::EncodeJpeg(picture) : tools::EncodePng(picture);
    Bytes result = plain;
    tools::CopyMetadata(tools::ReadMetadata(file), file, picture.size(), result);
    Require(result.size() >= plain.size(), "metadata are added");
    Require(OrientationOf(result) == 1, "the result is upright");
    Bytes again = plain;
    tools::CopyMetadata(tools::ReadMetadata(result), result, picture.size(), again);
    Require(OrientationOf(again) == 1, "and remains so");
    const cv::Mat pixels = jpeg ? tools::ReadJpegPlanes(result)[0]
                                : tools::ReadPngPixels(*tools::EssentialPng(result)).pixels;
    Require(cv::norm(picture, pixels, cv::NORM_INF) <= 1, "its pixels are those of the picture");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const Bytes file(data, data + size);
  Metadata(file);
  if (tools::StartsLikePng(file)) {
    Png(file);
    return 0;
  }
  try {
    Jpeg(file);
  } catch (const tools::JpegError&) {
    // A file that is no whole JPEG is refused.
  }
  return 0;
}
