// SPDX-License-Identifier: Apache-2.0
// Face slimming of one block of a capture that is an HSI image.
//   s_texture0        HSI image of the frame
//   s_texture1        declared, never read
//   u_scale, u_shift  map the block's texture coordinates to the frame, relative to the face centre
//   output            Y, Cr, Cb, 1
precision highp float;
uniform sampler2D s_texture0;
uniform sampler2D s_texture1;
#include "warp_uniforms.glsl"
#include "warp_block_uniforms.glsl"
void main() {
#include "warp_locals.glsl"
  vec4 HSI, TmpColor;
  vec3 RGB, YUV;
  sftCoord = (v_texCoord*u_scale - u_shift);
#include "warp.glsl"
  HSI = texture2D( s_texture0, heartCoord);
#include "hsi_to_yuv.glsl"
  gl_FragColor =	vec4(YUV,1.0);
#outline "warp_rim.glsl"
}
