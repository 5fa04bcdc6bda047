// SPDX-License-Identifier: Apache-2.0
#include "support/compare.h"

#include <algorithm>
#include <cstdlib>

#include "support/picture_files.h"

namespace lumora::test {
namespace {

// Collects sample after sample.
class Meter {
 public:
  explicit Meter(const Compare& how) : how_(how) {}

  bool looks_at(int x, int y) const { return !how_.where || how_.where(x, y); }

  void sample(int x, int y, const char* channel, int low, int high, int actual) {
    const int nearest = std::clamp(actual, std::min(low, high), std::max(low, high));
    const int distance = std::abs(actual - nearest);
    ++result_.compared;
    sum_ += distance;
    if (distance > how_.tolerance) ++result_.above;
    if (distance <= result_.largest) return;
    result_.largest = distance;
    result_.x = x;
    result_.y = y;
    result_.channel = channel;
    result_.expected = nearest;
    result_.actual = actual;
  }

  Difference result() const {
    Difference result = result_;
    if (result.compared > 0) {
      result.mean = static_cast<double>(sum_) / static_cast<double>(result.compared);
    }
    return result;
  }

 private:
  const Compare& how_;
  Difference result_;
  int64_t sum_ = 0;
};

template <typename Picture>
testing::AssertionResult SameSize(const Picture& expected, const Picture& actual,
                                  const std::string& name) {
  if (expected.width == actual.width && expected.height == actual.height &&
      expected.bytes.size() == actual.bytes.size()) {
    return testing::AssertionSuccess();
  }
  return testing::AssertionFailure()
         << name << " is " << actual.width << " x " << actual.height << " with "
         << actual.bytes.size() << " bytes, expected " << expected.width << " x " << expected.height
         << " with " << expected.bytes.size();
}

testing::AssertionResult Judge(const Difference& d, const Compare& how) {
  if (d.compared == 0) return testing::AssertionFailure() << how.name << ": nothing was compared";
  const bool good = d.above <= how.exceptions && (d.above == 0 || d.largest <= how.hard_limit);
  if (good) return testing::AssertionSuccess();
  return testing::AssertionFailure()
         << how.name << ": " << d.above << " of " << d.compared << " samples differ by more than "
         << how.tolerance << " (allowed " << how.exceptions << ", none by more than "
         << how.hard_limit << "); the largest difference is " << d.largest << ": " << d.channel
         << " at (" << d.x << ", " << d.y << ") is " << d.actual << ", nearest allowed "
         << d.expected << "; mean difference " << d.mean;
}

template <typename Bounds, typename Picture>
testing::AssertionResult Within(const Bounds& expected, const Picture& actual, const Compare& how) {
  testing::AssertionResult size = SameSize(expected.low, actual, how.name);
  if (!size) return size;
  testing::AssertionResult verdict = Judge(Measure(expected, actual, how), how);
  if (!verdict) WritePictures(expected.low, actual, how.name);
  return verdict;
}

}  // namespace

Compare& Compare::within(int value) {
  tolerance = value;
  return *this;
}

Compare& Compare::except(int64_t samples, int limit) {
  exceptions = samples;
  hard_limit = limit;
  return *this;
}

Compare& Compare::only(Where pixels) {
  where = std::move(pixels);
  return *this;
}

Compare& Compare::named(const std::string& text) {
  name = text;
  return *this;
}

Difference Measure(const ImageBounds& expected, const Image& actual, const Compare& how) {
  static const char* const kChannels[4] = {"R", "G", "B", "A"};
  Meter meter(how);
  for (int y = 0; y < actual.height; ++y) {
    for (int x = 0; x < actual.width; ++x) {
      if (!meter.looks_at(x, y)) continue;
      const uint8_t* low = expected.low.pixel(x, y);
      const uint8_t* high = expected.high.pixel(x, y);
      for (int c = 0; c < 4; ++c) {
        meter.sample(x, y, kChannels[c], low[c], high[c], actual.pixel(x, y)[c]);
      }
    }
  }
  return meter.result();
}

Difference Measure(const FrameBounds& expected, const Frame& actual, const Compare& how) {
  const Frame& low = expected.low;
  const Frame& high = expected.high;
  Meter meter(how);
  for (int y = 0; y < actual.height; ++y) {
    for (int x = 0; x < actual.width; ++x) {
      if (meter.looks_at(x, y)) {
        meter.sample(x, y, "Y", low.y(x, y), high.y(x, y), actual.y(x, y));
      }
    }
  }
  for (int y = 0; y + 1 < actual.height; y += 2) {
    for (int x = 0; x + 1 < actual.width; x += 2) {
      if (!meter.looks_at(x, y) || !meter.looks_at(x + 1, y) || !meter.looks_at(x, y + 1) ||
          !meter.looks_at(x + 1, y + 1)) {
        continue;
      }
      meter.sample(x, y, "Cr", low.cr(x, y), high.cr(x, y), actual.cr(x, y));
      meter.sample(x, y, "Cb", low.cb(x, y), high.cb(x, y), actual.cb(x, y));
    }
  }
  return meter.result();
}

Difference Measure(const Image& expected, const Image& actual, const Compare& how) {
  return Measure(ImageBounds(expected), actual, how);
}

Difference Measure(const Frame& expected, const Frame& actual, const Compare& how) {
  return Measure(FrameBounds{expected, expected}, actual, how);
}

testing::AssertionResult SameImage(const Image& expected, const Image& actual, const Compare& how) {
  return Within(ImageBounds(expected), actual, how);
}

testing::AssertionResult SameFrame(const Frame& expected, const Frame& actual, const Compare& how) {
  return Within(FrameBounds{expected, expected}, actual, how);
}

testing::AssertionResult WithinImage(const ImageBounds& expected, const Image& actual,
                                     const Compare& how) {
  return Within(expected, actual, how);
}

testing::AssertionResult WithinFrame(const FrameBounds& expected, const Frame& actual,
                                     const Compare& how) {
  return Within(expected, actual, how);
}

}  // namespace lumora::test
