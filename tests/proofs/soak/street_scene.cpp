// SPDX-License-Identifier: Apache-2.0
#include "proofs/soak/street_scene.h"

#include <cmath>

#include "support/pictures.h"

namespace lumora::test {
namespace {

/// Somebody who walks in a straight line: at a share `t` of 0..1 of the way, tilted to and fro.
struct Walker {
  int first, last;  ///< frames
  PointF from, to;  ///< of the place between the eyes, pixels
  float eyes;       ///< distance from each other, pixels
  float tilt;       ///< the most, in radians
};

// The second crosses the first, the third passes along the lower border, half of it outside, and
// the fourth grows out of a corner.
constexpr int kFrames = 160;
const Walker kWalkers[] = {
    {0, 100, {-30, 50}, {190, 60}, 16, 0.2f},
    {30, 90, {150, -25}, {20, 150}, 20, 0.5f},
    {70, 130, {-20, 108}, {180, 112}, 14, 0.0f},
    {110, 145, {160, 120}, {130, 90}, 26, 0.8f},
};

struct Eyes {
  PointF left, right, between;
};

Eyes EyesOf(const Walker& walker, int frame) {
  const auto t =
      static_cast<float>(frame - walker.first) / static_cast<float>(walker.last - walker.first);
  const PointF between = {walker.from.x + t * (walker.to.x - walker.from.x),
                          walker.from.y + t * (walker.to.y - walker.from.y)};
  const float angle = walker.tilt * std::sin(12 * t);
  const float dx = 0.5f * walker.eyes * std::cos(angle);
  const float dy = 0.5f * walker.eyes * std::sin(angle);
  return {{between.x - dx, between.y - dy}, {between.x + dx, between.y + dy}, between};
}

/// An oval of skin with two dark eyes.
void Paint(const Eyes& eyes, float distance, Frame& frame) {
  const auto away = [](PointF a, int x, int y, float stretch) {
    return std::hypot(static_cast<float>(x) + 0.5f - a.x,
                      (static_cast<float>(y) + 0.5f - a.y) / stretch);
  };
  const PointF middle = {eyes.between.x, eyes.between.y + 0.5f * distance};
  for (int y = 0; y < frame.height; ++y) {
    for (int x = 0; x < frame.width; ++x) {
      if (away(middle, x, y, 1.35f) > 1.2f * distance) continue;
      const bool eye =
          away(eyes.left, x, y, 1) < 0.2f * distance || away(eyes.right, x, y, 1) < 0.2f * distance;
      frame.y(x, y) = static_cast<uint8_t>(eye ? 50 : 150 + (3 * x + 5 * y) % 16);
      frame.cr(x, y) = 158;
      frame.cb(x, y) = 108;
    }
  }
}

Samples SamplesOf(const Frame& frame) {
  Samples samples;
  samples.y.assign(frame.bytes.begin(),
                   frame.bytes.begin() + static_cast<std::ptrdiff_t>(frame.luma_size()));
  for (size_t i = 0; i < frame.chroma_size(); i += 2) {
    samples.cr.push_back(frame.chroma()[i]);
    samples.cb.push_back(frame.chroma()[i + 1]);
  }
  return samples;
}

}  // namespace

std::vector<StreetFrame> DrawStreet() {
  std::vector<StreetFrame> street;
  const Frame background = TextureFrame(kStreetWidth, kStreetHeight);
  for (int number = 0; number < kFrames; ++number) {
    Frame picture = background;
    StreetFrame frame;
    for (const Walker& walker : kWalkers) {
      if (number < walker.first || number > walker.last) continue;
      const Eyes eyes = EyesOf(walker, number);
      Paint(eyes, walker.eyes, picture);
      frame.faces.push_back(FaceFromEyes(eyes.left, eyes.right));
    }
    frame.samples = SamplesOf(picture);
    street.push_back(std::move(frame));
  }
  return street;
}

}  // namespace lumora::test
