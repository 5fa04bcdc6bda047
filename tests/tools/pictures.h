// SPDX-License-Identifier: Apache-2.0
// Pictures and files for the tests of the command.
#ifndef LUMORA_TESTS_TOOLS_PICTURES_H_
#define LUMORA_TESTS_TOOLS_PICTURES_H_

#include <cstdint>
#include <filesystem>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "tools/lumora/images/image.h"

namespace lumora::test {

using Bytes = std::vector<uint8_t>;

/// A folder that is gone after the test.
class Folder {
 public:
  Folder();
  ~Folder();
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  std::string operator/(const std::string& name) const { return (path_ / name).string(); }
  /// Writes a file there and returns its path.
  std::string Put(const std::string& name, const Bytes& content) const;
  std::string Put(const std::string& name, const std::string& content) const;
  /// Names of all files, sorted.
  std::vector<std::string> Names() const;

 private:
  std::filesystem::path path_;
};

Bytes ReadFile(const std::string& path);

/// How a test JPEG is stored.
struct JpegKind {
  int across = 2, down = 2;  ///< pixels a chroma sample
  int quality = 92;
  bool gray = false;
  bool progressive = false;
  bool rgb = false;   ///< colours are stored as they are, not as luma and chroma
  bool cmyk = false;  ///< inks
};
Bytes JpegOf(const cv::Mat& bgr, const JpegKind& kind);

/// What a JPEG file says about its coding.
struct JpegFacts {
  std::vector<std::pair<int, int>> sampling;   ///< factors across and down, one a plane
  std::vector<std::vector<int>> quantisation;  ///< table of each plane
  bool progressive = false;
};
JpegFacts FactsOf(const Bytes& jpeg);

Bytes PngOf(const cv::Mat& picture);

/// The picture as decoders show it, without turning it by its orientation tag.
cv::Mat Decode(const Bytes& file);

/// A portrait of width x height pixels with a known face, and the option values that name its eyes.
struct Sitter {
  cv::Mat picture;  ///< 8-bit BGR
  std::string faces_json;
  cv::Point2d left_eye, right_eye;
  /// The same as faces_json for a portrait that has moved to the right.
  std::string FacesJson(double right) const;
  cv::Point2d centre;  ///< of the face
  double reach;        ///< pixels; a circle that covers everything slimming may touch
};
Sitter PortraitOf(int width, int height);

/// A picture without any face.
cv::Mat Landscape(int width, int height);

/// The mean difference of a sample.
double MeanDifference(const cv::Mat& a, const cv::Mat& b);
double MeanDifference(const tools::Image& a, const cv::Mat& b);
double MeanDifference(const tools::Image& a, const tools::Image& b);

/// Largest difference of a channel, over pixels farther than `distance` from `centre`.
double LargestDifferenceOutside(const cv::Mat& a, const cv::Mat& b, cv::Point2d centre,
                                double distance);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_TOOLS_PICTURES_H_
