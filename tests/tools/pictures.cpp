// SPDX-License-Identifier: Apache-2.0
#include "tests/tools/pictures.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <sstream>
#include <stdexcept>

// libjpeg's header needs <cstdio> before it.
#include <jpeglib.h>

#include "tools/lumora/modules/drawing/portraits/portrait.h"
#include "tools/lumora/modules/opencv.h"

namespace lumora::test {
namespace {

// The portraits' geometry, in thousandths of the side.
constexpr double kEyeY = 0.436, kLeftEyeX = 0.418, kRightEyeX = 0.582;
constexpr double kFaceY = 0.53;
constexpr double kReach = 0.42;

}  // namespace

Folder::Folder() {
  std::string name = (std::filesystem::temp_directory_path() / "lumora-test-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
  path_ = name;
}

Folder::~Folder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string Folder::Put(const std::string& name, const Bytes& content) const {
  std::ofstream(path_ / name, std::ios::binary)
      .write(reinterpret_cast<const char*>(content.data()),
             static_cast<std::streamsize>(content.size()));
  return *this / name;
}

std::string Folder::Put(const std::string& name, const std::string& content) const {
  return Put(name, Bytes(content.begin(), content.end()));
}

std::vector<std::string> Folder::Names() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(path_)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

Bytes ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(file), {});
}

Bytes JpegOf(const cv::Mat& bgr, const JpegKind& kind) {
  cv::Mat pixels;
  cv::cvtColor(bgr, pixels, kind.gray ? cv::COLOR_BGR2GRAY : cv::COLOR_BGR2RGB);
  if (kind.cmyk) {  // 255 is no ink
    cv::cvtColor(pixels, pixels, cv::COLOR_RGB2RGBA);
    cv::add(pixels, cv::Scalar(0, 0, 0, -40), pixels);
  }
  jpeg_compress_struct info = {};
  jpeg_error_mgr errors = {};
  info.err = jpeg_std_error(&errors);
  jpeg_create_compress(&info);
  unsigned char* buffer = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&info, &buffer, &size);
  info.image_width = static_cast<JDIMENSION>(pixels.cols);
  info.image_height = static_cast<JDIMENSION>(pixels.rows);
  info.input_components = pixels.channels();
  info.in_color_space = kind.gray ? JCS_GRAYSCALE : kind.cmyk ? JCS_CMYK : JCS_RGB;
  jpeg_set_defaults(&info);
  if (kind.rgb) jpeg_set_colorspace(&info, JCS_RGB);
  jpeg_set_quality(&info, kind.quality, TRUE);
  if (!kind.gray && !kind.rgb && !kind.cmyk) {
    info.comp_info[0].h_samp_factor = kind.across;
    info.comp_info[0].v_samp_factor = kind.down;
  }
  if (kind.progressive) jpeg_simple_progression(&info);
  jpeg_start_compress(&info, TRUE);
  for (int y = 0; y < pixels.rows; ++y) {
    JSAMPROW row = pixels.ptr(y);
    jpeg_write_scanlines(&info, &row, 1);
  }
  jpeg_finish_compress(&info);
  Bytes file(buffer, buffer + size);
  jpeg_destroy_compress(&info);
  std::free(buffer);
  return file;
}

JpegFacts FactsOf(const Bytes& jpeg) {
  jpeg_decompress_struct info = {};
  jpeg_error_mgr errors = {};
  info.err = jpeg_std_error(&errors);
  jpeg_create_decompress(&info);
  jpeg_mem_src(&info, jpeg.data(), static_cast<unsigned long>(jpeg.size()));
  jpeg_read_header(&info, TRUE);
  JpegFacts facts;
  facts.progressive = info.progressive_mode != 0;
  for (int i = 0; i < info.num_components; ++i) {
    const jpeg_component_info& plane = info.comp_info[i];
    facts.sampling.emplace_back(plane.h_samp_factor, plane.v_samp_factor);
    const JQUANT_TBL* table = info.quant_tbl_ptrs[plane.quant_tbl_no];
    facts.quantisation.emplace_back(std::begin(table->quantval), std::end(table->quantval));
  }
  jpeg_destroy_decompress(&info);
  return facts;
}

Bytes PngOf(const cv::Mat& picture) {
  Bytes file;
  cv::imencode(".png", picture, file);
  return file;
}

cv::Mat Decode(const Bytes& file) {
  if (file.empty()) return {};
  return cv::imdecode(file, cv::IMREAD_UNCHANGED);
}

std::string Sitter::FacesJson(double right) const {
  std::ostringstream json;
  json << R"({"faces": [{"eyes": [[)" << left_eye.x + right << ", " << left_eye.y << "], ["
       << right_eye.x + right << ", " << right_eye.y << "]]}]}";
  return json.str();
}

Sitter PortraitOf(int width, int height) {
  const int side = std::min(width, height);
  const int x = (width - side) / 2, y = (height - side) / 2;
  Sitter sitter;
  const int drawn = std::min(side, 640);  // larger ones are enlarged: drawing them takes long
  cv::Mat portrait = tools::DrawPortrait(0, drawn).picture;
  if (drawn != side) cv::resize(portrait, portrait, {side, side}, 0, 0, cv::INTER_LINEAR);
  cv::copyMakeBorder(portrait, sitter.picture, y, height - side - y, x, width - side - x,
                     cv::BORDER_REPLICATE);
  sitter.left_eye = {x + kLeftEyeX * side, y + kEyeY * side};
  sitter.right_eye = {x + kRightEyeX * side, y + kEyeY * side};
  sitter.faces_json = sitter.FacesJson(0);
  sitter.centre = {x + 0.5 * side, y + kFaceY * side};
  sitter.reach = kReach * side;
  return sitter;
}

cv::Mat Landscape(int width, int height) {
  cv::Mat picture(height, width, CV_8UC3);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      picture.at<cv::Vec3b>(y, x) =
          cv::Vec3b(static_cast<uint8_t>(255 * y / height), static_cast<uint8_t>(255 * x / width),
                    static_cast<uint8_t>(64 + (x + y) % 32));
    }
  }
  return picture;
}

double MeanDifference(const cv::Mat& a, const cv::Mat& b) {
  return cv::norm(a, b, cv::NORM_L1) / static_cast<double>(a.total()) / a.channels();
}

double MeanDifference(const tools::Image& a, const cv::Mat& b) {
  return MeanDifference(tools::MatOf(a), b);
}

double MeanDifference(const tools::Image& a, const tools::Image& b) {
  return MeanDifference(tools::MatOf(a), tools::MatOf(b));
}

double LargestDifferenceOutside(const cv::Mat& a, const cv::Mat& b, cv::Point2d centre,
                                double distance) {
  cv::Mat difference;
  cv::absdiff(a, b, difference);
  cv::circle(difference, centre, static_cast<int>(distance), cv::Scalar::all(0), cv::FILLED);
  double largest = 0;
  cv::minMaxLoc(difference.reshape(1), nullptr, &largest);
  return largest;
}

}  // namespace lumora::test
