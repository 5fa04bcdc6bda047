// SPDX-License-Identifier: Apache-2.0
// Faces from frame to frame: steady where a detector trembles, there where it blinks.
#ifndef LUMORA_PIPELINE_FACE_TRACKER_H_
#define LUMORA_PIPELINE_FACE_TRACKER_H_

#include <vector>

#include "lumora/pipeline/export.h"
#include "lumora/pipeline/face.h"

namespace lumora {

/// How faces are followed.
struct Tracking {
  /// Share of the way to the detected face that is left after each frame, 0 (no smoothing) to
  /// below 1.
  float smoothing = 0.6f;
  /// Detections in a row in which a face may be missing; with one more it is dropped.
  int patience = 3;
  /// How far a face may have moved between two detections, as a share of its box's larger side.
  float reach = 0.6f;
};

/// Follows the faces of one video.
///
/// For each frame call either `Detected`, with what a detector found in it, or `Skipped`, for a
/// frame in which none looked; both return the faces to process the frame with, in the order in
/// which they first appeared. A new face is taken as it is; a known one moves towards its latest
/// detection by an equal share of the rest with every frame.
///
/// Thread-safety: none; each video has a tracker of its own.
class LUMORA_PIPELINE_API FaceTracker {
 public:
  explicit FaceTracker(const Tracking& tracking = {}) : tracking_(tracking) {}

  /// Faces with numbers that are not finite, or too large for any frame, are ignored. Where memory
  /// is short both return no faces and leave everything as it was before the call.
  std::vector<Face> Detected(const std::vector<Face>& faces);
  std::vector<Face> Skipped();

  /// Forgets all faces, as after a cut.
  void Reset() { tracks_.clear(); }

 private:
  struct LUMORA_PIPELINE_LOCAL Track {
    Face shown;
    Face target;
    int missed = 0;  // detections without it since the last one with it
  };

  /// The tracks after a detection of `faces`.
  LUMORA_PIPELINE_LOCAL std::vector<Track> Matched(const std::vector<Face>& faces) const;
  /// Takes these tracks one frame further and over; what they show.
  LUMORA_PIPELINE_LOCAL std::vector<Face> Advance(std::vector<Track> tracks);

  Tracking tracking_;
  std::vector<Track> tracks_;
};

}  // namespace lumora

#endif  // LUMORA_PIPELINE_FACE_TRACKER_H_
