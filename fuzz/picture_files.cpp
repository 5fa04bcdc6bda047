// SPDX-License-Identifier: Apache-2.0
// Picture files before and around their decoders: PNG chunks, JPEG planes and blocks, metadata.
#include <cstdint>
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
  const tools::Size size = tools::PngSize(file);
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
  const std::vector<tools::Image> planes = tools::ReadJpegPlanes(file);
  Require(planes.size() == layout.areas.size(), "there is a plane an area");
  Require(planes[0].size() == layout.size, "luma has the size of the picture");
  std::vector<tools::Image> turned;
  for (const tools::Image& plane : planes) turned.push_back(tools::Transposed(plane));
  tools::WriteJpegPlanes(turned, file, true);
  const Bytes recoded = tools::WriteJpegPlanes(planes, file, false);
  std::vector<tools::Image> unchanged;
  for (const tools::Image& plane : planes) unchanged.emplace_back(plane.size());
  const Bytes same = tools::ReplaceJpegBlocks(file, recoded, unchanged);
  const std::vector<tools::Image> again = tools::ReadJpegPlanes(same);
  for (size_t i = 0; i < planes.size(); ++i) {
    Require(planes[i].bytes() == again.at(i).bytes(), "no block changes unasked");
  }
}

/// Whatever metadata a file has, its results are upright and their pixels are left alone.
void Metadata(const Bytes& file) {
  const tools::Image picture({32, 32}, 1, 9);
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
    const tools::Image pixels = jpeg ? tools::ReadJpegPlanes(result)[0]
                                     : tools::ReadPngPixels(*tools::EssentialPng(result)).pixels;
    for (const uint8_t sample : pixels.bytes()) {
      Require(sample >= 8 && sample <= 10, "its pixels are those of the picture");
    }
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
