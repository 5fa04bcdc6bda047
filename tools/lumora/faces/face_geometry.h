// Small geometry over faces, and a list of their landmarks.
#ifndef LUMORA_TOOLS_FACES_FACE_GEOMETRY_H_
#define LUMORA_TOOLS_FACES_FACE_GEOMETRY_H_

#include <string>
#include <vector>

#include "pipeline/face.h"

namespace lumora::tools {

/// The middle of a feature's four points.
PointF Middle(const FeatureBox& feature);

/// The middle of a face: between the eyes and the mouth.
PointF FaceCentre(const Face& face);

/// A face from a box around it that was turned clockwise about its middle.
Face FaceFromTurnedBox(const RectF& box, float roll_degrees);

struct NamedPoint {
  std::string name;
  PointF at;
};

/// All landmarks, always in the same order, with names like "left_eye.top".
std::vector<NamedPoint> NamedLandmarks(const FaceLandmarks& landmarks);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_FACES_FACE_GEOMETRY_H_
