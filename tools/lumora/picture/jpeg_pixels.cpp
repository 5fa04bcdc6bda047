// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/picture/jpeg_pixels.h"

#include "tools/lumora/picture/jpeg_codec.h"

namespace lumora::tools {
namespace {

/// Files with inks hold how much of each is missing: 255 is bare paper.
Image BgrOfInks(const Image& cmyk) {
  Image bgr(cmyk.size(), 3);
  for (int y = 0; y < cmyk.height(); ++y) {
    const uint8_t* inks = cmyk.Row(y);
    uint8_t* to = bgr.Row(y);
    for (int x = 0; x < cmyk.width(); ++x, inks += 4, to += 3) {
      for (int c = 0; c < 3; ++c) {
        to[c] = static_cast<uint8_t>((2 * inks[2 - c] * inks[3] + 255) / 510);
      }
    }
  }
  return bgr;
}

}  // namespace

Image ReadJpegBgr(const Bytes& file) {
  JpegDecoder decoder(file);
  jpeg_decompress_struct& info = decoder.info;
  const bool inks = info.num_components == 4;
  info.out_color_space = inks ? JCS_CMYK : JCS_EXT_BGR;
  decoder.Guard([&] { jpeg_start_decompress(&info); });
  Image pixels({static_cast<int>(info.output_width), static_cast<int>(info.output_height)},
               inks ? 4 : 3);
  for (int y = 0; y < pixels.height(); ++y) {
    JSAMPROW row = pixels.Row(y);
    decoder.Guard([&] { jpeg_read_scanlines(&info, &row, 1); });
  }
  decoder.Guard([&] { jpeg_finish_decompress(&info); });
  return inks ? BgrOfInks(pixels) : pixels;
}

Bytes WriteJpegPixels(const Image& pixels, int quality) {
  JpegEncoder encoder;
  jpeg_compress_struct& info = encoder.info;
  info.image_width = static_cast<JDIMENSION>(pixels.width());
  info.image_height = static_cast<JDIMENSION>(pixels.height());
  info.input_components = pixels.channels();
  info.in_color_space = pixels.channels() == 1   ? JCS_GRAYSCALE
                        : pixels.channels() == 3 ? JCS_EXT_BGR
                                                 : JCS_EXT_BGRX;
  encoder.Guard([&] {
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, quality, TRUE);
    jpeg_start_compress(&info, TRUE);
  });
  for (int y = 0; y < pixels.height(); ++y) {
    auto* row = const_cast<JSAMPROW>(pixels.Row(y));  // libjpeg only reads
    encoder.Guard([&] { jpeg_write_scanlines(&info, &row, 1); });
  }
  encoder.Guard([&] { jpeg_finish_compress(&info); });
  return encoder.File();
}

}  // namespace lumora::tools
