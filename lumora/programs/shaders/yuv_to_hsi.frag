// SPDX-License-Identifier: Apache-2.0
// YUV to HSI in one pass.
//   s_texture0     YUV image, alpha 1
//   u_mat_yuv2rgb  colour matrix over (Y, Cr, Cb, 1)
//   output         H, S, I, 0: no pixel is whitened yet
precision mediump float;
uniform sampler2D s_texture0;
uniform mat4 u_mat_yuv2rgb;
varying vec2 v_textureCoord;
void main() {
  vec3 RGB, HSI, delRGB;
  float max_c, min_c, delta;
  RGB = (u_mat_yuv2rgb *  texture2D(s_texture0, v_textureCoord)).rgb;
#include "rgb_to_hsi.glsl"
  gl_FragColor = vec4(HSI.xyz, 0.0);
}
