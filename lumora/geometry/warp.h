// SPDX-License-Identifier: Apache-2.0
// The slimming warp: from face measures to what the shaders draw with. Plain arithmetic, no GL.
#ifndef LUMORA_GEOMETRY_WARP_H_
#define LUMORA_GEOMETRY_WARP_H_

namespace lumora {

/// The radius is at most this share of the frame's width.
constexpr double kLargestWarpRadius = 0.4;

/// The distance of the limiter's centre from the face's, in radii.
constexpr double kLimiterDistance = 0.55;

/// Previews fade the warp towards the borders of the frame: exponent of the distance to the nearest
/// one. 0 would be no fade.
constexpr double kEdgeFade = 0.2;

/// What differs between the warps of previews and of captures.
struct WarpScales {
  double radius;   ///< radius in pixels / the larger distance of the face
  double limiter;  ///< scale of the limiter where both distances are equal
};
constexpr WarpScales kPreviewWarp = {1.15, 1.1};
constexpr WarpScales kCaptureWarp = {1.05, 1.3};

/// The strength of a warp with that radius, a share of the frame's width:
///   (1.1 + 0.1 level) radius ^ 0.3 ratio
double WarpStrength(double radius, int beauty_level, double level_ratio);

/// The radius, in pixels, that a face with that larger distance gets in a frame of that width,
/// before it is rounded to what the shaders compute with.
double WarpRadiusInPixels(int size, const WarpScales& scales, double frame_width);

/// By how much the fade divides the reach of the warp, at that distance from the nearest border:
/// 2 - border ^ exponent. The distance is a share of the frame's side.
double EdgeFadeDivisor(double border, double exponent);

/// What slimming knows of a face; distances and places in pixels of the frame.
struct FaceMeasures {
  int loc_x;  ///< face centre
  int loc_y;
  int dist;        ///< face size; 0 or less: not known
  int chin_dist;   ///< distance to the chin
  int roll;        ///< degrees
  int shape_type;  ///< 2 halves the strength
};

/// How the warp is to be made.
struct WarpRequest {
  int frame_width;  ///< pixels
  int frame_height;
  int beauty_level;
  float level_ratio;  ///< multiplies the strength
  bool capture;       ///< a still capture: tighter radius, wider limiter
  bool hsi_chain;     ///< capture that goes through the HSI chain: slimmed less
};

/// The warp of a whole frame, as the shaders have it.
struct Warp {
  float centre_x, centre_y;  ///< texture coordinates
  float strength;
  float radius;             ///< texture coordinates, measured along the width
  float limiter_direction;  ///< radians, from the face centre
  float limiter_distance;   ///< share of the radius
  float limiter_scale;
  float aspect_ratio;  ///< frame height / width
  float edge_fade;     ///< exponent of the distance to the border; captures do not fade
};

/// The warp of a face.
struct FaceWarpParameters : Warp {
  float told_strength;  ///< the strength as logged: before the HSI chain's reduction
  bool valid;           ///< whether the measures describe a face at all
};

/// The arithmetic steps, in single or double precision as each always was.
FaceWarpParameters ComputeWarp(const FaceMeasures& face, const WarpRequest& request);

}  // namespace lumora

#endif  // LUMORA_GEOMETRY_WARP_H_
