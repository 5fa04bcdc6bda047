// SPDX-License-Identifier: Apache-2.0
// The face slimming warp. See programs.h for the family.
#ifndef LUMORA_PROGRAMS_CHEEK_SLIMMER_PROGRAMS_H_
#define LUMORA_PROGRAMS_CHEEK_SLIMMER_PROGRAMS_H_

#include "lumora/export.h"
#include "lumora/geometry/warp.h"
#include "lumora/gl/gl_program.h"

/// What the three warp programs share: the warp's parameters and their upload. The engine writes
/// the members, then calls Use and Draw.
class LUMORA_API GLProgWarp : public GLProgram {
 public:
  ~GLProgWarp() override;

  /// Chosen before Load: the variant that paints a red band on the warp's rim.
  bool m_bShowMask = false;
  /// Face centre (x, y) in texture coordinates, warp strength, face radius in texture units.
  float m_fvController[4] = {};
  /// Frame height / width.
  float m_fAspectRatio = 0.0f;
  /// Direction (radians) and distance (share of the radius) of the limiter's centre, limiter scale.
  float m_fvAngleLimiter[3] = {};
  /// Capture programs: block size / frame size.
  float m_fvScale[2] = {};
  /// Capture programs: face centre minus block origin, in texture coordinates of the frame.
  float m_fvShift[2] = {};
};

/// Preview frames: one texture in, the warped texture out. Fades the warp towards the frame's
/// borders.
class LUMORA_API GLProgCheekSlimmer : public GLProgWarp {
 public:
  /// Exponent of the distance to the nearest border: 0 would be no fade.
  static constexpr float kEdgeFade = static_cast<float>(lumora::kEdgeFade);

  ~GLProgCheekSlimmer() override;
  bool Load() override;
  bool Use() override;
};

/// Capture blocks from a luma texture (input 0) and a chroma texture (input 1); writes (Y, Cr, Cb,
/// 1).
class LUMORA_API GLProgCheekSlimmerLarge : public GLProgWarp {
 public:
  ~GLProgCheekSlimmerLarge() override;
  bool Load() override;
  bool Use() override;
};

/// Capture blocks from an HSI texture (input 0); writes (Y, Cr, Cb, 1).
class LUMORA_API GLProgCheekSlimmerLarge_HSI : public GLProgWarp {
 public:
  ~GLProgCheekSlimmerLarge_HSI() override;
  bool Load() override;
  bool Use() override;
};

#endif  // LUMORA_PROGRAMS_CHEEK_SLIMMER_PROGRAMS_H_
