#include "tools/lumora/picture/jpeg_pixels.h"

#include <vector>

#include "tools/lumora/picture/jpeg_codec.h"

namespace lumora::tools {
namespace {

/// Files with inks hold how much of each is missing: 255 is bare paper.
cv::Mat BgrOfInks(const cv::Mat& cmyk) {
  std::vector<cv::Mat> inks;
  cv::split(cmyk, inks);
  cv::Mat bgr;
  cv::merge(std::vector<cv::Mat>{inks[2], inks[1], inks[0]}, bgr);
  cv::merge(std::vector<cv::Mat>{inks[3], inks[3], inks[3]}, inks[0]);
  cv::multiply(bgr, inks[0], bgr, 1.0 / 255);
  return bgr;
}

}  // namespace

cv::Mat ReadJpegBgr(const Bytes& file) {
  JpegDecoder decoder(file);
  jpeg_decompress_struct& info = decoder.info;
  const bool inks = info.num_components == 4;
  info.out_color_space = inks ? JCS_CMYK : JCS_EXT_BGR;
  decoder.Guard([&] { jpeg_start_decompress(&info); });
  cv::Mat pixels(static_cast<int>(info.output_height), static_cast<int>(info.output_width),
                 inks ? CV_8UC4 : CV_8UC3);
  for (int y = 0; y < pixels.rows; ++y) {
    JSAMPROW row = pixels.ptr(y);
    decoder.Guard([&] { jpeg_read_scanlines(&info, &row, 1); });
  }
  decoder.Guard([&] { jpeg_finish_decompress(&info); });
  return inks ? BgrOfInks(pixels) : pixels;
}

Bytes WriteJpegPixels(const cv::Mat& pixels, int quality) {
  JpegEncoder encoder;
  jpeg_compress_struct& info = encoder.info;
  info.image_width = static_cast<JDIMENSION>(pixels.cols);
  info.image_height = static_cast<JDIMENSION>(pixels.rows);
  info.input_components = pixels.channels();
  info.in_color_space = pixels.channels() == 1   ? JCS_GRAYSCALE
                        : pixels.channels() == 3 ? JCS_EXT_BGR
                                                 : JCS_EXT_BGRX;
  encoder.Guard([&] {
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, quality, TRUE);
    jpeg_start_compress(&info, TRUE);
  });
  for (int y = 0; y < pixels.rows; ++y) {
    auto* row = const_cast<JSAMPROW>(pixels.ptr(y));  // libjpeg only reads
    encoder.Guard([&] { jpeg_write_scanlines(&info, &row, 1); });
  }
  encoder.Guard([&] { jpeg_finish_compress(&info); });
  return encoder.File();
}

}  // namespace lumora::tools
