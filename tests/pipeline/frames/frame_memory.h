// SPDX-License-Identifier: Apache-2.0
// Frames in memory of their own, with bytes around every row that must not be touched.
#ifndef LUMORA_TESTS_PIPELINE_FRAME_MEMORY_H_
#define LUMORA_TESTS_PIPELINE_FRAME_MEMORY_H_

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "lumora/pipeline/frame.h"

namespace lumora::test {

/// The samples of a frame without any layout: what all formats and strides have in common.
struct Samples {
  std::vector<uint8_t> y, cb, cr;  ///< row after row, chroma at half size rounded up

  bool operator==(const Samples& other) const {
    return y == other.y && cb == other.cb && cr == other.cr;
  }
};

constexpr PixelFormat kAllFormats[] = {PixelFormat::NV21, PixelFormat::NV12, PixelFormat::I420};

/// A frame with planes of its own. Rows have `slack` bytes behind their samples, planes have guard
/// bytes before and behind; all of these hold kGuard.
class FrameMemory {
 public:
  static constexpr uint8_t kGuard = 0xA5;

  FrameMemory(PixelFormat format, int width, int height, int slack = 0)
      : format_(format), width_(width), height_(height) {
    for (size_t plane = 0; plane < planes(); ++plane) {
      stride_[plane] = row_bytes(plane) + static_cast<size_t>(slack);
      bytes_[plane].assign(2 * kGuardBytes + stride_[plane] * rows(plane), kGuard);
    }
  }

  FrameView view() {
    FrameView frame;
    frame.format = format_;
    frame.width = width_;
    frame.height = height_;
    for (size_t plane = 0; plane < planes(); ++plane) {
      frame.planes[plane] = bytes_[plane].data() + kGuardBytes;
      frame.strides[plane] = static_cast<std::ptrdiff_t>(stride_[plane]);
    }
    return frame;
  }
  ConstFrameView const_view() { return AsConst(view()); }

  void Fill(const Samples& samples) {
    ForEachSample(samples, [](uint8_t& here, const uint8_t& sample) { here = sample; });
  }

  Samples Read() {
    Samples samples;
    samples.y.resize(size(width_) * size(height_));
    samples.cb.resize(size(chroma_width()) * size(chroma_height()));
    samples.cr = samples.cb;
    ForEachSample(samples, [](uint8_t& here, uint8_t& sample) { sample = here; });
    return samples;
  }

  /// Whether every byte that is no sample still holds kGuard.
  bool GuardsIntact() const {
    for (size_t plane = 0; plane < planes(); ++plane) {
      const std::vector<uint8_t>& all = bytes_[plane];
      for (size_t i = 0; i < all.size(); ++i) {
        const bool in_rows = i >= kGuardBytes && i < all.size() - kGuardBytes;
        if (in_rows && (i - kGuardBytes) % stride_[plane] < row_bytes(plane)) continue;
        if (all[i] != kGuard) return false;
      }
    }
    return true;
  }

  /// All bytes, guards included, for telling whether anything was written at all.
  std::vector<std::vector<uint8_t>> Everything() const { return {bytes_, bytes_ + 3}; }

  int chroma_width() const { return (width_ + 1) / 2; }
  int chroma_height() const { return (height_ + 1) / 2; }

 private:
  static constexpr size_t kGuardBytes = 64;
  static size_t size(int value) { return static_cast<size_t>(value); }

  bool planar() const { return format_ == PixelFormat::I420; }
  size_t planes() const { return planar() ? 3 : 2; }
  size_t rows(size_t plane) const { return size(plane == 0 ? height_ : chroma_height()); }
  size_t row_bytes(size_t plane) const {
    if (plane == 0) return size(width_);
    return size(planar() ? chroma_width() : 2 * chroma_width());
  }
  uint8_t* row(size_t plane, int y) {
    return bytes_[plane].data() + kGuardBytes + size(y) * stride_[plane];
  }

  template <typename AnySamples, typename Visit>
  void ForEachSample(AnySamples& samples, Visit visit) {
    for (int y = 0; y < height_; ++y) {
      for (int x = 0; x < width_; ++x) {
        visit(row(0, y)[x], samples.y[size(y) * size(width_) + size(x)]);
      }
    }
    for (int y = 0; y < chroma_height(); ++y) {
      for (int x = 0; x < chroma_width(); ++x) {
        const size_t i = size(y) * size(chroma_width()) + size(x);
        if (planar()) {
          visit(row(1, y)[x], samples.cb[i]);
          visit(row(2, y)[x], samples.cr[i]);
        } else {
          const int cr_first = format_ == PixelFormat::NV21 ? 0 : 1;
          visit(row(1, y)[2 * x + cr_first], samples.cr[i]);
          visit(row(1, y)[2 * x + 1 - cr_first], samples.cb[i]);
        }
      }
    }
  }

  PixelFormat format_;
  int width_;
  int height_;
  size_t stride_[3] = {};
  std::vector<uint8_t> bytes_[3];
};

/// Noise: every sample differs from its neighbours, so that nothing can move unnoticed.
inline Samples NoiseSamples(int width, int height, uint32_t seed = 1) {
  std::mt19937 random(seed);
  const auto noise = [&random](int columns, int rows) {
    std::vector<uint8_t> bytes(static_cast<size_t>(columns) * static_cast<size_t>(rows));
    for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
    return bytes;
  };
  const int chroma_width = (width + 1) / 2;
  const int chroma_height = (height + 1) / 2;
  return {noise(width, height), noise(chroma_width, chroma_height),
          noise(chroma_width, chroma_height)};
}

}  // namespace lumora::test

#endif  // LUMORA_TESTS_PIPELINE_FRAME_MEMORY_H_
