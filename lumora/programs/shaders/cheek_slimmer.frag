// SPDX-License-Identifier: Apache-2.0
// Face slimming of a whole frame.
//   s_texture0  the frame
//   output      the frame, warped
precision highp float;
uniform sampler2D s_texture0;
#include "warp_uniforms.glsl"
void main() {
#include "warp_locals.glsl"
  sftCoord = (v_texCoord - g_fController.xy) ;
#include "warp.glsl"
  gl_FragColor = texture2D(s_texture0, heartCoord);
#outline "warp_rim.glsl"
}
