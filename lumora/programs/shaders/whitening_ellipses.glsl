// SPDX-License-Identifier: Apache-2.0
// Distances to the ellipses, 1 on the line. A pair that is gated to 0 counts as inside, so the choosers
// nest: first eye pair, then second, then the centre ellipse; the fourth stands alone.
  dist_pixel = length((g_fEllipseController*vec3(ScaledCoord, 1.0)).xy);
  sub_dist_eye.x = length((g_fEllipseController_2*vec3(ScaledCoord, 1.0)).xy);
  sub_dist_eye.y = length((g_fEllipseController_3*vec3(ScaledCoord, 1.0)).xy);
  sub_dist_eye.z = length((g_fEllipseController_5*vec3(ScaledCoord, 1.0)).xy);
  sub_dist_eye.w = length((g_fEllipseController_6*vec3(ScaledCoord, 1.0)).xy);
  sub_dist_pixel.x = min(sub_dist_eye.x, sub_dist_eye.y);
  sub_dist_pixel.y = step(1.0, sub_dist_pixel.x)*min(sub_dist_eye.z, sub_dist_eye.w);
  is_small_ellipse = step(1.0, sub_dist_pixel.x)*step(1.0, sub_dist_pixel.y);
  sub_dist_pixel.z = is_small_ellipse*length((g_fEllipseController_1*vec3(ScaledCoord, 1.0)).xy);
  sub_dist_pixel.w = length((g_fEllipseController_4*vec3(ScaledCoord, 1.0)).xy);
  ellipse_chooser = vec4(1.0) - step(1.0, sub_dist_pixel);
