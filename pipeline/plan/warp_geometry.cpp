// SPDX-License-Identifier: Apache-2.0
#include "pipeline/plan/warp_geometry.h"

#include <algorithm>
#include <cmath>

#include "lumora/geometry/frame_sizes.h"
#include "lumora/geometry/warp.h"
#include "pipeline/faces/face_bounds.h"
#include "pipeline/faces/landmark_record.h"
#include "pipeline/faces/landmarks.h"
#include "pipeline/support/angles.h"

namespace lumora {
namespace {

struct ChainConstants {
  WarpScales scales;
  // How far the limiter holds back the warp at the eyes. 0.5 leaves them in their places;
  // captures, whose circle is smaller, come closest to previews with slightly less.
  double eye_weight;
};
constexpr ChainConstants kPreview = {kPreviewWarp, 0.5};
constexpr ChainConstants kCapture = {kCaptureWarp, 0.455};

// Where the face lies in the circle: its cheeks and chin in the zone that is moved most.
constexpr float kCheekPosition = 0.60f;  // distance of the cheeks from the centre, in radii
constexpr float kChinPosition = 0.70f;   // distance of the chin from the centre, in radii

constexpr double kSmallestLimiter = 0.8;
constexpr double kLargestLimiter = 2.8;

// Full slimming: strength times radius. The image would begin to fold slightly above 1.
constexpr double kFullStrength = 0.8;

// Close to a border of the frame the engine fades the warp within few pixels, too few for the full
// strength. Faces that leave the frame are therefore slimmed less, by the distance of their centre
// from the border in radii.
constexpr double kFadeBegin = 1.0;
constexpr double kFadeEnd = 0.55;
constexpr double kFadedStrength = 0.25;

struct Circle {
  PointF centre;      // pixels, whole numbers
  int measure = 0;    // the larger distance of the record, pixels
  double radius = 0;  // pixels
};

/// The frame as the engine gets it.
struct EngineFrame {
  EngineFrame(int frame_width, int frame_height)
      : width(RoundUpTo32(frame_width)), height(RoundUpTo32(frame_height)) {}
  double width;
  double height;
};

/// The roll as the engine takes it: in whole degrees.
int RollOf(const Face& face) {
  return static_cast<int>(std::lround(std::remainder(static_cast<double>(face.roll_degrees), 360)));
}

/// The circle of the preview chain, which the capture chain never leaves.
std::optional<Circle> CircleOf(const Face& face, int width, int height) {
  if (!IsWithin(face, FarthestIn(width, height))) return std::nullopt;
  const FaceLandmarks& at = face.landmarks;
  const PointF temples = Middle(at.left_temple, at.right_temple);
  const PointF jaws = Middle(at.left_jaw, at.right_jaw);
  const PointF centre = Middle(temples, jaws);
  if (!(centre.x >= 0 && centre.y >= 0 && centre.x < static_cast<float>(width) &&
        centre.y < static_cast<float>(height))) {
    return std::nullopt;
  }
  const float cheeks = std::max(Length(at.left_jaw - centre), Length(at.right_jaw - centre));
  const float chin = Length(at.chin - centre);
  // A face whose cheeks or chin lie in its centre has not been found.
  if (!(cheeks >= 1 && chin >= 1)) return std::nullopt;

  const double wanted = std::max(cheeks / kCheekPosition, chin / kChinPosition);
  // Whatever is larger than the frame ends at the engine's own limit.
  const double measure = std::min(wanted / kPreviewWarp.radius, static_cast<double>(width));
  Circle circle;
  circle.centre = {std::max(1.f, std::round(centre.x)), std::max(1.f, std::round(centre.y))};
  circle.measure = std::max(1, static_cast<int>(std::lround(measure)));
  circle.radius =
      WarpRadiusInPixels(circle.measure, kPreviewWarp, EngineFrame(width, height).width);
  return circle;
}

/// The distance of the circle's centre from the nearest border, in pixels.
double BorderDistance(const Circle& circle, const EngineFrame& frame) {
  const auto x = static_cast<double>(circle.centre.x);
  const auto y = static_cast<double>(circle.centre.y);
  return std::min(std::min(x, frame.width - x), std::min(y, frame.height - y));
}

/// How much the preview chain's fade towards the borders shrinks the circle at its centre. Captures
/// have no such fade.
double FadeShrink(const Circle& circle, const EngineFrame& frame) {
  const auto u = static_cast<double>(circle.centre.x) / frame.width;
  const auto v = static_cast<double>(circle.centre.y) / frame.height;
  const double border = std::max(0.0, std::min(std::min(u, 1 - u), std::min(v, 1 - v)));
  return EdgeFadeDivisor(border, kEdgeFade);
}

/// The circle as a capture has to draw it.
Circle CaptureCircle(const Circle& preview, const EngineFrame& frame) {
  Circle circle = preview;
  const double radius = preview.radius / FadeShrink(preview, frame);
  circle.measure = std::max(1, static_cast<int>(radius / kCaptureWarp.radius));
  if (frame.width > kWidestWholeFrame) {
    // Captures process whole blocks on each side of the centre, enough for the measure but not for
    // the slightly larger radius: the circle must end before the blocks do.
    const int blocks = (circle.measure + kCaptureBlock - 1) / kCaptureBlock;
    const auto fitting = static_cast<int>(blocks * kCaptureBlock / kCaptureWarp.radius) - 1;
    circle.measure = std::min(circle.measure, fitting);
  }
  circle.radius = WarpRadiusInPixels(circle.measure, kCaptureWarp, frame.width);
  return circle;
}

/// The centre of the limiter, towards the forehead. The engine measures its distance in shares of
/// the frame's sides, which stretches it where the frame is not square.
PointF Limiter(const Face& face, const Circle& circle, const EngineFrame& frame) {
  const double direction = (RollOf(face) - 90) * kRadiansPerDegree;
  const double reach = kLimiterDistance * circle.radius;
  return {static_cast<float>(static_cast<double>(circle.centre.x) + reach * std::cos(direction)),
          static_cast<float>(static_cast<double>(circle.centre.y) +
                             reach * std::sin(direction) * frame.height / frame.width)};
}

/// The scale of the limiter that leaves the eyes alone. Its centre lies at a distance that depends
/// on the shape of the frame, which the scale makes up for.
double LimiterScale(const Face& face, const Circle& circle, const EngineFrame& frame,
                    double eye_weight) {
  const PointF limiter = Limiter(face, circle, frame);
  const auto eyes = static_cast<double>(Length(Centre(face.landmarks.left_eye) - limiter) +
                                        Length(Centre(face.landmarks.right_eye) - limiter)) /
                    2;
  return std::clamp(eyes / (eye_weight * kLimiterDistance * circle.radius), kSmallestLimiter,
                    kLargestLimiter);
}

/// The strength that is left for a face at that distance from the nearest border.
double BorderFade(const Circle& circle, const EngineFrame& frame) {
  const double inside = std::clamp(
      (BorderDistance(circle, frame) / circle.radius - kFadeEnd) / (kFadeBegin - kFadeEnd), 0.0,
      1.0);
  return kFadedStrength + (1 - kFadedStrength) * inside;
}

/// The record that makes the engine draw the warp of `preview` in that chain.
FACE_INFO_t RecordOf(const Face& face, const Circle& preview, const EngineFrame& frame, int slim,
                     Chain chain) {
  const bool capture = chain == Chain::Capture;
  const Circle circle = capture ? CaptureCircle(preview, frame) : preview;

  FACE_INFO_t record = LandmarkRecord(face);
  record.dist_valid = 1;
  record.loc_x = static_cast<int>(circle.centre.x);
  record.loc_y = static_cast<int>(circle.centre.y);
  record.roll = RollOf(face);

  // The larger distance sets the radius, the quotient of both the scale of the limiter.
  const ChainConstants& constants = capture ? kCapture : kPreview;
  const double limiter =
      LimiterScale(face, circle, frame, constants.eye_weight) / constants.scales.limiter;
  const auto scaled = [&](double factor) {
    return std::max(1, static_cast<int>(std::lround(circle.measure * factor)));
  };
  record.dist = limiter >= 1 ? circle.measure : scaled(limiter);
  record.chin_dist = limiter >= 1 ? scaled(1 / limiter) : circle.measure;

  // The engine's strength grows with a small power of the radius, a share of the face needs its
  // inverse. Both chains pull the face's middle equally.
  const double strength = slim / 100.0 * kFullStrength * BorderFade(preview, frame);
  const double pull = strength / (preview.radius / frame.width);
  record.dist_level_ratio =
      static_cast<float>(pull / WarpStrength(circle.radius / frame.width, kBeautyLevel, 1));
  return record;
}

}  // namespace

std::optional<FACE_INFO_t> MakeFaceRecord(const Face& face, int width, int height, int slim,
                                          Chain chain) {
  const std::optional<Circle> circle = CircleOf(face, width, height);
  if (!circle) return std::nullopt;
  return RecordOf(face, *circle, EngineFrame(width, height), slim, chain);
}

PointF WarpCentre(const FACE_INFO_t& record) {
  return {static_cast<float>(record.loc_x), static_cast<float>(record.loc_y)};
}

double WarpRadius(const FACE_INFO_t& record, int width, Chain chain) {
  const WarpScales& scales = chain == Chain::Capture ? kCaptureWarp : kPreviewWarp;
  const int measure = std::max(record.dist, record.chin_dist);
  // As the number that SlimmingCircle tells.
  return static_cast<double>(
      static_cast<float>(WarpRadiusInPixels(measure, scales, RoundUpTo32(width))));
}

WarpCircle SlimmingCircle(const Face& face, int frame_width, int frame_height) {
  const std::optional<Circle> circle = CircleOf(face, frame_width, frame_height);
  if (!circle) return {};
  const double down = (RollOf(face) + 90) * kRadiansPerDegree;
  return {circle->centre,
          static_cast<float>(circle->radius),
          {static_cast<float>(std::cos(down)), static_cast<float>(std::sin(down))}};
}

FaceWarp SlimmingWarp(const Face& face, int slim, int frame_width, int frame_height) {
  FaceWarp warp;
  warp.frame_width = RoundUpTo32(frame_width);
  warp.frame_height = RoundUpTo32(frame_height);
  warp.border_exponent = static_cast<float>(kEdgeFade);
  const std::optional<Circle> circle = CircleOf(face, frame_width, frame_height);
  if (!circle) return warp;
  const EngineFrame frame(frame_width, frame_height);
  const FACE_INFO_t record = RecordOf(face, *circle, frame, slim, Chain::Preview);
  warp.centre = circle->centre;
  warp.radius = static_cast<float>(circle->radius);
  warp.strength = static_cast<float>(WarpStrength(circle->radius / frame.width, kBeautyLevel,
                                                  static_cast<double>(record.dist_level_ratio)) /
                                     frame.width);
  warp.limiter = Limiter(face, *circle, frame);
  warp.reach = static_cast<float>(kLimiterDistance * circle->radius);
  warp.limiter_scale = static_cast<float>(kPreviewWarp.limiter * record.dist / record.chin_dist);
  return warp;
}

}  // namespace lumora
