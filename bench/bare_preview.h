// SPDX-License-Identifier: Apache-2.0
// Slimming and whitening of preview frames in bare GL.
#ifndef LUMORA_BENCH_BARE_PREVIEW_H_
#define LUMORA_BENCH_BARE_PREVIEW_H_

#include <cstdint>

#include "bench/bare_gl.h"
#include "bench/scene.h"
#include "lumora/programs/cheek_slimmer_programs.h"
#include "lumora/programs/face_whitening_programs.h"

namespace lumora::bench {

/// Upload, warp, two packing draws, read-back into the caller's planes.
class BareSlimming {
 public:
  /// The warp is the one that an engine's program was given.
  BareSlimming(Size size, const GLProgWarp& warp);
  /// In place.
  void Run(uint8_t* frame);

 private:
  Size size_;
  Buffer texels_;
  BareProgram warp_;
  BareImage input_, warped_;
  BarePacker packer_;
};

/// Upload, four colour and whitening draws, two packing draws, read-back. Filters and wrap modes
/// are those that the engine's images have in a stream: they change what a draw costs.
class BareWhitening {
 public:
  BareWhitening(Size size, const GLProgWhiteningBase& effect);
  void Run(const uint8_t* frame, uint8_t* result);

 private:
  Size size_;
  Buffer texels_;
  BareProgram to_rgb_, to_hsi_, whiten_, to_yuv_;
  BareImage yuv_, rgb_, hsi_, whitened_;
  BarePacker packer_;
};

/// Sets the uniforms that both whitening programs have.
void SetWhitening(BareProgram& program, const GLProgWhiteningBase& effect);

}  // namespace lumora::bench

#endif  // LUMORA_BENCH_BARE_PREVIEW_H_
