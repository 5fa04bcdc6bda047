// SPDX-License-Identifier: Apache-2.0
#include "pipeline/whitening_candidates.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "pipeline/plan/frame_plan.h"
#include "reference/colour.h"
#include "reference/whitening.h"

namespace lumora::test {
namespace {

using reference::FromByte;
using reference::Texel;
using reference::ToByte;

/// What an image keeps of a colour.
Texel Stored(const Texel& texel) {
  return {FromByte(ToByte(texel.r)), FromByte(ToByte(texel.g)), FromByte(ToByte(texel.b)),
          FromByte(ToByte(texel.a))};
}

/// The engine's passes on a pixel, under the outer ellipse alone: masks of the skin come later.
class Passes {
 public:
  Passes(const WhiteningJob& job, Effect effect, Chain chain)
      : through_rgb_(chain == Chain::Preview) {
    const double turn = static_cast<double>(job.outer.angle_degrees) * 0.017453292519943295;
    const double along = static_cast<double>(job.outer.half_along);
    const double across = static_cast<double>(job.outer.half_across);
    const double x = static_cast<double>(job.outer.centre.x);
    const double y = static_cast<double>(job.outer.centre.y);
    const double a = std::cos(turn) / along, b = std::sin(turn) / along;
    const double c = -std::sin(turn) / across, d = std::cos(turn) / across;
    // The inner ellipses only mark alpha.
    for (auto& ellipse : uniforms_.ellipses) ellipse = {0, 0, 0, 0, 0, 0, 9, 9, 1};
    uniforms_.ellipses[0] = {a, c, 0, b, d, 0, -(a * x + b * y), -(c * x + d * y), 1};
    const bool lifts = effect == Effect::Intensity || effect == Effect::Both;
    const bool colours = effect == Effect::Saturation || effect == Effect::Both;
    uniforms_.intensity_shift = lifts ? static_cast<double>(job.shifts.intensity) : 0;
    uniforms_.saturation_shift = colours ? static_cast<double>(job.shifts.saturation) / 255 : 0;
  }

  Texel Whitened(uint8_t y, uint8_t cr, uint8_t cb, reference::Vec2 place) const {
    const Texel yuv = {FromByte(y), FromByte(cr), FromByte(cb), 1};
    const Texel rgb = reference::Multiply(matrix_, yuv);
    const Texel hsi = Stored(reference::RgbToHsi(through_rgb_ ? Stored(rgb) : rgb));
    return Stored(reference::HsiToYuv(Stored(reference::Whiten(hsi, place, uniforms_))));
  }

 private:
  bool through_rgb_;
  reference::Matrix4 matrix_ = reference::YuvToRgbMatrix();
  reference::WhiteningUniforms uniforms_;
};

uint8_t Mixed(uint8_t from, double to, double weight) {
  return static_cast<uint8_t>(std::lround(from + weight * (to - from)));
}

/// Whitens the four pixels of one chroma sample.
class Square {
 public:
  Square(const Samples& in, int width, int height, int column, int row)
      : in_(in), width_(width), height_(height), column_(column), row_(row) {}

  size_t sample() const { return static_cast<size_t>(row_ * ((width_ + 1) / 2) + column_); }
  /// Beyond the frame its outermost pixels go on.
  size_t PixelAt(int i) const {
    const int x = std::min(2 * column_ + i % 2, width_ - 1);
    const int y = std::min(2 * row_ + i / 2, height_ - 1);
    return static_cast<size_t>(y * width_ + x);
  }

  void Whiten(const Passes& passes, const double (&weights)[4], WhiteningCandidates* to) const {
    double mean = 0, cb_mean = 0, cr_mean = 0;
    for (const double weight : weights) mean += weight / 4;
    for (int i = 0; i < 4; ++i) {
      const uint8_t luma = in_.y[PixelAt(i)];
      const Texel yuv = passes.Whitened(luma, in_.cr[sample()], in_.cb[sample()],
                                        {2 * column_ + i % 2 + 0.5, 2 * row_ + i / 2 + 0.5});
      to->result.y[PixelAt(i)] = Mixed(luma, yuv.r * 255, weights[i]);
      const auto at = static_cast<size_t>(i);
      to->cr[at][sample()] = Mixed(in_.cr[sample()], yuv.g * 255, mean);
      to->cb[at][sample()] = Mixed(in_.cb[sample()], yuv.b * 255, mean);
      cr_mean += yuv.g * 255 / 4;
      cb_mean += yuv.b * 255 / 4;
    }
    to->result.cr[sample()] = Mixed(in_.cr[sample()], cr_mean, mean);
    to->result.cb[sample()] = Mixed(in_.cb[sample()], cb_mean, mean);
  }

 private:
  const Samples& in_;
  int width_, height_, column_, row_;
};

int DistanceFromAll(const std::array<std::vector<uint8_t>, 4>& candidates, size_t sample,
                    uint8_t value) {
  int least = 255, most = 0;
  for (const std::vector<uint8_t>& candidate : candidates) {
    least = std::min<int>(least, candidate[sample]);
    most = std::max<int>(most, candidate[sample]);
  }
  return std::max({0, least - value, value - most});
}

}  // namespace

int WhiteningCandidates::LargestChromaDistance(const Samples& samples) const {
  int largest = 0;
  for (size_t i = 0; i < samples.cb.size(); ++i) {
    largest = std::max(
        {largest, DistanceFromAll(cb, i, samples.cb[i]), DistanceFromAll(cr, i, samples.cr[i])});
  }
  return largest;
}

int WhiteningCandidates::LargestLumaDistance(const Samples& samples) const {
  int largest = 0;
  for (size_t i = 0; i < samples.y.size(); ++i) {
    largest = std::max(largest, std::abs(result.y[i] - samples.y[i]));
  }
  return largest;
}

WhiteningCandidates WhitenedCandidatesOf(const Samples& in, int width, int height, const Face& face,
                                         const Look& look, Chain chain) {
  FrameMemory memory(PixelFormat::I420, width, height);
  memory.Fill(in);
  FramePlan plan;
  PlanFrame(memory.const_view(), face, look, chain, &plan);
  WhiteningCandidates candidates = {in, {in.cb, in.cb, in.cb, in.cb}, {in.cr, in.cr, in.cr, in.cr}};
  if (plan.faces.empty() || plan.whitening.jobs.empty()) return candidates;
  const WhiteningJob& job = plan.whitening.jobs.front();
  const Passes passes(job, plan.whitening.effect, chain);
  const PixelRectangle& bounds = job.mask.bounds();
  std::vector<float> rows[2];
  for (auto& row : rows) row.resize(static_cast<size_t>(bounds.width));
  for (int y = bounds.y; y < bounds.y + bounds.height; y += 2) {
    for (int i = 0; i < 2; ++i) job.mask.Row(y + i, rows[i].data());
    for (int x = 0; x < bounds.width; x += 2) {
      const Square square(in, width, height, (bounds.x + x) / 2, y / 2);
      double weights[4];
      for (int i = 0; i < 4; ++i) {
        weights[i] = static_cast<double>(rows[i / 2][static_cast<size_t>(x + i % 2)]) *
                     static_cast<double>(job.mask.ShareOf(in.y[square.PixelAt(i)]));
      }
      if (weights[0] + weights[1] + weights[2] + weights[3] > 0) {
        square.Whiten(passes, weights, &candidates);
      }
    }
  }
  return candidates;
}

}  // namespace lumora::test
