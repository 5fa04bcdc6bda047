// SPDX-License-Identifier: Apache-2.0
// Corrects radial lens distortion by a polynomial in the squared distance from the image centre; the
// frame's corners lie at radius 1.
//   s_texture0  the frame
//   g_kval0     coefficients k0 .. k3
precision highp float;
uniform sampler2D s_texture0;
uniform vec4 g_kval0;
varying vec2 v_texCoord;
void main() {
  vec2 cen_coord, old_coord, ref_coord;
  float scale, r;
  cen_coord = vec2(0.5);
  scale = sqrt(cen_coord.x * cen_coord.x + cen_coord.y * cen_coord.y);
  old_coord = ((cen_coord - v_texCoord) / vec2(scale));
  r = old_coord.x*old_coord.x+old_coord.y*old_coord.y;
  ref_coord = old_coord * vec2(g_kval0.x + (g_kval0.y + (g_kval0.z + g_kval0.w * r) * r) * r);
  ref_coord = (cen_coord - ref_coord * vec2(scale));
  gl_FragColor = texture2D( s_texture0, ref_coord);
}
