// SPDX-License-Identifier: Apache-2.0
// HSI to YUV.
//   s_texture0  HSI image; its alpha is not read
//   output      Y, Cr, Cb, 1
precision mediump float;
uniform sampler2D s_texture0;
varying vec2 v_textureCoord;
void main() {
  vec4 HSI, TmpColor;
  vec3 RGB, YUV;
  HSI = texture2D(s_texture0, v_textureCoord);
#include "hsi_to_yuv.glsl"
  gl_FragColor = vec4(YUV,1.0);
}
