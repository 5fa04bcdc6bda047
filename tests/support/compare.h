// SPDX-License-Identifier: Apache-2.0
// Comparing pictures, with failures that one can look at.
//
//   EXPECT_TRUE(SameImage(expected, actual, Compare().within(1)));
//
// When a comparison fails and the environment has LUMORA_TEST_OUTPUT (a folder), the expected, the
// actual and the difference picture are written there as <test>-<name>-<kind>.ppm.
#ifndef LUMORA_TESTS_SUPPORT_COMPARE_H_
#define LUMORA_TESTS_SUPPORT_COMPARE_H_

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>

#include "reference/bounds.h"
#include "reference/frame.h"
#include "reference/image.h"

namespace lumora::test {

using reference::Frame;
using reference::FrameBounds;
using reference::Image;
using reference::ImageBounds;

/// What counts as equal. Without settings: every byte the same.
struct Compare {
  using Where = std::function<bool(int x, int y)>;

  int tolerance = 0;       ///< differences up to this are no differences
  int64_t exceptions = 0;  ///< samples that may lie above the tolerance
  int hard_limit = 255;    ///< no sample, exceptions included, may differ by more
  Where where;             ///< pixels to look at; all when empty. A chroma pair is looked at when
                           ///< all four of its pixels are.
  std::string name = "picture";  ///< goes into messages and file names

  // The same as a sentence: Compare().within(1).except(20, 3).named("cheeks").
  Compare& within(int value);
  Compare& except(int64_t samples, int limit);
  Compare& only(Where pixels);
  Compare& named(const std::string& text);
};

/// How far two pictures are apart. Samples are single bytes.
struct Difference {
  int64_t compared = 0;  ///< samples looked at
  int64_t above = 0;     ///< samples further apart than the tolerance
  int largest = 0;
  double mean = 0.0;
  int x = 0, y = 0;     ///< pixel of the largest difference
  std::string channel;  ///< its channel: "R", "G", "B", "A", "Y", "Cr", "Cb"
  int expected = 0;     ///< the nearest allowed value there
  int actual = 0;
};

/// The difference of two pictures of the same size.
Difference Measure(const Image& expected, const Image& actual, const Compare& how = {});
Difference Measure(const Frame& expected, const Frame& actual, const Compare& how = {});
/// The distance from a range: 0 inside it.
Difference Measure(const ImageBounds& expected, const Image& actual, const Compare& how = {});
Difference Measure(const FrameBounds& expected, const Frame& actual, const Compare& how = {});

/// Whether the pictures are equal in the sense of `how`. Different sizes are not, and neither is a
/// comparison in which `how.where` chose no pixel.
testing::AssertionResult SameImage(const Image& expected, const Image& actual,
                                   const Compare& how = {});
testing::AssertionResult SameFrame(const Frame& expected, const Frame& actual,
                                   const Compare& how = {});
testing::AssertionResult WithinImage(const ImageBounds& expected, const Image& actual,
                                     const Compare& how = {});
testing::AssertionResult WithinFrame(const FrameBounds& expected, const Frame& actual,
                                     const Compare& how = {});

}  // namespace lumora::test

#endif  // LUMORA_TESTS_SUPPORT_COMPARE_H_
