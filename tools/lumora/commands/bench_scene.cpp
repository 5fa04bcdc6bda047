// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/commands/bench_scene.h"

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

#include "tools/lumora/support/clock.h"
#include "tools/lumora/support/failure.h"

namespace lumora::tools {
namespace {

class NoisyFrame {
 public:
  NoisyFrame(int width, int height) : width_(width), height_(height) {
    const auto pixels = static_cast<size_t>(width) * static_cast<size_t>(height);
    std::mt19937 random(1);
    const auto noisy = [&random](unsigned middle) {
      return static_cast<uint8_t>(middle + random() % 16);
    };
    luma_.resize(pixels);
    chroma_.resize(pixels / 2);
    for (uint8_t& sample : luma_) sample = noisy(122);
    for (size_t i = 0; i < chroma_.size(); ++i) chroma_[i] = noisy(i % 2 == 0 ? 147 : 97);
  }

  FrameView View() {
    return {PixelFormat::NV21,
            width_,
            height_,
            {luma_.data(), chroma_.data(), nullptr},
            {width_, width_, 0}};
  }

 private:
  int width_, height_;
  std::vector<uint8_t> luma_, chroma_;
};

/// A face in the middle: of someone who holds the camera in a preview, a fifth of the width in a
/// capture.
Face FaceIn(const BenchCase& what) {
  const auto x = static_cast<float>(what.width) / 2;
  const auto y = static_cast<float>(what.height) * 0.45f;
  const float half =
      static_cast<float>(what.height) * (what.chain == Chain::Preview ? 0.085f : 0.06f);
  return FaceFromEyes({x - half, y}, {x + half, y});
}

}  // namespace

Timing Measure(Retoucher& retoucher, const BenchCase& what, double seconds) {
  NoisyFrame frame(what.width, what.height);
  NoisyFrame result(what.width, what.height);
  const Face face = FaceIn(what);
  Timing timing;
  const auto process = [&] {
    const double before = Now();
    ThrowUnlessOk(retoucher.pipeline().Process(
        {AsConst(frame.View()), result.View(), {face}, what.look, what.chain}, &timing.report));
    return Now() - before;
  };
  const double start = Now();
  timing.first_ms = process();
  std::vector<double> frames;
  do {
    frames.push_back(process());
  } while (Now() - start < seconds * 1e3);
  std::nth_element(frames.begin(), frames.begin() + static_cast<std::ptrdiff_t>(frames.size() / 2),
                   frames.end());
  timing.median_ms = frames[frames.size() / 2];
  timing.frames = static_cast<int>(frames.size()) + 1;
  return timing;
}

}  // namespace lumora::tools
