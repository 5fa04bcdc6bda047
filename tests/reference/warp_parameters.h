// SPDX-License-Identifier: Apache-2.0
// From a face to the uniforms of the slimming warp.
#ifndef LUMORA_REFERENCE_WARP_PARAMETERS_H_
#define LUMORA_REFERENCE_WARP_PARAMETERS_H_

#include "reference/face_record.h"
#include "reference/slimmer.h"

namespace lumora::reference {

/// What SetParameters is called with, and the engine's state that it reads.
struct WarpRequest {
  int loc_x = 0;
  int loc_y = 0;
  int dist = 0;
  int roll = 0;
  int chin_dist = 0;
  int level = 0;
  int shape_type = 0;
  bool large = false;  ///< capture
  float ratio = 1.0f;
  int frame_width = 0;  ///< preview: the source frame; capture: the full frame
  int frame_height = 0;
  bool block_mode = false;  ///< capture through the HSI chain, slimmed less
};

/// The program's members, which outlive a call: a rejected face leaves the earlier warp in place.
/// They start as zeros, which warp nothing.
struct WarpMembers {
  float controller[4] = {};  ///< centre x, centre y, strength, radius
  float aspect_ratio = 0.0f;
  float angle_limiter[3] = {};  ///< direction, distance, scale

  SlimmerUniforms uniforms(double edge_fix) const;
};

/// The strength that the log line "dist_level = ..." shows, before the block mode's reduction.
float WarpStrength(const WarpRequest& request);

/// Applies a request to the members. Returns whether the face was accepted.
bool SetParameters(const WarpRequest& request, WarpMembers* members);

/// The request that a face record makes: without valid distances both are -1.
WarpRequest RequestOf(const FaceRecord& face, int level, int frame_width, int frame_height,
                      bool large = false);

}  // namespace lumora::reference

#endif  // LUMORA_REFERENCE_WARP_PARAMETERS_H_
