// SPDX-License-Identifier: Apache-2.0
#include "pipeline/request_check.h"

#include <cmath>
#include <cstddef>
#include <limits>
#include <string>

#include "lumora/pipeline/device.h"
#include "pipeline/faces/face_bounds.h"
#include "pipeline/frames/frame_check.h"
#include "pipeline/support/failure.h"

namespace lumora {
namespace {

Status CheckScale(int value, const char* name) {
  if (value >= 0 && value <= 100) return {};
  return Invalid(std::string(name) + " is " + std::to_string(value) +
                 ", but its range is 0 to 100");
}

std::string WholeText(float number) {
  return std::to_string(static_cast<int>(number));
}

/// Makes no text for a face that is as it should be.
Status CheckFace(const Face& face, size_t index, int width, int height) {
  const float farthest = FarthestIn(width, height);
  if (IsWithin(face, farthest)) return {};
  const std::string subject = "face " + std::to_string(index) + " holds ";
  constexpr float kLargest = std::numeric_limits<float>::max();
  if (!IsWithin(face, kLargest, kLargest)) return Invalid(subject + "a number that is not finite");
  if (!IsWithin(face.roll_degrees, kLargestRoll)) {
    return Invalid(subject + "a roll of more than " + WholeText(kLargestRoll) + " degrees");
  }
  return Invalid(subject + "a number beyond " + WholeText(farthest) + ", " +
                 WholeText(kFarthestInSides) + " times the longer side of the frame");
}

}  // namespace

Status CheckArguments(const ConstFrameView& in, const FrameView& out, FaceSpan faces,
                      const Look& look) {
  if (Status status = CheckFrames(in, out); !status.ok()) return status;
  if (Status status = CheckScale(look.slim, "slim"); !status.ok()) return status;
  if (Status status = CheckScale(look.whiten, "whiten"); !status.ok()) return status;
  if (Status status = CheckScale(look.saturate, "saturate"); !status.ok()) return status;
  if (look.effect < Effect::Auto || look.effect > Effect::Mask) {
    return Invalid("there is no effect " + std::to_string(static_cast<int>(look.effect)));
  }
  for (size_t i = 0; i < faces.size(); ++i) {
    if (Status status = CheckFace(faces[i], i, in.width, in.height); !status.ok()) return status;
  }
  return {};
}

Status CheckThreads(int threads) {
  if (threads >= 1 && threads <= kMostThreads) return {};
  return Invalid("threads is " + std::to_string(threads) + ", but its range is 1 to " +
                 std::to_string(kMostThreads));
}

Status CheckLens(const Lens& lens) {
  const auto* const given = std::get_if<LensCoefficients>(&lens);
  if (given == nullptr || IsUsable(*given)) return {};
  for (const float k : {given->k0, given->k1, given->k2, given->k3}) {
    if (!std::isfinite(k)) return Invalid("a lens coefficient is not finite");
  }
  const std::string most = WholeText(kLargestCoefficient);
  return Invalid("a lens coefficient is beyond its range, which is -" + most + " to " + most);
}

Status CheckDegree(int degree) {
  if (degree >= -100 && degree <= 100) return {};
  return Invalid("the degree is " + std::to_string(degree) + ", but its range is -100 to 100");
}

}  // namespace lumora
