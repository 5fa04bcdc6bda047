// SPDX-License-Identifier: Apache-2.0
// Hexcone model: I = max, S = (max - min) / max, H by the channel that holds the maximum; red wins over
// green and green over blue. Grey has hue and saturation 0.
  max_c = max( RGB.r, max(RGB.g, RGB.b));
  min_c = min(RGB.r, min(RGB.g, RGB.b));
  HSI.xy = vec2(0.0);
  HSI.z = max_c;
  delta = max_c - min_c;
  if (delta != 0.0) {
    HSI.y = delta / HSI.z;
    delRGB = (HSI.zzz - RGB)/vec3(delta);
    if( RGB.x == HSI.z) HSI.x = delRGB.z - delRGB.y;
    else if(RGB.y == HSI.z) HSI.x = 2.0 + delRGB.x - delRGB.z;
    else HSI.x = 4.0 + delRGB.y - delRGB.x;
    HSI.x /= 6.0;
    HSI.x = HSI.x + (1.0 - step(0.0,  HSI.x));
  }
