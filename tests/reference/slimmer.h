// SPDX-License-Identifier: Apache-2.0
// The slimming warp and its three programs.
#ifndef LUMORA_REFERENCE_SLIMMER_H_
#define LUMORA_REFERENCE_SLIMMER_H_

#include "reference/image.h"

namespace lumora::reference {

/// The warp's uniforms. Lengths are in texture units of the x axis.
struct SlimmerUniforms {
  Vec2 centre;                    ///< g_fController x, y
  double strength = 0.0;          ///< g_fController z
  double radius = 0.0;            ///< g_fController w
  double aspect_ratio = 1.0;      ///< frame height / width
  double limiter_direction = 0;   ///< g_fvAngleLimiter x, radians
  double limiter_distance = 0.0;  ///< g_fvAngleLimiter y, of the radius
  double limiter_scale = 1.0;     ///< g_fvAngleLimiter z
  double edge_fix = 0.2;          ///< 0.2 for whole frames, 0 for blocks
  Vec2 block_scale{1.0, 1.0};     ///< u_scale, programs for blocks only
  Vec2 block_shift;               ///< u_shift, programs for blocks only
};

/// Where a pixel takes its value from.
struct WarpPoint {
  Vec2 coordinate;         ///< the sample position, in texture coordinates of the frame
  double ratio = 1.0;      ///< 0 is the full warp, 1 is none
  double unclamped = 1.0;  ///< the ratio before it is limited to 0..1: near 0.95 and 1 the last bit
                           ///< decides whether a mask variant marks the pixel
};

/// The warp over a whole frame, and over one block of a frame, for a texture coordinate.
WarpPoint WarpFrame(Vec2 coordinate, const SlimmerUniforms& uniforms);
WarpPoint WarpBlock(Vec2 coordinate, const SlimmerUniforms& uniforms);

/// Whether a mask variant paints the pixel red.
bool MaskMarks(const WarpPoint& point);
/// The red it paints.
constexpr Texel kMaskRed{1.0, 0.0, 0.0, 1.0};

/// Preview: one input.
struct CheekSlimmer {
  Sampler input;
  SlimmerUniforms uniforms;
  bool mask = false;
  Texel operator()(Vec2 coordinate) const;
};

/// Capture: luma from the first input's red, chroma from the second's red and alpha.
struct CheekSlimmerLarge {
  Sampler luma;
  Sampler chroma;
  SlimmerUniforms uniforms;
  bool mask = false;
  Texel operator()(Vec2 coordinate) const;
};

/// Capture from an HSI image: the warped pixel comes out as YUV.
struct CheekSlimmerLargeHsi {
  Sampler input;
  SlimmerUniforms uniforms;
  bool mask = false;
  Texel operator()(Vec2 coordinate) const;
};

}  // namespace lumora::reference

#endif  // LUMORA_REFERENCE_SLIMMER_H_
