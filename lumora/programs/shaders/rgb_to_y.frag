// SPDX-License-Identifier: Apache-2.0
// Packs the luma of four neighbouring pixels into one texel, so that the target's bytes are a Y plane.
//   s_texture0  YUV image
//   u_shift     four offsets in texture coordinates, from the texel's centre to the four pixels
//   output      Y of the four pixels
precision mediump float;
uniform sampler2D s_texture0;
uniform vec2 u_shift[4];
varying vec2 v_textureCoord;
void main() {
  float Y1, Y2, Y3, Y4;
  Y1 = texture2D(s_texture0, v_textureCoord + u_shift[0]).r;
  Y2 = texture2D(s_texture0, v_textureCoord + u_shift[1]).r;
  Y3 = texture2D(s_texture0, v_textureCoord + u_shift[2]).r;
  Y4 = texture2D(s_texture0, v_textureCoord + u_shift[3]).r;
  gl_FragColor = vec4 (Y1,Y2,Y3,Y4);
}
