// SPDX-License-Identifier: Apache-2.0
// Outline variant: a red dot whose place shows the degree setting.
  vec2 debugcenterCoord;
  float dist_center;
  debugcenterCoord = vec2( 0.5 - (2.0 - abs(g_degree))*0.4 ,  0.5 - 0.4*sign(g_degree) );
  dist_center = distance(v_texCoord, debugcenterCoord);
  if(dist_center < 0.03) gl_FragColor = vec4(1.0, 0.0, 0.0, 1.0);
