// SPDX-License-Identifier: Apache-2.0
// Colour conversion and packing of whole frames. See programs.h for the family.
#ifndef LUMORA_PROGRAMS_COLOUR_PROGRAMS_H_
#define LUMORA_PROGRAMS_COLOUR_PROGRAMS_H_

#include "lumora/export.h"
#include "lumora/gl/gl_program.h"

/// YUV texels (Y, Cr, Cb, 1) to RGBA, by `m_fMatYUV2RGB`. Input alpha other than 1 scales the
/// chroma offsets.
class LUMORA_API GLProgYUV2RGB : public GLProgram {
 public:
  ~GLProgYUV2RGB() override;
  bool Load() override;
  bool Use() override;
};

/// RGB texels to (H, S, I, 0): hue in turns, saturation (max - min) / max, intensity max(R, G, B).
class LUMORA_API GLProgRGB2HSI : public GLProgram {
 public:
  ~GLProgRGB2HSI() override;
  bool Load() override;
  bool Use() override;
};

/// YUV texels straight to (H, S, I, 0).
class LUMORA_API GLProgYUV2HSI : public GLProgram {
 public:
  ~GLProgYUV2HSI() override;
  bool Load() override;
  bool Use() override;
};

/// HSI texels to (Y, Cr, Cb, 1), full range. Its coefficients have full precision while those of
/// the opposite direction have three decimals; frames that make the round trip were always made so.
class LUMORA_API GLProgHSI2YUV : public GLProgram {
 public:
  ~GLProgHSI2YUV() override;
  bool Load() override;
  bool Use() override;
};

/// Packs the luma of four neighbouring pixels into one RGBA texel: the target's bytes are a Y
/// plane.
class LUMORA_API GLProgRGBtoY : public GLProgram {
 public:
  enum UniformName : int { UNIFORM_SHIFT = 0 };

  ~GLProgRGBtoY() override;
  bool Load() override;
  bool Use() override;

  /// Four (s, t) offsets in texture coordinates, to be set after Load.
  float m_fShift[8] = {};
};

/// Packs the chroma of two pixel pairs into one RGBA texel: the target's bytes are an interleaved
/// chroma plane, Cr first.
class LUMORA_API GLProgRGBtoUV : public GLProgram {
 public:
  enum UniformName : int { UNIFORM_SHIFT = 0 };

  ~GLProgRGBtoUV() override;
  bool Load() override;
  bool Use() override;

  /// Two (s, t) offsets in texture coordinates, to be set after Load.
  float m_fShift[4] = {};
};

#endif  // LUMORA_PROGRAMS_COLOUR_PROGRAMS_H_
