#include "tools/lumora/commands/self_test.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>

namespace lumora::tools {
namespace {

constexpr int kSize = 256;  // pixels; a multiple of 32, so that nothing is padded
constexpr int kSlim = 100;

// The planes are ramps, so that a sample tells from which row or column it was taken, and so that
// filtering does not matter: between two pixels lies what lies between their values.
constexpr double kSlope = 0.7;  // steps of 1/255 a pixel
constexpr double kBase = 30;

// Samples are whole steps on the way in and out (half a step each), and the texture coordinates of
// packed chroma fall on the border between two pixels, each of which stands for two columns: one
// pixel, or kSlope.
constexpr double kTolerance = 2;

// The warp must be seen to happen.
constexpr double kClearChange = 4;  // steps of 1/255
constexpr int kLeastMoved = 500;    // pixels

double Ramp(double position) {
  return kBase + kSlope * position;
}

/// Luma rises with x, Cb with y, and Cr falls with x.
struct Ramps {
  static double Luma(WarpModel::Position at) { return Ramp(at.x); }
  static double Cb(WarpModel::Position at) { return Ramp(at.y); }
  static double Cr(WarpModel::Position at) { return Ramp(kSize - at.x); }
};

cv::Mat Plane(int size, double pixels_a_sample, double (*ramp)(WarpModel::Position)) {
  cv::Mat plane(size, size, CV_8U);
  for (int y = 0; y < size; ++y) {
    for (int x = 0; x < size; ++x) {
      const WarpModel::Position at = {(x + 0.5) * pixels_a_sample, (y + 0.5) * pixels_a_sample};
      plane.at<uint8_t>(y, x) = static_cast<uint8_t>(std::lround(ramp(at)));
    }
  }
  return plane;
}

/// Calls `use` with the difference of every `step`-th sample of a plane from the model.
void Compare(const cv::Mat& plane, const WarpModel& model, double (*ramp)(WarpModel::Position),
             int step, const std::function<void(double)>& use) {
  const double pixels_a_sample = static_cast<double>(kSize) / plane.cols;
  for (int y = 0; y < plane.rows; y += step) {
    for (int x = 0; x < plane.cols; x += step) {
      const WarpModel::Position source =
          model.Source((x + 0.5) * pixels_a_sample, (y + 0.5) * pixels_a_sample, kSize, kSize);
      use(std::abs(plane.at<uint8_t>(y, x) - ramp(source)));
    }
  }
}

double SumOfDifferences(const Frame420& result, const WarpModel& model) {
  double sum = 0;
  const auto add = [&sum](double difference) { sum += difference * difference; };
  Compare(result.y, model, Ramps::Luma, 6, add);
  Compare(result.cb, model, Ramps::Cb, 3, add);
  return sum;
}

/// The pipeline is free to choose how strong a warp it makes of `slim`, and how far it holds back
/// the upper face. These two numbers are read from the result; that one pair of them explains all
/// samples of three planes is the proof.
WarpModel Fitted(const Frame420& result, const WarpCircle& circle) {
  WarpModel best;
  best.centre_x = static_cast<double>(circle.centre.x);
  best.centre_y = static_cast<double>(circle.centre.y);
  best.radius = static_cast<double>(circle.radius);
  best.towards_x = static_cast<double>(circle.towards.x);
  best.towards_y = static_cast<double>(circle.towards.y);
  const double most = kSize / std::max(1.0, best.radius);  // doubles the distance at the rim
  best.strength = most / 2;
  best.limiter = 1.5;
  double least = SumOfDifferences(result, best);
  double strength_step = most / 8, limiter_step = 0.25;
  for (int round = 0; round < 8; ++round) {
    const WarpModel middle = best;
    for (int s = -4; s <= 4; ++s) {
      for (int l = -4; l <= 4; ++l) {
        WarpModel tried = middle;
        tried.strength += s * strength_step;
        tried.limiter = std::max(0.1, tried.limiter + l * limiter_step);
        const double sum = SumOfDifferences(result, tried);
        if (sum < least) {
          least = sum;
          best = tried;
        }
      }
    }
    strength_step /= 2.5;
    limiter_step /= 2.5;
  }
  return best;
}

}  // namespace

WarpModel::Position WarpModel::Source(double x, double y, int width, int height) const {
  // Unit of length: the width of the frame, in both directions.
  const double shape = static_cast<double>(height) / width;
  const double u = x / width, v = y / height;
  const double du = u - centre_x / width, dv = v - centre_y / height;
  const double distance = std::hypot(du, dv * shape);
  const double face_radius = radius / width;
  // The limiter lies towards the forehead.
  const double reach = 0.55 * face_radius;
  const double from_limiter =
      std::hypot(du + reach * towards_x, (dv + reach * towards_y) * shape) / limiter;
  // 0 is the whole warp, 1 none.
  double rest =
      std::clamp(distance / face_radius / std::clamp(from_limiter / reach, 1e-9, 1.0), 0.0, 1.0);
  const double border = std::max(0.0, std::min({u, 1 - u, v, 1 - v}));
  rest = std::clamp(rest * (2 - std::pow(border, 0.2)), 0.0, 1.0);
  const double pull = 1 + strength * distance * (1 - rest);
  return {std::clamp(x + (pull - 1) * du * width, 0.5, width - 0.5),
          std::clamp(y + (pull - 1) * dv * height, 0.5, height - 0.5)};
}

std::string SelfTest::Sentence() const {
  char text[160];
  std::snprintf(text, sizeof(text),
                "%d pixels moved, largest difference from the CPU %.1f/255 (allowed: %.0f/255)",
                moved_pixels, largest_difference, kTolerance);
  return text;
}

SelfTest RunSelfTest(Slimmer& slimmer) {
  const Frame420 frame = {Plane(kSize, 1, Ramps::Luma), Plane(kSize / 2, 2, Ramps::Cb),
                          Plane(kSize / 2, 2, Ramps::Cr)};
  const Face face = FaceFromEyes({98, 100}, {158, 100});
  const Frame420 result = slimmer.Slim(frame, {face}, kSlim);

  SelfTest test;
  cv::Mat change;
  cv::absdiff(frame.y, result.y, change);
  test.moved_pixels = cv::countNonZero(change >= kClearChange);
  const WarpModel model = Fitted(result, SlimmingCircle(face, kSize, kSize));
  const auto keep_largest = [&test](double difference) {
    test.largest_difference = std::max(test.largest_difference, difference);
  };
  Compare(result.y, model, Ramps::Luma, 1, keep_largest);
  Compare(result.cb, model, Ramps::Cb, 1, keep_largest);
  Compare(result.cr, model, Ramps::Cr, 1, keep_largest);
  test.passed = test.moved_pixels >= kLeastMoved && test.largest_difference <= kTolerance;
  return test;
}

}  // namespace lumora::tools
