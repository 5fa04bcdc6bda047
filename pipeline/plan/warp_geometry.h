// The slimming warp of a face: where it lies and how strong it is, for both of the engine's chains.
#ifndef LUMORA_PIPELINE_PLAN_WARP_GEOMETRY_H_
#define LUMORA_PIPELINE_PLAN_WARP_GEOMETRY_H_

#include <optional>

#include "lumora/geometry/face_record.h"
#include "lumora/pipeline/chain.h"
#include "lumora/pipeline/face.h"

namespace lumora {

/// The numbers of a face record that make the engine draw a warp.
struct WarpMeasures {
  int centre_x = 0;  // pixels
  int centre_y = 0;
  int roll = 0;       // whole degrees
  int dist = 0;       // pixels; the larger of the two sets the radius
  int chin_dist = 0;  // pixels; the quotient of both sets the scale of the limiter
  float dist_level_ratio = 0;
};

/// Whether a face in a frame of width x height pixels can be slimmed.
bool IsSlimmable(const Face& face, int width, int height);

/// The measures of `face` for slimming by `slim` (0..100) in a frame of width x height pixels.
/// Nothing for a face that cannot be slimmed. `chain` is Preview or Capture.
///
/// The engine's two chains draw different warps from one record: captures have another radius and
/// limiter, and no fade towards the borders. The measures make up for that, so that both move
/// cheeks and chin by about the same.
std::optional<WarpMeasures> MeasureWarp(const Face& face, int width, int height, int slim,
                                        Chain chain);

/// The circle of the warp that the engine draws from a record in a frame of that width, in pixels.
/// The radius is that of SlimmingCircle in a preview, and never larger in a capture.
PointF WarpCentre(const FACE_INFO_t& record);
double PreviewRadius(const FACE_INFO_t& record, int width);
double CaptureRadius(const FACE_INFO_t& record, int width);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_PLAN_WARP_GEOMETRY_H_
