// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/commands/self_test.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace lumora::tools {
namespace {

constexpr int kSize = 256;  // pixels; a multiple of 32, so that nothing is padded
constexpr double kPi = 3.14159265358979323846;
constexpr int kStrongest = 100;  // of 100

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

// Whitening fades towards the rim of the face and around its features.
constexpr double kLeastBrighter = 0.25;       // of the face's ellipse
constexpr uint8_t kSkin[] = {150, 112, 148};  // Y, Cb, Cr

double Ramp(double position) {
  return kBase + kSlope * position;
}

struct Position {
  double x, y;
};

/// Luma rises with x, Cb with y, and Cr falls with x.
struct Ramps {
  static double Luma(Position at) { return Ramp(at.x); }
  static double Cb(Position at) { return Ramp(at.y); }
  static double Cr(Position at) { return Ramp(kSize - at.x); }
};

Image Plane(int size, double pixels_a_sample, double (*ramp)(Position)) {
  Image plane({size, size});
  for (int y = 0; y < size; ++y) {
    for (int x = 0; x < size; ++x) {
      const Position at = {(x + 0.5) * pixels_a_sample, (y + 0.5) * pixels_a_sample};
      plane.Row(y)[x] = static_cast<uint8_t>(std::lround(ramp(at)));
    }
  }
  return plane;
}

Face TestFace() {
  return FaceFromEyes({98, 100}, {158, 100});
}

/// The place that the pixel around `at` shows, in double precision.
Position Source(const FaceWarp& warp, Position at) {
  const double dx = at.x - static_cast<double>(warp.centre.x);
  const double dy = at.y - static_cast<double>(warp.centre.y);
  const double distance = std::hypot(dx, dy);
  const double from_limiter = std::hypot(at.x - static_cast<double>(warp.limiter.x),
                                         at.y - static_cast<double>(warp.limiter.y));
  const double hold = std::min(1.0, from_limiter / (static_cast<double>(warp.limiter_scale) *
                                                    static_cast<double>(warp.reach)));
  const double border = std::min({at.x / kSize, 1 - at.x / kSize, at.y / kSize, 1 - at.y / kSize});
  const double inwards = 2 - std::pow(border, static_cast<double>(warp.border_exponent));
  const double weight =
      std::min(1.0, distance / static_cast<double>(warp.radius) / std::max(hold, 1e-9) * inwards);
  const double pull = static_cast<double>(warp.strength) * distance * (1 - weight);
  return {std::clamp(at.x + dx * pull, 0.5, kSize - 0.5),
          std::clamp(at.y + dy * pull, 0.5, kSize - 0.5)};
}

/// The largest difference of a plane from the model, in steps of 1/255.
double LargestDifference(const Image& plane, const FaceWarp& warp, double (*ramp)(Position)) {
  const double pixels_a_sample = static_cast<double>(kSize) / plane.width();
  double largest = 0;
  for (int y = 0; y < plane.height(); ++y) {
    for (int x = 0; x < plane.width(); ++x) {
      const Position source =
          Source(warp, {(x + 0.5) * pixels_a_sample, (y + 0.5) * pixels_a_sample});
      largest = std::max(largest, std::abs(plane.Row(y)[x] - ramp(source)));
    }
  }
  return largest;
}

/// Whether the pixel lies in the ellipse, made larger by `rim` pixels.
bool Inside(const lumora::Ellipse& ellipse, double x, double y, double rim) {
  const double turn = static_cast<double>(ellipse.angle_degrees) * kPi / 180;
  const double dx = x - static_cast<double>(ellipse.centre.x);
  const double dy = y - static_cast<double>(ellipse.centre.y);
  const double along = dx * std::cos(turn) + dy * std::sin(turn);
  const double across = dy * std::cos(turn) - dx * std::sin(turn);
  return std::hypot(along / (static_cast<double>(ellipse.half_along) + rim),
                    across / (static_cast<double>(ellipse.half_across) + rim)) <= 1;
}

}  // namespace

SelfTest TestSlimming(Retoucher& retoucher) {
  const Frame420 frame = {Plane(kSize, 1, Ramps::Luma), Plane(kSize / 2, 2, Ramps::Cb),
                          Plane(kSize / 2, 2, Ramps::Cr)};
  Look look;
  look.slim = kStrongest;
  const Frame420 result = retoucher.Process(frame, {TestFace()}, look);
  int moved = 0;
  for (size_t i = 0; i < frame.y.bytes().size(); ++i) {
    moved += std::abs(frame.y.bytes()[i] - result.y.bytes()[i]) >= kClearChange ? 1 : 0;
  }
  const FaceWarp warp = SlimmingWarp(TestFace(), kStrongest, kSize, kSize);
  const double difference = std::max({LargestDifference(result.y, warp, Ramps::Luma),
                                      LargestDifference(result.cb, warp, Ramps::Cb),
                                      LargestDifference(result.cr, warp, Ramps::Cr)});
  char text[160];
  std::snprintf(text, sizeof(text),
                "%d pixels moved, largest difference from the model %.1f/255 (allowed: %.0f/255)",
                moved, difference, kTolerance);
  return {moved >= kLeastMoved && difference <= kTolerance, text, result};
}

SelfTest TestWhitening(Retoucher& retoucher) {
  constexpr Size kWhole = {kSize, kSize}, kHalf = {kSize / 2, kSize / 2};
  const Frame420 frame = {Image(kWhole, 1, kSkin[0]), Image(kHalf, 1, kSkin[1]),
                          Image(kHalf, 1, kSkin[2])};
  Look look;
  look.whiten = kStrongest;
  const Face face = TestFace();
  const Frame420 result = retoucher.Process(frame, {face}, look);
  const lumora::Ellipse outer = WhiteningEllipses(face)[kFaceEllipse];
  int brighter = 0, stray = 0;
  for (int y = 0; y < kSize; ++y) {
    for (int x = 0; x < kSize; ++x) {
      const int change = result.y.Row(y)[x] - kSkin[0];
      if (change >= kClearChange) ++brighter;
      // Chroma samples on the rim belong to pixels on both sides of it.
      if (change != 0 && !Inside(outer, x + 0.5, y + 0.5, 2)) ++stray;
    }
  }
  const double area =
      kPi * static_cast<double>(outer.half_along) * static_cast<double>(outer.half_across);
  char text[160];
  std::snprintf(text, sizeof(text), "%.0f %% of the face is brighter, %d pixels outside changed",
                100 * brighter / std::max(1.0, area), stray);
  return {brighter >= kLeastBrighter * area && stray == 0, text, result};
}

int LargestDifference(const SelfTest& one, const SelfTest& other) {
  int largest = 0;
  for (const auto plane : {&Frame420::y, &Frame420::cb, &Frame420::cr}) {
    const Bytes& a = (one.result.*plane).bytes();
    const Bytes& b = (other.result.*plane).bytes();
    for (size_t i = 0; i < a.size(); ++i) largest = std::max(largest, std::abs(a[i] - b[i]));
  }
  return largest;
}

}  // namespace lumora::tools
