// From face measures to the slimming warp: plain arithmetic, no GL.
#ifndef LUMORA_GEOMETRY_WARP_H_
#define LUMORA_GEOMETRY_WARP_H_

namespace lumora {

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

/// The warp in texture coordinates of the frame.
struct WarpParameters {
  float centre_x;
  float centre_y;
  float strength;  ///< before the HSI chain's reduction this is what the log tells
  float radius;
  float limiter_direction;  ///< radians, from the face centre
  float limiter_distance;   ///< share of the radius
  float limiter_scale;
  float told_strength;  ///< the strength as logged
  bool valid;           ///< whether the measures describe a face at all
};

/// The arithmetic steps, in single or double precision as each always was.
WarpParameters ComputeWarp(const FaceMeasures& face, const WarpRequest& request);

}  // namespace lumora

#endif  // LUMORA_GEOMETRY_WARP_H_
