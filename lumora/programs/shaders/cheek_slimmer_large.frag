// SPDX-License-Identifier: Apache-2.0
// Face slimming of one block of a capture whose planes are two textures.
//   s_texture0        luma plane (luminance)
//   s_texture1        chroma plane (Cr in red, Cb in alpha)
//   u_scale, u_shift  map the block's texture coordinates to the frame, relative to the face centre
//   output            Y, Cr, Cb, 1
precision highp float;
uniform sampler2D s_texture0;
uniform sampler2D s_texture1;
#include "warp_uniforms.glsl"
#include "warp_block_uniforms.glsl"
void main() {
#include "warp_locals.glsl"
  vec4 cY, cCrCb;
  sftCoord = (v_texCoord*u_scale - u_shift);
#include "warp.glsl"
  cY = texture2D( s_texture0, heartCoord);
  cCrCb = texture2D(s_texture1, heartCoord);
  gl_FragColor =	vec4(cY.r,cCrCb.r,cCrCb.a,1.0);
#outline "warp_rim.glsl"
}
