// SPDX-License-Identifier: Apache-2.0
// Lens and perspective rectification of whole frames. See programs.h for the family.
#ifndef LUMORA_PROGRAMS_RECTIFICATION_PROGRAMS_H_
#define LUMORA_PROGRAMS_RECTIFICATION_PROGRAMS_H_

#include "lumora/export.h"
#include "lumora/gl/gl_program.h"

/// Maps the frame onto a quadrilateral of the input by bilinear interpolation of its corners. The
/// class's name has always been spelt this way.
class LUMORA_API GLProgRectificaton : public GLProgram {
 public:
  enum UniformName : int {
    UNIFORM_POS_QUAD_0 = 0,
    UNIFORM_POS_QUAD_1,
    UNIFORM_POS_QUAD_2,
    UNIFORM_POS_QUAD_3,
    UNIFORM_POS_DEGREE,
  };

  ~GLProgRectificaton() override;
  bool Load() override;
  bool Use() override;

  /// Corners in texture coordinates of the input: 0 and 1 the ends of the edge drawn at y = 0 (at
  /// x = 0 and x = 1), 2 and 3 those of the edge at y = 1.
  float m_fvQuad[4][2] = {};
  /// Chosen before Load: the variant that paints a red dot showing `m_fDegree`.
  bool m_bShowMask = false;
  /// The setting that the dot shows, -3 .. 3.
  float m_fDegree = 0.0f;
};

/// Corrects radial lens distortion by a polynomial in the squared distance from the image centre.
class LUMORA_API GLProgRadialDistortion : public GLProgram {
 public:
  enum UniformName : int { UNIFORM_POS_KVAL = 0 };

  ~GLProgRadialDistortion() override;
  bool Load() override;
  bool Use() override;

  /// Coefficients k0 .. k3 of k0 + k1 r + k2 r^2 + k3 r^3, r the squared radius, 1 in the corners.
  float m_fvKval[4] = {};
};

#endif  // LUMORA_PROGRAMS_RECTIFICATION_PROGRAMS_H_
