// SPDX-License-Identifier: Apache-2.0
// The kernels of the pipeline on the cpu: each beside its plain form.
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>

#include "bench/counters.h"
#include "bench/families.h"
#include "bench/instruction_sets.h"
#include "bench/scene.h"
#include "pipeline/backends/cpu/kernels/remap_rows.h"
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
  }
}

}  // namespace lumora::bench
