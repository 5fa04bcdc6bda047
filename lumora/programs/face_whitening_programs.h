// SPDX-License-Identifier: Apache-2.0
// Face whitening on HSI images. See programs.h for the family.
#ifndef LUMORA_PROGRAMS_FACE_WHITENING_PROGRAMS_H_
#define LUMORA_PROGRAMS_FACE_WHITENING_PROGRAMS_H_

#include "lumora/export.h"
#include "lumora/gl/gl_program.h"

/// What both whitening programs share: the effect and the seven ellipses. The engine writes the
/// members before each draw; Use uploads them every time.
class LUMORA_API GLProgWhiteningBase : public GLProgram {
 public:
  ~GLProgWhiteningBase() override;

  float m_fAspectRatio = 0.0f;  ///< frame height / width; uploaded, not read by the shaders
  float m_fDiffI = 0.0f;        ///< intensity shift in logit units
  float m_fDiffS = 0.0f;        ///< saturation shift, 0 .. 1
  /// 3 x 3 matrices, column by column: applied to (u, v, 1) each gives the pixel's place in the
  /// frame of one ellipse, whose line is the unit circle. 0 outer face, 1 centre, 2 and 3 the eyes,
  /// 4 the fourth inner ellipse, 5 and 6 the second pair of eye ellipses.
  float m_fEllipseController[7][9] = {};

 protected:
  void UploadEffect();
};

/// Whitens one face of a whole frame (input 0, HSI).
class LUMORA_API GLProgFaceWhitening : public GLProgWhiteningBase {
 public:
  ~GLProgFaceWhitening() override;
  bool Load() override;
  bool Use() override;
};

/// Whitens one face in a block (input 0, HSI) of a capture; pixels whose alpha in the previous
/// result (input 1) is not zero keep that result.
class LUMORA_API GLProgFaceWhiteningLarge : public GLProgWhiteningBase {
 public:
  ~GLProgFaceWhiteningLarge() override;
  bool Load() override;
  bool Use() override;

  /// From the block's texture coordinates to the frame's: x scale, y scale, x offset, y offset.
  float m_fScaleController[4] = {};
};

#endif  // LUMORA_PROGRAMS_FACE_WHITENING_PROGRAMS_H_
