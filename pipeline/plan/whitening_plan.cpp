#include "pipeline/plan/whitening_plan.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "lumora/geometry/whitening.h"
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

/// How a face looks in the middle of its square.
struct Means {
  int intensity = 0;
  int saturation = 0;
  int luma = 0;
};

Means Measure(const PaddedFrame& frame, const FaceGeometry& face) {
  ColourSums sums;
  int luma = 0;
  ForEachSample(face, frame.width(), frame.height(), [&](int x, int y) {
    const HsiSample sample = SampleYuv(frame.luma(), x, y, frame.width(), frame.height());
    sums.intensity += sample.intensity;
    sums.saturation += sample.saturation;
    luma += frame.luma()[static_cast<size_t>(y) * static_cast<size_t>(frame.width()) +
                         static_cast<size_t>(x)];
    ++sums.count;
  });
  return {sums.mean(sums.intensity), sums.mean(sums.saturation), sums.mean(luma)};
}

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

}  // namespace

BEAUTYSHOT_EFFECT_t EngineEffect(const Look& look) {
  switch (look.effect) {
    case Effect::Intensity:
      return BEAUTYSHOT_EFFECT_INTENSITY;
    case Effect::Saturation:
      return BEAUTYSHOT_EFFECT_SATURATION;
    case Effect::Both:
      return BEAUTYSHOT_EFFECT_BOTH;
    case Effect::Mask:
      return BEAUTYSHOT_EFFECT_MASK;
    case Effect::Auto:
      break;
  }
  if (look.saturate == 0) return BEAUTYSHOT_EFFECT_INTENSITY;
  return look.whiten == 0 ? BEAUTYSHOT_EFFECT_SATURATION : BEAUTYSHOT_EFFECT_BOTH;
}

void PlanWhitening(const PaddedFrame& frame, const std::vector<FaceJob>& faces, const Look& look,
                   std::vector<WhiteningJob>* jobs, std::vector<FaceTone>* tones) {
  const BEAUTYSHOT_EFFECT_t effect = EngineEffect(look);
  const bool both = effect == BEAUTYSHOT_EFFECT_BOTH;
  const bool lifts = both || effect == BEAUTYSHOT_EFFECT_INTENSITY;
  const bool colours = both || effect == BEAUTYSHOT_EFFECT_SATURATION;
  size_t count = 0;
  for (const FaceJob& face : faces) {
    const Ellipse outer = EllipsesOf(face.record)[kFaceEllipse];
    if (outer.half_along == 0) continue;  // the engine would whiten a corner of the frame instead
    const Means means = Measure(frame, MeasureFace(face.record));
    const int intensity = lifts ? IntensityLevel(means.intensity, look.whiten) : 0;
    const int saturation = colours ? SaturationLevel(means.saturation, look.saturate) : 0;
    tones->push_back(
        {face.index, means.intensity, means.saturation, intensity > 0, saturation > 0});
    if (intensity == 0 && saturation == 0 && effect != BEAUTYSHOT_EFFECT_MASK) continue;
    if (count == jobs->size()) jobs->emplace_back();
    WhiteningJob& job = (*jobs)[count++];
    job.record = face.record;
    job.intensity_level = intensity;
    job.saturation_level = saturation;
    job.mask.Make(face.face, outer, means.luma, frame.frame_width(), frame.frame_height());
  }
  jobs->resize(count);
}

}  // namespace lumora
