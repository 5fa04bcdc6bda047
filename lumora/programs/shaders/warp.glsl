// SPDX-License-Identifier: Apache-2.0
// The warp. Sampling farther out than the pixel itself pulls the content towards the face centre;
// `ratio` is 0 where the pull is full and 1 where there is none: outside the face, near the limiter's
// centre, and towards the borders.
  dist = length( sftCoord*vec2(1.0,g_fAspectRatio) );
  twistCoord =  sftCoord * vec2( 1.0 + g_fController.z * dist);
  scaledLength = g_fvAngleLimiter.y*g_fController.w;
  vec2 secCenter = scaledLength*vec2(cos(g_fvAngleLimiter.x),sin(g_fvAngleLimiter.x) );
  sftCoord2 = sftCoord - secCenter;
  dist2 = length(sftCoord2*vec2(1.0,g_fAspectRatio))/g_fvAngleLimiter.z;
  ratio = clamp( (dist/g_fController.w)/clamp(dist2/scaledLength,0.0,1.0) ,0.0,1.0);
  closeCoord =  min(min( min(v_texCoord.x,1.0-v_texCoord.x), v_texCoord.y),1.0-v_texCoord.y );
  ratio= clamp(ratio*(2.0-pow(closeCoord,g_fEdgeFix)) ,0.0,1.0);
  heartCoord = mix(twistCoord , sftCoord, ratio ) +  g_fController.xy;
