// SPDX-License-Identifier: Apache-2.0
// The slimming warp of a face: where it lies and how strong it is, for both of the engine's chains.
#ifndef LUMORA_PIPELINE_PLAN_WARP_GEOMETRY_H_
#define LUMORA_PIPELINE_PLAN_WARP_GEOMETRY_H_

#include <optional>

#include "lumora/geometry/face_record.h"
#include "lumora/pipeline/chain.h"
#include "lumora/pipeline/face.h"

namespace lumora {

/// The beauty level that every record is made for; the strength is set by the record alone.
constexpr int kBeautyLevel = 0;

/// The record of `face` in a frame of width x height pixels, for slimming by `slim` (0..100).
/// Nothing for a face that cannot be slimmed: one without size, with numbers out of bounds, or with
/// its centre outside the frame. Such a face must not reach the engine, which would warp
/// the place of the face before it once more.
///
/// Every record is made so that the warp moves the cheeks by the same share of the face whatever
/// its size, leaves the eyes where they are whatever the shape of the frame, and never folds the
/// image. `chain`, Preview or Capture, is the one that will read the record: the engine's two
/// chains draw different warps from one record. Captures have another radius and limiter, and no
/// fade towards the borders. The records make up for that, so that both move cheeks and chin by
/// about the same.
std::optional<FACE_INFO_t> MakeFaceRecord(const Face& face, int width, int height, int slim,
                                          Chain chain = Chain::Preview);

/// The circle of the warp that the engine draws from a record in a frame of that width, in pixels.
/// The radius is that of SlimmingCircle in a preview, and never larger in a capture.
PointF WarpCentre(const FACE_INFO_t& record);
double WarpRadius(const FACE_INFO_t& record, int width, Chain chain);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_PLAN_WARP_GEOMETRY_H_
