// From a face as the pipeline takes it to the record that the engine reads.
#ifndef LUMORA_PIPELINE_FACES_FACE_RECORD_H_
#define LUMORA_PIPELINE_FACES_FACE_RECORD_H_

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
/// image. `chain`, Preview or Capture, is the one that will read the record.
std::optional<FACE_INFO_t> MakeFaceRecord(const Face& face, int width, int height, int slim,
                                          Chain chain = Chain::Preview);

/// A record with nothing but the landmarks of `face`, whose numbers suit some frame.
FACE_INFO_t LandmarkRecord(const Face& face);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_FACES_FACE_RECORD_H_
