// SPDX-License-Identifier: Apache-2.0
// Inside the outer ellipse: saturation shifted, intensity shifted in logit space of slope 0.85, both
// faded to nothing at the ellipse's line. Alpha records the inner ellipses.
  TmpColor = HSI_color;
  ratio =  clamp(dist_pixel, 0.0, 1.0);
  if(ratio<1.0){
    TmpColor.g =HSI_color.g + g_fEffectController.y;
    TmpColor.b = (-log((1.0/HSI_color.b) -1.0) / 0.85) + g_fEffectController.x;
    TmpColor.b = 1.0/(1.0+exp(-0.85*TmpColor.b));
    HSI_color = mix(TmpColor, HSI_color, ratio );
    HSI_color.a =  1.0 -dot(vec4(0.2, 0.3, 0.4, 0.6), ellipse_chooser);
  }
