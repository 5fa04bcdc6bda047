// SPDX-License-Identifier: Apache-2.0
  vec2 sftCoord, twistCoord, sftCoord2, heartCoord;
  float dist, scaledLength, dist2, ratio, closeCoord;
