// SPDX-License-Identifier: Apache-2.0
// The kernels of the pipeline on the cpu: each beside its plain form.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "bench/counters.h"
#include "bench/families.h"
#include "bench/instruction_sets.h"
#include "bench/scene.h"
#include "pipeline/backends/cpu/kernels/mask_weights.h"
#include "pipeline/backends/cpu/kernels/remap_rows.h"
#include "pipeline/backends/cpu/kernels/warp_rows.h"
#include "pipeline/backends/cpu/kernels/whiten_rows.h"
#include "pipeline/backends/cpu/rectification.h"

namespace lumora::bench {
namespace {

/// A kernel's work on a frame, by one of its forms, into a result of the frame's bytes.
using Kernel = std::function<void(uint8_t* result)>;

void Compare(benchmark::State& state, const InstructionSet& set, const Kernel& simd,
             const Kernel& plain) {
  const WithInstructionSet with(set);
  const Buffer ours(k720.FrameBytes()), theirs(k720.FrameBytes());
  simd(ours.data());
  plain(theirs.data());
  Require(std::memcmp(ours.data(), theirs.data(), ours.size()) == 0, "the two forms differ");
  Plan plan;
  plan.sample_ms = 5;
  ReportPair(state, Ratio::kSpeed, {[&] { simd(ours.data()); }, {}},
             {{[&] { plain(theirs.data()); }, {}}}, plan);
}

/// All rows of one plane of a frame in NV21.
template <typename Row>
Kernel Remapping(const Buffer& frame, const cpu::Remap& remap, cpu::RemapSource::Kind kind,
                 Row row_of) {
  const bool luma = kind == cpu::RemapSource::Kind::Luma;
  const uint8_t* const samples = frame.data() + (luma ? 0 : k720.Pixels());
  const cpu::RemapSource source = {kind, false, samples, k720.width, k720.width};
  return [=](uint8_t* result) {
    const int rows = luma ? k720.height : k720.height / 2;
    const int columns = luma ? k720.width : k720.width / 2;
    for (int row = 0; row < rows; ++row) {
      row_of(remap, source, row, 0, columns, result + row * k720.width);
    }
  };
}

void RegisterRemap(const std::string& name, const cpu::Remap& remap, cpu::RemapSource::Kind kind,
                   const InstructionSet& set) {
  Register("cpu/kernels/" + std::string(set.name) + "/" + name, [=](benchmark::State& state) {
    const Buffer frame = RandomFrame(k720);
    Compare(state, set, Remapping(frame, remap, kind, cpu::RemapRow),
            Remapping(frame, remap, kind, cpu::scalar::RemapRow));
  });
}

/// What faces are drawn in: luma and pairs of a square whose rows follow each other.
constexpr int kSide = 512;
constexpr ptrdiff_t kSquare = ptrdiff_t{kSide} * kSide;

/// A place of the square relative to its middle.
float FromMiddle(int pixel) {
  return static_cast<float>(pixel - kSide / 2) + 0.5f;
}

/// The warp of a face that fills the square.
template <typename Draw>
Kernel Warping(const Buffer& frame, Draw draw) {
  constexpr cpu::WarpShape kShape = {0.8f / 240, 1.f / 240, 0.f, -130.f, 1.f / 200, false};
  const auto source_of = [](const uint8_t* samples) {
    return cpu::WarpSource{
        samples, samples + kSquare + 2 * kSide, kSide, kSide, kSide, FromMiddle(0), FromMiddle(0)};
  };
  const cpu::WarpSource source = source_of(frame.data());
  return [=](uint8_t* result) {
    const std::vector<float> borders(kSide, 0.9f);
    for (int y = 0; y < kSide; y += 2) {
      uint8_t* const luma = result + ptrdiff_t{y} * kSide;
      draw(kShape, source,
           {FromMiddle(0),
            FromMiddle(y),
            kSide,
            borders.data(),
            {0.9f, 0.9f},
            {luma, luma + kSide},
            result + kSquare + ptrdiff_t{y / 2} * kSide});
    }
  };
}

/// The whitening of every pixel of the square, of which each form takes a copy.
template <typename Draw>
Kernel Whitening(const Buffer& frame, bool round_rgb, Draw draw) {
  const cpu::WhitenTone tone = {1.f / 256, 0, 0, 1.f / 300, 1.6f, 0.1f, 30.f, 1.f / 60, round_rgb};
  const uint8_t* const samples = frame.data();
  return [=](uint8_t* result) {
    std::memcpy(result, samples, kSquare * 3 / 2);
    const std::vector<float> weights(kSide, 0.7f);
    for (int y = 0; y < kSide; y += 2) {
      uint8_t* const luma = result + ptrdiff_t{y} * kSide;
      draw(tone, {FromMiddle(0),
                  FromMiddle(y),
                  kSide,
                  {weights.data(), weights.data()},
                  {luma, luma + kSide},
                  result + kSquare + ptrdiff_t{y / 2} * kSide});
    }
  };
}

/// The mask of a face as large as that of previews; weights are the result.
template <typename Weigh>
Kernel Weighing(const SkinMask& mask, Weigh weigh) {
  const PixelRectangle& bounds = mask.bounds();
  const int columns =
      (bounds.width + cpu::kMaskColumns - 1) / cpu::kMaskColumns * cpu::kMaskColumns;
  Require(ptrdiff_t{columns} * bounds.height * 4 <= static_cast<ptrdiff_t>(k720.FrameBytes()),
          "the mask is larger than the result");
  cpu::MaskTaps taps;
  taps.Set(mask.RowAt(bounds.y).step, static_cast<size_t>(columns));
  std::vector<MaskRow> rows;
  for (int row = 0; row < bounds.height; ++row) rows.push_back(mask.RowAt(bounds.y + row));
  return [=](uint8_t* result) {
    // Whoever draws weighs two rows and then the next two.
    constexpr size_t kRows = 2;
    auto* const weights = reinterpret_cast<float*>(result);
    for (size_t row = 0; row < rows.size(); ++row) {
      weigh(rows[row], taps, {0, columns}, weights + row % kRows * static_cast<size_t>(columns));
    }
  };
}

void RegisterFaces(const InstructionSet& set) {
  const auto add = [&set](const char* name, const auto& body) {
    Register("cpu/kernels/" + std::string(set.name) + "/" + name,
             [set, body](benchmark::State& state) { body(state, set); });
  };
  add("warp", [](benchmark::State& state, const InstructionSet& with) {
    const Buffer frame = SmoothFrame(k720);
    Compare(state, with, Warping(frame, cpu::DrawWarp), Warping(frame, cpu::scalar::DrawWarp));
  });
  for (const bool round_rgb : {true, false}) {
    add(round_rgb ? "whiten_preview" : "whiten_capture",
        [round_rgb](benchmark::State& state, const InstructionSet& with) {
          const Buffer frame = SkinFrame(k720);
          Compare(state, with, Whitening(frame, round_rgb, cpu::DrawWhitening),
                  Whitening(frame, round_rgb, cpu::scalar::DrawWhitening));
        });
  }
  add("mask_weights", [](benchmark::State& state, const InstructionSet& with) {
    const Face face = PreviewFace(k720);
    const SkinMask mask(face, WhiteningEllipses(face)[kFaceEllipse], 130, k720.width, k720.height);
    Compare(state, with, Weighing(mask, cpu::MaskWeights),
            Weighing(mask, cpu::scalar::MaskWeights));
  });
}

}  // namespace

void RegisterKernels() {
  using Kind = cpu::RemapSource::Kind;
  const cpu::Remap keystone = cpu::KeystoneRemap(k720.width, k720.height, 20);
  const cpu::Remap lens = cpu::LensRemap(k720.width, k720.height, LensCoefficients{});
  for (const InstructionSet& set : InstructionSets()) {
    RegisterRemap("keystone_luma", keystone, Kind::Luma, set);
    RegisterRemap("keystone_chroma", keystone, Kind::Pairs, set);
    RegisterRemap("lens_luma", lens, Kind::Luma, set);
    RegisterRemap("lens_chroma", lens, Kind::Pairs, set);
    RegisterFaces(set);
  }
}

}  // namespace lumora::bench
