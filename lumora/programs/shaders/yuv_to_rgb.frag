// SPDX-License-Identifier: Apache-2.0
// YUV to RGB.
//   s_texture0     YUV image; its alpha must be 1, since it carries the chroma offsets
//   u_mat_yuv2rgb  colour matrix over (Y, Cr, Cb, 1)
//   output         R, G, B, input alpha
precision mediump float;
uniform sampler2D s_texture0;
uniform mat4 u_mat_yuv2rgb;
varying vec2 v_textureCoord;
void main() {
  gl_FragColor = u_mat_yuv2rgb * texture2D(s_texture0, v_textureCoord);
}
