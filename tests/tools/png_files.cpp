// SPDX-License-Identifier: Apache-2.0
#include "tests/tools/png_files.h"

#include <png.h>
#include <zlib.h>

#include <algorithm>
#include <random>
#include <stdexcept>

namespace lumora::test {
namespace {

void Append(Bytes& to, uint32_t value) {
  for (int shift = 24; shift >= 0; shift -= 8) to.push_back(static_cast<uint8_t>(value >> shift));
}

uint32_t Checksum(const uint8_t* bytes, size_t size) {
  return static_cast<uint32_t>(crc32(0, bytes, static_cast<uInt>(size)));
}

}  // namespace

Bytes PngOf(cv::Size size, const PngKind& kind) {
  Bytes file;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_set_write_fn(
      png, &file,
      [](png_structp writer, png_bytep bytes, size_t count) {
        auto& out = *static_cast<Bytes*>(png_get_io_ptr(writer));
        out.insert(out.end(), bytes, bytes + count);
      },
      [](png_structp) {});
  png_set_IHDR(png, info, static_cast<png_uint_32>(size.width),
               static_cast<png_uint_32>(size.height), kind.bits, kind.colours,
               kind.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  std::mt19937 random(5);
  const auto byte = [&random] { return static_cast<uint8_t>(random()); };
  if (kind.colours == PNG_COLOR_TYPE_PALETTE) {
    png_color palette[256];
    for (png_color& colour : palette) colour = {byte(), byte(), byte()};
    png_set_PLTE(png, info, palette, 1 << kind.bits);
  }
  if (kind.transparent_colour) {
    png_byte alpha[2] = {10, 200};
    png_color_16 colour = {0, 1, 1, 1, 1};
    png_set_tRNS(png, info, alpha, kind.colours == PNG_COLOR_TYPE_PALETTE ? 2 : 0, &colour);
  }
  png_write_info(png, info);
  const int passes = kind.interlaced ? png_set_interlace_handling(png) : 1;
  Bytes samples(png_get_rowbytes(png, info) * static_cast<size_t>(size.height));
  std::generate(samples.begin(), samples.end(), byte);
  for (int pass = 0; pass < passes; ++pass) {
    for (int y = 0; y < size.height; ++y) {
      png_write_row(png, &samples[png_get_rowbytes(png, info) * static_cast<size_t>(y)]);
    }
  }
  png_write_end(png, info);
  png_destroy_write_struct(&png, &info);
  return file;
}

Bytes PngChunk(const std::string& type, const Bytes& content) {
  Bytes chunk;
  Append(chunk, static_cast<uint32_t>(content.size()));
  chunk.insert(chunk.end(), type.begin(), type.end());
  chunk.insert(chunk.end(), content.begin(), content.end());
  Append(chunk, Checksum(&chunk[4], chunk.size() - 4));
  return chunk;
}

Bytes WithChunk(const Bytes& file, const Bytes& chunk) {
  constexpr std::ptrdiff_t kBehindHeader = 33;
  Bytes result = file;
  result.insert(result.begin() + kBehindHeader, chunk.begin(), chunk.end());
  return result;
}

Bytes WithChangedByte(Bytes file, const std::string& type, size_t at, uint8_t value) {
  const auto found = std::search(file.begin(), file.end(), type.begin(), type.end());
  if (found == file.end()) throw std::runtime_error("there is no such chunk");
  const auto begin = static_cast<size_t>(found - file.begin());
  const size_t length = static_cast<size_t>(file[begin - 2] << 8 | file[begin - 1]) |
                        static_cast<size_t>(file[begin - 3]) << 16;
  file[begin + 4 + at % length] = value;
  const uint32_t checksum = Checksum(&file[begin], length + 4);
  for (size_t i = 0; i < 4; ++i) {
    file[begin + 4 + length + i] = static_cast<uint8_t>(checksum >> (24 - 8 * i));
  }
  return file;
}

}  // namespace lumora::test
