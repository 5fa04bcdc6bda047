// SPDX-License-Identifier: Apache-2.0
// The family of shader programs.
// clang-format off
//
// class                       | inputs               | output texel   | cache file
// ----------------------------|----------------------|----------------|---------------------------------
// GLProgYUV2RGB               | YUV                  | R, G, B, A     | prog_yuv2rgb.bin
// GLProgRGB2HSI               | RGB                  | H, S, I, 0     | prog_rgb2hsi.bin
// GLProgYUV2HSI               | YUV                  | H, S, I, 0     | prog_yuv2hsi.bin
// GLProgHSI2YUV               | HSI                  | Y, Cr, Cb, 1   | prog_hsi2yuv.bin
// GLProgRGBtoY                | YUV                  | Y, Y, Y, Y     | prog_rgb2y.bin
// GLProgRGBtoUV               | YUV                  | Cr, Cb, Cr, Cb | prog_rgb2uv.bin
// GLProgCheekSlimmer          | any                  | as the input   | prog_face_slim[_mask].bin
// GLProgCheekSlimmerLarge     | luma, chroma planes  | Y, Cr, Cb, 1   | none: compiled every time
// GLProgCheekSlimmerLarge_HSI | HSI                  | Y, Cr, Cb, 1   | none: compiled every time
// GLProgFaceWhitening         | HSI                  | H, S, I, mask  | prog_face_white.bin
// GLProgFaceWhiteningLarge    | HSI, previous result | H, S, I, mask  | prog_face_white_large.bin
// GLProgRectificaton          | any                  | as the input   | prog_rectification[_mask].bin
// GLProgRadialDistortion      | any                  | as the input   | prog_radial_distortion_mask.bin
//
// clang-format on
//
// YUV texels carry Y in red, Cr in green, Cb in blue, alpha 1. HSI texels carry hue (in turns),
// saturation and intensity, and in alpha the whitening mask (0: untouched). All values are 0 .. 1.
//
// Every class: construct, Load once with the context current, then per draw set the members and
// textures, Use, coordinates, Draw. Load returns false when the program cannot be built or a
// location is missing; Use returns false, and uploads nothing, when there is no valid program. The
// variants whose file has "_mask" in square brackets paint diagnostic red pixels and are chosen by
// `m_bShowMask` before Load.
#ifndef LUMORA_PROGRAMS_PROGRAMS_H_
#define LUMORA_PROGRAMS_PROGRAMS_H_

#include "lumora/programs/cheek_slimmer_programs.h"
#include "lumora/programs/colour_programs.h"
#include "lumora/programs/face_whitening_programs.h"
#include "lumora/programs/rectification_programs.h"

#endif  // LUMORA_PROGRAMS_PROGRAMS_H_
