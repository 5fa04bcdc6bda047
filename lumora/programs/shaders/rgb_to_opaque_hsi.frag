// SPDX-License-Identifier: Apache-2.0
// RGB to HSI for images that are read by the CPU: the colour converter's own variant.
//   s_texture0  RGB image
//   output      H, S, I, 1
precision mediump float;
uniform sampler2D s_texture0;
varying vec2 v_textureCoord;
void main() {
  vec3 RGB, HSI, delRGB;
  float max_c, min_c, delta;
  RGB = texture2D(s_texture0, v_textureCoord).rgb;
#include "rgb_to_hsi.glsl"
  gl_FragColor = vec4(HSI.xyz, 1.0);
}
