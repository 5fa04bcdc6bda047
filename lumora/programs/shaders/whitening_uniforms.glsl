// SPDX-License-Identifier: Apache-2.0
//   g_fEllipseController         to the unit circle of the outer face ellipse
//   g_fEllipseController_1       centre ellipse, from between the eyes downward
//   g_fEllipseController_2, _3   the two eyes
//   g_fEllipseController_4       fourth inner ellipse
//   g_fEllipseController_5, _6   second pair of eye ellipses
//   g_fEffectController          intensity shift (logit units), saturation shift, aspect ratio (not read)
uniform mat3 g_fEllipseController;
uniform vec3 g_fEffectController;
uniform mat3 g_fEllipseController_1;
uniform mat3 g_fEllipseController_2;
uniform mat3 g_fEllipseController_3;
uniform mat3 g_fEllipseController_4;
uniform mat3 g_fEllipseController_5;
uniform mat3 g_fEllipseController_6;
varying vec2 v_texCoord;
