// SPDX-License-Identifier: Apache-2.0
// Frame expansion of any geometry, each plane in memory of exactly the bytes that it may touch:
// every vector unit, the plain form and the model must agree byte for byte.
#include "lumora/convert/sp2yuvxs.h"

#include <algorithm>
#include <cstdlib>
#include <random>
#include <vector>

#include "fuzz/support/input.h"
#include "fuzz/support/require.h"
#include "hwy/cache_control.h"
#include "hwy/targets.h"
#include "lumora/convert/sp2yuvxs_scalar.h"
#include "lumora/convert/sp2yuvxs_simd.h"
#include "reference/sp2yuvxs_model.h"
#include "support/guarded_buffer.h"

namespace {

using lumora::fuzz::Input;
using lumora::fuzz::Require;
using lumora::test::GuardedBuffer;

constexpr size_t kArenaSide = 48 << 10;  // holds every geometry that is tried

Arena NoiseArena(unsigned seed) {
  Arena arena(kArenaSide);
  std::minstd_rand random(seed);
  for (uint8_t& byte : arena.bytes()) byte = static_cast<uint8_t>(random() >> 8);
  return arena;
}

/// The touched bytes of an arena, in guarded memory.
class Window {
 public:
  Window(const Arena& arena, const std::vector<uint8_t>& bytes, GuardedBuffer::Guard guard)
      : first_(arena.lowest()), memory_(arena.touched(), guard) {
    const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(kArenaSide) + first_;
    std::copy_n(begin, memory_.size(), memory_.data());
  }
  /// Where the arena's origin would be. It may lie outside the memory.
  uint8_t* origin() {
    return reinterpret_cast<uint8_t*>(reinterpret_cast<uintptr_t>(memory_.data()) -
                                      static_cast<uintptr_t>(first_));
  }
  GuardedBuffer& memory() { return memory_; }
  bool equals(const Arena& arena) const {
    const auto begin = arena.bytes().begin() + static_cast<std::ptrdiff_t>(kArenaSide) + first_;
    return std::equal(memory_.data(), memory_.data() + memory_.size(), begin);
  }

 private:
  std::ptrdiff_t first_;
  GuardedBuffer memory_;
};

Geometry TakeGeometry(Input& input) {
  Geometry g{};
  g.dstStride = input.between(0, 160);
  g.dstHeight = input.between(0, 24);
  g.srcStride = input.between(-20, 160);
  g.srcHeight = input.between(-4, 24);
  g.x = input.between(-8, 40);
  g.y = input.between(-4, 12);
  g.w = input.between(-20, 150);
  g.h = input.between(-2, 20);
  if (input.flag()) {  // sizes without remainders
    g.dstStride = std::max(g.dstStride / 16 * 16, 16);
    g.w = std::clamp(g.w / 16 * 16, 16, g.dstStride);
    g.h = std::max(g.h / 2 * 2, 2);
    g.x = std::abs(g.x) / 2 * 2;
    g.y = std::abs(g.y);
    g.srcStride = std::max(g.srcStride, g.x + g.w);
    g.srcHeight = std::max(g.srcHeight, g.y + g.h);
  }
  return g;
}

void Call(Form form, void* dst, const void* luma, const void* chroma, const Geometry& g) {
  if (form == Form::kA) {
    sp2yuvxs(dst, g.dstStride, luma, g.srcStride, g.srcHeight, g.x, g.y, g.w, g.h);
  } else if (form == Form::kB) {
    sp2yuvxs(dst, g.dstStride, g.dstHeight, luma, g.srcStride, g.srcHeight, g.x, g.y, g.w, g.h);
  } else {
    sp2yuvxs(dst, g.dstStride, g.dstHeight, luma, chroma, g.srcStride, g.srcHeight, g.x, g.y, g.w,
             g.h);
  }
}

/// The row functions themselves: the plain one is what all others must equal.
void Rows(const uint8_t* luma, const uint8_t* chroma, std::ptrdiff_t blocks, size_t shift) {
  const size_t bytes = static_cast<size_t>(blocks * lumora::kBlockBytes);
  std::vector<uint8_t> expected(bytes);
  lumora::ExpandRowScalar(expected.data(), luma, chroma, blocks);
  for (const lumora::Stores stores : {lumora::Stores::Cached, lumora::Stores::Streaming}) {
    GuardedBuffer memory(bytes + shift);
    uint8_t* row = memory.data() + memory.size() - bytes;
    lumora::ExpandRow(row, luma, chroma, blocks, stores);
    hwy::FlushStream();
    Require(std::equal(expected.begin(), expected.end(), row),
            "rows equal those of the plain form");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const Arena noise[] = {NoiseArena(1), NoiseArena(2), NoiseArena(3)};
  static const std::vector<int64_t> targets = hwy::SupportedAndGeneratedTargets();
  Input input(data, size);
  hwy::SetSupportedTargetsForTest(input.pick(targets));
  hwy::GetChosenTarget().Update(hwy::SupportedTargets());

  constexpr Form kForms[] = {Form::kA, Form::kB, Form::kC};
  const Form form = input.pick(kForms);
  const auto guard = input.flag() ? GuardedBuffer::Guard::Begin : GuardedBuffer::Guard::End;
  const int luma_shift = input.between(0, 63), target_shift = input.between(0, 63);
  Rows(noise[0].bytes().data() + luma_shift, noise[1].bytes().data(), input.between(0, 9),
       static_cast<size_t>(target_shift));

  const Geometry g = TakeGeometry(input);
  Arena expected = noise[2], luma = noise[0], chroma = noise[1];
  const bool apart = form == Form::kC;
  ModelSp2yuvxs(form, expected, luma, apart ? chroma : luma, g);

  Window target(expected, noise[2].bytes(), guard);
  Window luma_plane(luma, noise[0].bytes(), guard);
  Window chroma_plane(chroma, noise[1].bytes(), guard);
  luma_plane.memory().protect_from_writing();
  chroma_plane.memory().protect_from_writing();
  Call(form, target.origin(), luma_plane.origin(), chroma_plane.origin(), g);
  Require(target.equals(expected), "texels equal those of the model");
  Require(target.memory().intact(), "nothing else is written");
  return 0;
}
