// SPDX-License-Identifier: Apache-2.0
//   g_degree  the rectification setting, -3 .. 3
uniform float	g_degree;
