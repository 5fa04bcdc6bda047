// SPDX-License-Identifier: Apache-2.0
#include "bench/limit_kernels.h"

#include <cstddef>

// Highway compiles the rest of this file once per instruction set.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "bench/limit_kernels.cpp"
#include "hwy/cache_control.h"
#include "hwy/foreach_target.h"  // must precede highway.h
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace lumora::bench {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;
using Bytes = hn::CappedTag<uint8_t, 64>;

/// One row from column `begin` on: a vector of luma and one of chroma become four of texels.
template <bool kStream>
HWY_INLINE void MoveRow(uint8_t* HWY_RESTRICT texels, const uint8_t* HWY_RESTRICT luma,
                        const uint8_t* HWY_RESTRICT chroma, size_t begin, size_t end) {
  const Bytes bytes;
  const auto store = [&](auto value, uint8_t* to) {
    if constexpr (kStream) {
      hn::Stream(value, bytes, to);
    } else {
      hn::Store(value, bytes, to);
    }
  };
  const size_t lanes = hn::Lanes(bytes);
  for (size_t x = begin; x < end; x += lanes) {
    const auto y = hn::LoadU(bytes, luma + x);
    const auto c = hn::LoadU(bytes, chroma + x);
    store(y, texels + 4 * x);
    store(c, texels + 4 * x + lanes);
    store(y, texels + 4 * x + 2 * lanes);
    store(c, texels + 4 * x + 3 * lanes);
  }
}

template <bool kStream, bool kPairs>
void MoveFrame(uint8_t* texels, const uint8_t* frame, int width, int height) {
  const auto columns = static_cast<size_t>(width);
  const auto rows = static_cast<size_t>(height);
  const uint8_t* const chroma = frame + columns * rows;
  const size_t step = kPairs ? hn::Lanes(Bytes()) : columns;
  for (size_t row = 0; row < rows; row += 2) {
    for (size_t x = 0; x < columns; x += step) {
      for (size_t line = row; line < row + 2; ++line) {
        MoveRow<kStream>(texels + 4 * columns * line, frame + columns * line,
                         chroma + columns * (row / 2), x, x + step);
      }
    }
  }
  if (kStream) hwy::FlushStream();
}

void Pairs(uint8_t* texels, const uint8_t* frame, int width, int height) {
  MoveFrame<false, true>(texels, frame, width, height);
}
void Rows(uint8_t* texels, const uint8_t* frame, int width, int height) {
  MoveFrame<false, false>(texels, frame, width, height);
}
void PairsStreamed(uint8_t* texels, const uint8_t* frame, int width, int height) {
  MoveFrame<true, true>(texels, frame, width, height);
}
void RowsStreamed(uint8_t* texels, const uint8_t* frame, int width, int height) {
  MoveFrame<true, false>(texels, frame, width, height);
}

}  // namespace HWY_NAMESPACE
}  // namespace lumora::bench
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace lumora::bench {

HWY_EXPORT(Pairs);
HWY_EXPORT(Rows);
HWY_EXPORT(PairsStreamed);
HWY_EXPORT(RowsStreamed);

namespace {

void RunPairs(uint8_t* texels, const uint8_t* frame, int width, int height) {
  HWY_DYNAMIC_DISPATCH(Pairs)(texels, frame, width, height);
}
void RunRows(uint8_t* texels, const uint8_t* frame, int width, int height) {
  HWY_DYNAMIC_DISPATCH(Rows)(texels, frame, width, height);
}
void RunPairsStreamed(uint8_t* texels, const uint8_t* frame, int width, int height) {
  HWY_DYNAMIC_DISPATCH(PairsStreamed)(texels, frame, width, height);
}
void RunRowsStreamed(uint8_t* texels, const uint8_t* frame, int width, int height) {
  HWY_DYNAMIC_DISPATCH(RowsStreamed)(texels, frame, width, height);
}

}  // namespace

const std::vector<LimitKernel>& LimitKernels() {
  static const std::vector<LimitKernel> kernels = {RunPairs, RunRows, RunPairsStreamed,
                                                   RunRowsStreamed};
  return kernels;
}

}  // namespace lumora::bench
#endif  // HWY_ONCE
