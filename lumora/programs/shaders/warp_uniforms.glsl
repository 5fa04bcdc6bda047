// SPDX-License-Identifier: Apache-2.0
//   g_fController    face centre (x, y), warp strength, face radius; texture coordinates of the frame
//   g_fAspectRatio   frame height / width: makes distances isotropic in pixels
//   g_fvAngleLimiter direction (radians) and distance (share of the radius) of the limiter's centre from
//                    the face centre, scale of the limiter
//   g_fEdgeFix       exponent of the fade towards the texture's borders; 0 switches it off
uniform vec4 g_fController;
uniform float g_fAspectRatio;
uniform vec3 g_fvAngleLimiter;
uniform float g_fEdgeFix;
varying vec2 v_texCoord;
