// SPDX-License-Identifier: Apache-2.0
// Small geometry over faces, and a list of their landmarks.
#ifndef LUMORA_TOOLS_FACES_FACE_GEOMETRY_H_
#define LUMORA_TOOLS_FACES_FACE_GEOMETRY_H_

#include <string>
#include <vector>

#include "lumora/pipeline/face.h"

namespace lumora::tools {

/// The middle of a feature's four points.
PointF Middle(const FeatureBox& feature);

/// The middle of a face: between the eyes and the mouth.
PointF FaceCentre(const Face& face);

/// A face from a box around it that was turned clockwise about its middle.
Face FaceFromTurnedBox(const RectF& box, float roll_degrees);

/// Calls `use(name, point)` for all landmarks, always in the same order, with names like
/// "left_eye.top".
template <typename Landmarks, typename Use>
void ForEachLandmark(Landmarks& landmarks, const Use& use) {
  const auto feature = [&use](const std::string& name, auto& box) {
    use(name + ".left", box.left);
    use(name + ".right", box.right);
    use(name + ".top", box.top);
    use(name + ".bottom", box.bottom);
  };
  feature("left_eye", landmarks.left_eye);
  feature("right_eye", landmarks.right_eye);
  feature("left_brow", landmarks.left_brow);
  feature("right_brow", landmarks.right_brow);
  feature("mouth", landmarks.mouth);
  use("nasion", landmarks.nasion);
  use("nose_tip", landmarks.nose_tip);
  use("chin", landmarks.chin);
  use("left_temple", landmarks.left_temple);
  use("right_temple", landmarks.right_temple);
  use("left_jaw", landmarks.left_jaw);
  use("right_jaw", landmarks.right_jaw);
}

struct NamedPoint {
  std::string name;
  PointF at;
};

/// All landmarks, as ForEachLandmark goes through them.
std::vector<NamedPoint> NamedLandmarks(const FaceLandmarks& landmarks);

/// Whether a face is turned so far that left and right were probably exchanged.
bool LooksExchanged(const Face& face);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_FACES_FACE_GEOMETRY_H_
