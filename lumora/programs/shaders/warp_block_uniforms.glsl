// SPDX-License-Identifier: Apache-2.0
uniform vec2 u_shift;
uniform vec2 u_scale;
