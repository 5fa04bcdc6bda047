// SPDX-License-Identifier: Apache-2.0
// Rows of remapped frames: both forms of the kernel, and what they must not touch.
#include "pipeline/backends/cpu/kernels/remap_rows.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "pipeline/backends/cpu/every_target.h"
#include "pipeline/backends/cpu/random_lens.h"
#include "pipeline/backends/cpu/rectification.h"
#include "support/guarded_buffer.h"

namespace lumora::test {
namespace {

using cpu::Remap;
using cpu::RemapSource;

constexpr RemapSource::Kind kKinds[] = {RemapSource::Kind::Luma, RemapSource::Kind::Chroma,
                                        RemapSource::Kind::Pairs};

class RemapRows : public EveryTarget {};

INSTANTIATE_TEST_SUITE_P(Targets, RemapRows, AllTargets(), TargetName);

/// Maps of every sort, also ones that take neighbours from places far apart.
Remap RandomRemap(std::mt19937& random, int width, int height) {
  const auto within = [&random](float most) {
    return std::uniform_real_distribution<float>(-most, most)(random);
  };
  switch (random() % 4) {
    case 0:
      return cpu::KeystoneRemap(width, height, std::uniform_int_distribution<>(-100, 100)(random));
    case 1:
      return cpu::LensRemap(width, height, RandomLens(random));
    case 2:
      return cpu::LensRemap(width, height, {within(20), within(50), within(100), within(1000)});
    default: {
      Remap remap = cpu::KeystoneRemap(width, height, 0);
      remap.quad.x = {within(200), within(3), within(3), within(0.02f)};
      remap.quad.y = {within(200), within(3), within(3), within(0.02f)};
      return remap;
    }
  }
}

/// A plane of noise that ends, or begins, where nothing may be read.
struct Plane {
  Plane(RemapSource::Kind kind, int width, int height, std::mt19937& random)
      : rows(kind == RemapSource::Kind::Luma ? height : (height + 1) / 2),
        samples(kind == RemapSource::Kind::Luma ? width : (width + 1) / 2),
        unit(kind == RemapSource::Kind::Pairs ? 2 : 1),
        stride(samples * unit + static_cast<int>(random() % 3)),
        memory(static_cast<size_t>(stride * (rows - 1) + samples * unit),
               random() % 2 == 0 ? GuardedBuffer::Guard::End : GuardedBuffer::Guard::Begin) {
    for (size_t i = 0; i < memory.size(); ++i) memory.data()[i] = static_cast<uint8_t>(random());
    memory.protect_from_writing();
    source = {kind, random() % 2 == 0, memory.data(), stride, samples * unit};
  }

  int rows, samples, unit, stride;
  GuardedBuffer memory;
  RemapSource source;
};

TEST_P(RemapRows, AreThoseOfThePlainFormAndTouchNothingElse) {
  std::mt19937 random(5);
  const auto up_to = [&random](int most) {
    return std::uniform_int_distribution<>(0, most)(random);
  };
  for (int round = 0; round < 120; ++round) {
    const int width = 32 + up_to(250), height = 32 + up_to(120);
    const Remap remap = RandomRemap(random, width, height);
    for (const RemapSource::Kind kind : kKinds) {
      const Plane plane(kind, width, height, random);
      for (int row = up_to(8); row < plane.rows; row += 1 + up_to(20)) {
        const int begin = up_to(3) == 0 ? up_to(plane.samples - 1) : 0;
        const int end =
            up_to(3) == 0 ? begin + 1 + up_to(plane.samples - begin - 1) : plane.samples;
        const auto bytes = static_cast<size_t>((end - begin) * plane.unit);
        std::vector<uint8_t> expected(bytes);
        cpu::scalar::RemapRow(remap, plane.source, row, begin, end, expected.data());
        GuardedBuffer got(bytes,
                          row % 2 == 0 ? GuardedBuffer::Guard::End : GuardedBuffer::Guard::Begin);
        cpu::RemapRow(remap, plane.source, row, begin, end, got.data());
        ASSERT_EQ(0, std::memcmp(got.data(), expected.data(), bytes))
            << "round " << round << ", plane " << static_cast<int>(kind) << ", row " << row;
        ASSERT_TRUE(got.intact());
      }
    }
  }
}

TEST_P(RemapRows, OfAMapThatMovesByWholePixelsAreCopies) {
  constexpr int kWidth = 101, kHeight = 64;
  std::mt19937 random(6);
  const Plane plane(RemapSource::Kind::Luma, kWidth, kHeight, random);
  for (const int shift : {-7, 0, 12}) {
    Remap remap = cpu::KeystoneRemap(kWidth, kHeight, 0);
    remap.quad.x.from = static_cast<float>(shift);
    std::vector<uint8_t> row(kWidth);
    cpu::RemapRow(remap, plane.source, 9, 0, kWidth, row.data());
    for (int x = 0; x < kWidth; ++x) {
      // To the left the engine's frame is mirrored, to the right the last pixel goes on.
      const int from = x + shift;
      const int column = from < 0 ? -1 - from : std::min(from, kWidth - 1);
      ASSERT_EQ(row[static_cast<size_t>(x)], plane.memory.data()[9 * plane.stride + column]) << x;
    }
  }
}

// The largest frames that there are.
TEST_P(RemapRows, OfTheWidestFrameReachItsEnds) {
  constexpr int kWidth = 32768, kHeight = 32;
  std::mt19937 random(7);
  const Plane plane(RemapSource::Kind::Luma, kWidth, kHeight, random);
  std::vector<uint8_t> row(kWidth), expected(kWidth);
  for (const Remap& remap :
       {cpu::KeystoneRemap(kWidth, kHeight, 0), cpu::LensRemap(kWidth, kHeight, {1, 0, 0, 0})}) {
    cpu::RemapRow(remap, plane.source, 31, 0, kWidth, row.data());
    cpu::scalar::RemapRow(remap, plane.source, 31, 0, kWidth, expected.data());
    ASSERT_EQ(row, expected);
  }
  cpu::RemapRow(cpu::KeystoneRemap(kWidth, kHeight, 0), plane.source, 31, 0, kWidth, row.data());
  EXPECT_EQ(0, std::memcmp(row.data(), plane.memory.data() + 31 * plane.stride, kWidth));
}

}  // namespace
}  // namespace lumora::test
