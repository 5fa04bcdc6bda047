// SPDX-License-Identifier: Apache-2.0
// Slimmed captures, block after block.
#ifndef LUMORA_REFERENCE_SLIMMING_CAPTURE_H_
#define LUMORA_REFERENCE_SLIMMING_CAPTURE_H_

#include "reference/capture_blocks.h"
#include "reference/face_record.h"
#include "reference/warp_parameters.h"

namespace lumora::reference {

/// How far sample positions may be off, in texture coordinates. OpenGL ES 2.0 asks of a highp
/// number 16 bits behind the first: samplers that look a place up with so many of its bits are
/// right, and there are some. The warp itself is some twenty operations on single-precision
/// numbers, a small share of that.
constexpr double kCaptureSlack = 1.0 / (1 << 16) + 1.0 / (1 << 19);

class SlimmingCaptureModel {
 public:
  /// An engine after InitCapture. `block_mode`: the warp reads an HSI picture and is weaker.
  SlimmingCaptureModel(int width, int height, bool block_mode);

  /// Turns a face into the warp, as FaceProcessLarge does; a face that is rejected leaves the warp
  /// of the one before.
  void set_face(const FaceRecord& face, int level);
  /// The rectangle of whole blocks round a face, outside block mode.
  Rectangle rectangle_of(const FaceRecord& face) const;

  /// Warps the blocks of a rectangle into `out`: from the planes of a capture ...
  void slim(const std::vector<uint8_t>& planes, const Rectangle& rectangle, PlaneBounds* out) const;
  /// ... or from its HSI store.
  void slim(const Image& store, const Rectangle& rectangle, PlaneBounds* out) const;

  const CaptureSize& size() const { return size_; }
  const WarpMembers& warp() const { return warp_; }

 private:
  SlimmerUniforms uniforms_at(const Rectangle& block) const;

  CaptureSize size_;
  bool block_mode_;
  WarpMembers warp_;
};

}  // namespace lumora::reference

#endif  // LUMORA_REFERENCE_SLIMMING_CAPTURE_H_
