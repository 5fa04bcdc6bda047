// SPDX-License-Identifier: Apache-2.0
// Maps the frame onto a quadrilateral of the input.
//   s_texture0  the frame
precision highp float;
uniform sampler2D s_texture0;
#include "quad_uniforms.glsl"
#outline "degree_dot_uniforms.glsl"
void main() {
#include "quad_mix.glsl"
#outline "degree_dot.glsl"
}
