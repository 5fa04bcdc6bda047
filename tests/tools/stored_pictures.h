// SPDX-License-Identifier: Apache-2.0
// Picture files as cameras store them: turned, and with metadata.
#ifndef LUMORA_TESTS_TOOLS_STORED_PICTURES_H_
#define LUMORA_TESTS_TOOLS_STORED_PICTURES_H_

#include <exiv2/exiv2.hpp>
#include <functional>
#include <opencv2/core.hpp>

#include "tests/tools/pictures.h"

namespace lumora::test {

/// The picture as a file of that EXIF orientation stores it: the standard names the sides of the
/// picture on which the first stored row and the first stored column lie.
cv::Mat Stored(const cv::Mat& upright, int orientation);

/// The file with other metadata.
Bytes WithMetadata(const Bytes& file, const std::function<void(Exiv2::Image&)>& change);

/// The file with that EXIF orientation.
Bytes WithOrientation(const Bytes& file, int orientation);

/// The image with its metadata read.
inline auto MetadataOf(const Bytes& file) {
  auto image = Exiv2::ImageFactory::open(file.data(), static_cast<long>(file.size()));
  image->readMetadata();
  return image;
}

}  // namespace lumora::test

#endif  // LUMORA_TESTS_TOOLS_STORED_PICTURES_H_
