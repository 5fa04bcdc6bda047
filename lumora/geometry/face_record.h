// SPDX-License-Identifier: Apache-2.0
// The caller's record of one detected face.
#ifndef LUMORA_GEOMETRY_FACE_RECORD_H_
#define LUMORA_GEOMETRY_FACE_RECORD_H_

#include <cstddef>
#include <cstdint>

/// A landmark point in pixels of the full frame: x to the right, y down.
struct fpf_point {
  int32_t x;
  int32_t y;
  int32_t reserved;  ///< passed along, never used
};

// clang-format off
/// One detected face: 924 bytes, little-endian, 4-byte aligned; arrays of records are consecutive.
///
/// The caller fills it, the engine only reads it. Slimming reads the scalars, whitening reads the
/// landmarks. Words without a name are not read and may be zero.
///
/// Landmark i is the `fpf_point` at byte 8 + 12 * i, for i = 12 .. 75; entries 0 to 11 of that
/// numbering overlap the scalars and are never read. Those that whitening reads, with "first axis"
/// and "second axis" spanning an ellipse:
///
///   | landmarks       | role                                                                  |
///   |-----------------|-----------------------------------------------------------------------|
///   | 12 - 13, 14 - 15| fourth inner ellipse (the mouth): first axis, second axis             |
///   | 34 - 33, 35 - 36| first ellipse of the second eye pair: first axis, second axis         |
///   | 39 - 38, 40 - 41| second ellipse of the second eye pair                                 |
///   | 42, 65          | the face's long axis: it is extended from 42 away from 65 (the chin)  |
///   | 43              | far end of the centre ellipse, which starts between the eyes          |
///   | 60 - 59, 57 - 58| first eye: first axis, second axis                                    |
///   | 64 - 63, 61 - 62| second eye                                                            |
///   | 68, 70 / 69, 71 | the two ends of the face's cross axis, two points a side              |
// clang-format on
struct FACE_INFO_t {
  int32_t leading[2];  ///< not read
  int32_t unread0[9];
  int32_t dist_valid;  ///< the distances below count when this is 1 or more
  int32_t shapetype;   ///< face shape class; 2 halves the slimming strength
  int32_t unread1[6];
  int32_t loc_x;  ///< face centre, pixels of the frame being processed
  int32_t loc_y;
  int32_t unread2[2];
  /// In-plane rotation in degrees, clockwise. roll - 90 is the direction (in the frame, y down)
  /// from the face centre to the side that slimming leaves alone: 0 is an upright face, forehead
  /// up.
  int32_t roll;
  int32_t unread3[8];
  int32_t dist;  ///< face size, pixels; together with chin_dist it sets the warp's radius
  int32_t unread4[3];
  int32_t chin_dist;  ///< distance to the chin, pixels; dist / chin_dist scales the limiter ellipse
  int32_t unread5;
  fpf_point landmarks[64];  ///< landmarks 12 .. 75
  float dist_level_ratio;   ///< multiplies the slimming strength; 1.0 leaves it as computed

  static constexpr int kFirstLandmark = 12;
  static constexpr int kLastLandmark = 75;

  /// Landmark `i`, from kFirstLandmark to kLastLandmark.
  fpf_point& landmark(int i) { return landmarks[i - kFirstLandmark]; }
  const fpf_point& landmark(int i) const { return landmarks[i - kFirstLandmark]; }
};

static_assert(sizeof(fpf_point) == 12);
static_assert(sizeof(FACE_INFO_t) == 924);
static_assert(alignof(FACE_INFO_t) == 4);
static_assert(offsetof(FACE_INFO_t, dist_valid) == 44);
static_assert(offsetof(FACE_INFO_t, shapetype) == 48);
static_assert(offsetof(FACE_INFO_t, loc_x) == 76);
static_assert(offsetof(FACE_INFO_t, loc_y) == 80);
static_assert(offsetof(FACE_INFO_t, roll) == 92);
static_assert(offsetof(FACE_INFO_t, dist) == 128);
static_assert(offsetof(FACE_INFO_t, chin_dist) == 144);
static_assert(offsetof(FACE_INFO_t, landmarks) == 8 + 12 * FACE_INFO_t::kFirstLandmark);
static_assert(offsetof(FACE_INFO_t, dist_level_ratio) == 920);

#endif  // LUMORA_GEOMETRY_FACE_RECORD_H_
