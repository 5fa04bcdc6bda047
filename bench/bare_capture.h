// SPDX-License-Identifier: Apache-2.0
// Whitening of one block of a capture in bare GL.
#ifndef LUMORA_BENCH_BARE_CAPTURE_H_
#define LUMORA_BENCH_BARE_CAPTURE_H_

#include <cstdint>

#include "bench/bare_gl.h"
#include "bench/scene.h"
#include "lumora/programs/face_whitening_programs.h"

namespace lumora::bench {

/// The two halves of a block's way: into an HSI store of the whole frame, and from there back to
/// planes. Blocks are 384 x 384 and lie inside the frame.
class BareCapture {
 public:
  static constexpr int kBlock = 384;

  BareCapture(Size size, const GLProgWhiteningBase& effect);
  /// Expand, upload, two draws, read the block into the store.
  void Whiten(const uint8_t* frame, int x, int y);
  /// Upload the block of the store, colours back to YUV, pack, read into the planes.
  void Return(uint8_t* frame, int x, int y);

 private:
  Size size_;
  Buffer texels_, block_, store_;
  BareProgram to_hsi_, whiten_, to_yuv_;
  int scale_;
  BareImage yuv_, hsi_, whitened_, stored_;
  BarePacker packer_;
};

}  // namespace lumora::bench

#endif  // LUMORA_BENCH_BARE_CAPTURE_H_
