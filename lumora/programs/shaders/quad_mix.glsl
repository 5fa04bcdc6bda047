// SPDX-License-Identifier: Apache-2.0
// Bilinear, not projective: only the quad's edges are sure to stay straight.
  vec2 sampleCoordH1, sampleCoordH2, sampleCoord;
  sampleCoordH1 = mix(g_quad0,g_quad2, v_texCoord.yy);
  sampleCoordH2 = mix(g_quad1,g_quad3, v_texCoord.yy);
  sampleCoord =	mix(sampleCoordH1,sampleCoordH2, v_texCoord.xx);
  gl_FragColor = texture2D( s_texture0, sampleCoord);
