// SPDX-License-Identifier: Apache-2.0
#include "support/picture_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "reference/colour.h"
#include "reference/expand.h"

namespace lumora::test {
namespace {

using reference::Frame;
using reference::Image;

Image Enlarged(const Image& expected, const Image& actual) {
  Image difference(expected.width, expected.height);
  for (size_t i = 0; i < difference.bytes.size(); ++i) {
    const int delta = 128 + 8 * (actual.bytes[i] - expected.bytes[i]);
    difference.bytes[i] = static_cast<uint8_t>(std::clamp(delta, 0, 255));
  }
  return difference;
}

std::string FileStem(const std::string& name) {
  const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
  std::string stem;
  if (test != nullptr) stem = std::string(test->test_suite_name()) + "." + test->name() + "-";
  stem += name;
  for (char& c : stem) {
    if (std::isalnum(static_cast<unsigned char>(c)) == 0 && c != '.' && c != '-') c = '_';
  }
  return stem;
}

}  // namespace

bool WritePpm(const std::string& path, const Image& image) {
  std::ofstream out(path, std::ios::binary);
  out << "P6\n" << image.width << ' ' << image.height << "\n255\n";
  for (size_t i = 0; i < image.bytes.size(); i += 4) {
    out.write(reinterpret_cast<const char*>(&image.bytes[i]), 3);
  }
  out.close();
  return static_cast<bool>(out);
}

Image ToRgb(const Frame& frame) {
  Image image = reference::Expanded(frame);
  const reference::Matrix4 matrix = reference::YuvToRgbMatrix();
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      image.set(x, y, reference::Multiply(matrix, image.at(x, y)));
    }
  }
  return image;
}

void WritePictures(const Image& expected, const Image& actual, const std::string& name) {
  const char* folder = std::getenv("LUMORA_TEST_OUTPUT");
  if (folder == nullptr || *folder == '\0') return;
  std::error_code ignored;
  std::filesystem::create_directories(folder, ignored);
  const std::string stem = std::string(folder) + "/" + FileStem(name);
  WritePpm(stem + "-expected.ppm", expected);
  WritePpm(stem + "-actual.ppm", actual);
  WritePpm(stem + "-difference.ppm", Enlarged(expected, actual));
}

void WritePictures(const Frame& expected, const Frame& actual, const std::string& name) {
  if (std::getenv("LUMORA_TEST_OUTPUT") == nullptr) return;
  WritePictures(ToRgb(expected), ToRgb(actual), name);
}

}  // namespace lumora::test
