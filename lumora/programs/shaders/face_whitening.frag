// SPDX-License-Identifier: Apache-2.0
// Whitens one face of a whole frame.
//   s_texture0  HSI image of the frame
//   output      H, S, I, mask
precision highp float;
uniform sampler2D s_texture0;
#include "whitening_uniforms.glsl"
void main() {
  vec4 HSI_color, TmpColor, sub_dist_pixel, ellipse_chooser,  sub_dist_eye;
  vec2 ScaledCoord;
  float dist_pixel, ratio, is_small_ellipse;
  HSI_color = texture2D(s_texture0, v_texCoord);
  ScaledCoord = v_texCoord;
#include "whitening_ellipses.glsl"
#include "whitening_shift.glsl"
  gl_FragColor = HSI_color;
}
