// SPDX-License-Identifier: Apache-2.0
// Kernels that move the bytes of an expansion and do nothing else: the limit that memory sets.
#ifndef LUMORA_BENCH_LIMIT_KERNELS_H_
#define LUMORA_BENCH_LIMIT_KERNELS_H_

#include <cstdint>
#include <vector>

namespace lumora::bench {

/// Reads a frame's luma and chroma (every chroma row twice, once a luma row) and writes four bytes
/// a pixel; what it writes has no meaning. `width` is a multiple of 64, `texels` is aligned to 64
/// bytes and its rows are tightly packed.
using LimitKernel = void (*)(uint8_t* texels, const uint8_t* frame, int width, int height);

/// Rows in pairs or one by one, with ordinary or streaming stores.
const std::vector<LimitKernel>& LimitKernels();

}  // namespace lumora::bench

#endif  // LUMORA_BENCH_LIMIT_KERNELS_H_
