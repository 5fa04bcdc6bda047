// SPDX-License-Identifier: Apache-2.0
// Whitens one face in one block of a capture; pixels that an earlier face whitened keep their value.
//   s_texture0          HSI image of the block
//   s_texture1          previous result of the block; alpha 0 where nothing was whitened
//   g_fScaleController  from the block's texture coordinates to the frame's: scale x, y, offset x, y
//   output              H, S, I, mask
precision highp float;
uniform sampler2D s_texture0;
uniform sampler2D s_texture1;
uniform vec4 g_fScaleController;
#include "whitening_uniforms.glsl"
void main() {
  vec4 HSI_color, TmpColor, sub_dist_pixel, ellipse_chooser,  sub_dist_eye, HSI_color_prev;
  vec2 ScaledCoord;
  float dist_pixel, ratio, is_small_ellipse, max_prev_HSI;
  HSI_color = texture2D(s_texture0, v_texCoord);
  HSI_color_prev =  texture2D(s_texture1, v_texCoord);
  ScaledCoord = g_fScaleController.zw + g_fScaleController.xy * v_texCoord;
#include "whitening_ellipses.glsl"
#include "whitening_shift.glsl"
  if(HSI_color_prev.a != 0.0) HSI_color = HSI_color_prev;
  gl_FragColor = HSI_color;
}
