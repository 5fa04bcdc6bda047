// SPDX-License-Identifier: Apache-2.0
// HSI to full-range YUV: the fully saturated colour of the hue, then saturation and intensity, then the
// BT.601 rows. The unit fourth component carries the chroma offsets.
  RGB.r = abs(HSI.r * 6.0 - 3.0) - 1.0;
  RGB.g = 2.0 - abs(HSI.r * 6.0 - 2.0);
  RGB.b= 2.0 - abs(HSI.r * 6.0 - 4.0);
  RGB = clamp(RGB, 0.0, 1.0);
  TmpColor = vec4(((RGB - 1.0) * HSI.g + 1.0) * HSI.b, 1.0);
  YUV.r = dot(vec4(0.299, 0.587, 0.114, 0.0),TmpColor);
  YUV.b = dot(vec4(-0.168727,-0.33126147,0.5, 0.5),TmpColor);
  YUV.g = dot(vec4(0.5,-0.4186829,-0.0813089, 0.5),TmpColor);
