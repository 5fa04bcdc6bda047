// SPDX-License-Identifier: Apache-2.0
// Pictures on disk, for looking at failures.
#ifndef LUMORA_TESTS_SUPPORT_PICTURE_FILES_H_
#define LUMORA_TESTS_SUPPORT_PICTURE_FILES_H_

#include <string>

#include "reference/frame.h"
#include "reference/image.h"

namespace lumora::test {

/// Writes red, green and blue as a binary PPM. Returns whether that worked.
bool WritePpm(const std::string& path, const reference::Image& image);

/// The frame in colours, for the eye.
reference::Image ToRgb(const reference::Frame& frame);

/// Writes <test>-<name>-expected.ppm, -actual.ppm and -difference.ppm (eight times enlarged round
/// mid-grey) into the folder that the environment's LUMORA_TEST_OUTPUT names; without it, nothing.
/// The pictures have the same size.
void WritePictures(const reference::Image& expected, const reference::Image& actual,
                   const std::string& name);
void WritePictures(const reference::Frame& expected, const reference::Frame& actual,
                   const std::string& name);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_SUPPORT_PICTURE_FILES_H_
