// SPDX-License-Identifier: Apache-2.0
// Packs the chroma of two pixel pairs into one texel, so that the target's bytes are an interleaved
// chroma plane.
//   s_texture0  YUV image
//   u_shift     two offsets in texture coordinates, from the texel's centre to the two pairs
//   output      Cr, Cb, Cr, Cb
precision mediump float;
uniform sampler2D s_texture0;
uniform vec2 u_shift[2];
varying vec2 v_textureCoord;
void main() {
  vec4 color1, color2;
  float u1, u2, v1, v2;
  color1 = texture2D( s_texture0, v_textureCoord + u_shift[0]);
  color2 = texture2D( s_texture0, v_textureCoord + u_shift[1]);
  color1.a = 1.0;
  color2.a = 1.0;
  u1 = color1.g;
  u2 = color2.g;
  v1 = color1.b;
  v2 = color2.b;
  gl_FragColor = vec4 (u1,v1,u2,v2);
}
