// SPDX-License-Identifier: Apache-2.0
#include "pipeline/plan/whitening_plan.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "lumora/geometry/whitening.h"
#include "pipeline/plan/face_means.h"
#include "pipeline/plan/whitening_geometry.h"

namespace lumora {
namespace {

// The engine shifts intensity and saturation of faces within these means only. Close to the limits
// the shift is taken back, so that a face of a video does not flicker on them. Previews are
// measured by the engine in texels that were rounded once more, which may be a step brighter than
// the frame: the upper limit stays a step below the engine's, so that what is told to be
// shifted is.
constexpr int kMostLifted = kMostIntensity - 1;
constexpr double kTaper = 20;

// The shifts at full strength: of intensity in natural logits, of saturation in steps of 1/255.
constexpr double kFullLift = 2.0;
constexpr double kFullSaturation = 48;

/// 1 well inside the means that the engine accepts, falling to 0 at their limits.
double TaperFrom(int limit, int value) {
  return std::clamp(std::abs(value - limit) / kTaper, 0.0, 1.0);
}

bool InRange(int value, int least, int most) {
  return value >= least && value <= most;
}

/// The level that lifts a face of that mean by the wanted share.
int IntensityLevel(int mean, int whiten) {
  if (!InRange(mean, kLeastIntensity, kMostLifted)) return 0;
  const double taper =
      std::min(TaperFrom(kLeastIntensity - 1, mean), TaperFrom(kMostLifted + 1, mean));
  const double lift = whiten / 100.0 * kFullLift * taper;
  const double logit = std::log(mean / (255.0 - mean));
  const double target = 255 / (1 + std::exp(-(logit + lift)));
  return static_cast<int>(std::lround(target)) - mean;
}

int SaturationLevel(int mean, int saturate) {
  if (mean < kLeastSaturation) return 0;
  return static_cast<int>(
      std::lround(saturate / 100.0 * kFullSaturation * TaperFrom(kLeastSaturation - 1, mean)));
}

/// What `look` asks for: never Auto.
Effect EffectOf(const Look& look) {
  if (look.effect != Effect::Auto) return look.effect;
  if (look.saturate == 0) return Effect::Intensity;
  return look.whiten == 0 ? Effect::Saturation : Effect::Both;
}

/// Brings jobs with the same levels next to each other; groups and what is in them keep their
/// order. In place, where sorting would ask for memory.
void GroupByLevels(std::vector<WhiteningJob>* jobs) {
  for (auto begin = jobs->begin(); begin != jobs->end();) {
    auto end = std::next(begin);
    for (auto job = end; job != jobs->end(); ++job) {
      if (!SameLevels(*job, *begin)) continue;
      if (job != end) std::rotate(end, job, std::next(job));
      ++end;
    }
    begin = end;
  }
}

}  // namespace

void PlanWhitening(const ConstFrameView& frame, FaceSpan faces, const std::vector<FacePlan>& plans,
                   const Look& look, Chain chain, WhiteningPlan* whitening) {
  const Effect effect = EffectOf(look);
  const bool lifts = effect == Effect::Both || effect == Effect::Intensity;
  const bool colours = effect == Effect::Both || effect == Effect::Saturation;
  std::vector<WhiteningJob>& jobs = whitening->jobs;
  whitening->effect = effect;
  whitening->tones.clear();
  size_t count = 0;
  for (size_t i = 0; i < plans.size(); ++i) {
    const FACE_INFO_t& record = plans[i].record;
    const FaceGeometry geometry = MeasureFace(record);
    const Ellipse outer = EllipsesOf(record, geometry)[kFaceEllipse];
    if (outer.half_along == 0) continue;  // the engine would whiten a corner of the frame instead
    const FaceMeans means = MeansOf(frame, geometry);
    const int intensity = lifts ? IntensityLevel(means.intensity, look.whiten) : 0;
    const int saturation = colours ? SaturationLevel(means.saturation, look.saturate) : 0;
    whitening->tones.push_back({static_cast<int>(plans[i].index), means.intensity, means.saturation,
                                intensity > 0, saturation > 0});
    if (intensity == 0 && saturation == 0 && effect != Effect::Mask) continue;
    if (count == jobs.size()) jobs.emplace_back();
    WhiteningJob& job = jobs[count++];
    job.face = i;
    job.intensity_level = intensity;
    job.saturation_level = saturation;
    job.shifts = ComputeShifts({means.intensity, means.saturation, 1}, intensity, saturation);
    job.outer = outer;
    job.mask.Make(faces[plans[i].index], outer, means.luma, frame.width, frame.height);
  }
  jobs.resize(count);
  if (chain == Chain::Preview) GroupByLevels(&jobs);
}

}  // namespace lumora
