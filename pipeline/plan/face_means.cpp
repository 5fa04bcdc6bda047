// SPDX-License-Identifier: Apache-2.0
#include "pipeline/plan/face_means.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "lumora/geometry/rounding.h"

namespace lumora {
namespace {

/// Digits of the green shares after the point. With 20 the cut sum of both is the one that cutting
/// the engine's own sum gives, for every pair.
constexpr int kGreenBits = 20;

/// What one chroma sample adds to luma: to one channel as a whole number, cut downwards, and to
/// green with `kGreenBits` digits after the point.
struct ChromaShare {
  int32_t own;
  int32_t green;
};
struct ChromaShares {
  std::array<ChromaShare, 256> cr{};  // own: red
  std::array<ChromaShare, 256> cb{};  // own: blue
};

constexpr int32_t RoundDown(double value) {
  const auto cut = static_cast<int32_t>(value);
  return static_cast<double>(cut) > value ? cut - 1 : cut;
}

constexpr ChromaShares MakeChromaShares() {
  constexpr double kOne = 1 << kGreenBits;
  ChromaShares shares;
  for (size_t i = 0; i < shares.cr.size(); ++i) {
    const double from_middle = static_cast<double>(i) - 127.5;
    const auto v = static_cast<double>(static_cast<float>(from_middle / 208.1 * 255.0));
    const auto u = static_cast<double>(static_cast<float>(from_middle / 293.6 * 255.0));
    shares.cr[i] = {RoundDown(1.13983 * v), RoundDown(-0.5806 * v * kOne + 0.5)};
    shares.cb[i] = {RoundDown(2.03211 * u), RoundDown(-0.39465 * u * kOne + 0.5)};
  }
  return shares;
}
constexpr ChromaShares kChromaShares = MakeChromaShares();

constexpr int kShareBits = 16;

/// 255 / largest with kShareBits digits after the point, rounded up: what is cut of its products is
/// right for every part of `largest`.
constexpr std::array<uint32_t, 256> MakeSaturationShares() {
  std::array<uint32_t, 256> shares{};
  for (uint32_t largest = 1; largest < shares.size(); ++largest) {
    shares[largest] = ((255U << kShareBits) + largest - 1) / largest;
  }
  return shares;
}
constexpr std::array<uint32_t, 256> kSaturationShares = MakeSaturationShares();

}  // namespace

Tone ToneOf(const YuvSample& sample) {
  const ChromaShare& cr = kChromaShares.cr[sample.cr];
  const ChromaShare& cb = kChromaShares.cb[sample.cb];
  const int luma = sample.y;
  const int red = luma + cr.own;
  const int green = luma + ((cr.green + cb.green) >> kGreenBits);
  const int blue = luma + cb.own;
  const int largest = std::clamp(std::max(red, std::max(green, blue)), 0, 255);
  const int smallest = std::clamp(std::min(red, std::min(green, blue)), 0, 255);
  const uint32_t share = kSaturationShares[static_cast<size_t>(largest)];
  return {largest,
          static_cast<int>(static_cast<uint32_t>(largest - smallest) * share >> kShareBits)};
}

FaceMeans MeansOf(const ConstFrameView& frame, const FaceGeometry& geometry) {
  const FrameSamples samples(frame);
  ColourSums sums;
  int luma = 0;
  ForEachSample(geometry, RoundUpTo32(frame.width), RoundUpTo32(frame.height), [&](int x, int y) {
    const YuvSample at = samples.At(x, y);
    const Tone tone = ToneOf(at);
    sums.intensity += tone.intensity;
    sums.saturation += tone.saturation;
    luma += at.y;
    ++sums.count;
  });
  return {sums.mean(sums.intensity), sums.mean(sums.saturation), sums.mean(luma)};
}

}  // namespace lumora
