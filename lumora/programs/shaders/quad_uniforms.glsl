// SPDX-License-Identifier: Apache-2.0
//   g_quad0, g_quad1  ends of the edge drawn at texture y = 0 (x = 0 and x = 1), input coordinates
//   g_quad2, g_quad3  ends of the edge drawn at y = 1
uniform vec2 g_quad0;
uniform vec2 g_quad1;
uniform vec2 g_quad2;
uniform vec2 g_quad3;
varying vec2 v_texCoord;
