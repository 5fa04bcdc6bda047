#include "pipeline/face_record.h"

#include <algorithm>
#include <cmath>

#include "pipeline/landmarks.h"

namespace lumora {
namespace {

constexpr double kRadiansPerDegree = 0.0174532925199432958;

// The engine's own constants, which the record has to meet.
constexpr double kRadiusPerMeasure = 1.15;  // radius in pixels / the larger distance of the record
constexpr double kLargestRadius = 0.4;      // of the frame's width
constexpr double kStrengthAtLevel0 = 1.1;
constexpr double kStrengthExponent = 0.3;  // of the radius
constexpr double kLimiterReach = 0.55;     // distance of the limiter's centre, in radii
constexpr double kLimiterScale = 1.1;      // of the limiter where both distances are equal

// Where the face lies in the circle: its cheeks and chin in the zone that is moved most.
constexpr float kCheekPosition = 0.60f;  // distance of the cheeks from the centre, in radii
constexpr float kChinPosition = 0.70f;   // distance of the chin from the centre, in radii

// How far the limiter holds back the warp at the eyes: 0.5 leaves them in their places.
constexpr double kEyeWeight = 0.5;
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

/// The roll as the engine takes it: in whole degrees.
int RollOf(const Face& face) {
  return static_cast<int>(std::lround(std::remainder(static_cast<double>(face.roll_degrees), 360)));
}

std::optional<Circle> CircleOf(const Face& face, int width, int height) {
  if (!IsFinite(face)) return std::nullopt;
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
  const double measure = std::min(wanted / kRadiusPerMeasure, static_cast<double>(width));
  Circle circle;
  circle.centre = {std::max(1.f, std::round(centre.x)), std::max(1.f, std::round(centre.y))};
  circle.measure = std::max(1, static_cast<int>(std::lround(measure)));
  circle.radius = std::min(circle.measure * kRadiusPerMeasure,
                           kLargestRadius * static_cast<double>(AlignedSize(width)));
  return circle;
}

/// The scale of the limiter that leaves the eyes alone. Its centre lies at a distance that depends
/// on the shape of the frame, which the scale makes up for.
double LimiterScale(const Face& face, const Circle& circle, int width, int height) {
  const double direction = (RollOf(face) - 90) * kRadiansPerDegree;
  const double shape = static_cast<double>(AlignedSize(height)) / AlignedSize(width);
  const double reach = kLimiterReach * circle.radius;
  const PointF limiter = {
      static_cast<float>(circle.centre.x + reach * std::cos(direction)),
      static_cast<float>(circle.centre.y + reach * std::sin(direction) * shape)};
  const double eyes = (Length(Centre(face.landmarks.left_eye) - limiter) +
                       Length(Centre(face.landmarks.right_eye) - limiter)) /
                      2;
  return std::clamp(eyes / (kEyeWeight * reach), kSmallestLimiter, kLargestLimiter);
}

/// The strength that is left for a face at that distance from the nearest border.
double BorderFade(const Circle& circle, int width, int height) {
  const double border = std::min(
      std::min(circle.centre.x, static_cast<float>(AlignedSize(width)) - circle.centre.x),
      std::min(circle.centre.y, static_cast<float>(AlignedSize(height)) - circle.centre.y));
  const double inside =
      std::clamp((border / circle.radius - kFadeEnd) / (kFadeBegin - kFadeEnd), 0.0, 1.0);
  return kFadedStrength + (1 - kFadedStrength) * inside;
}

void SetLandmarks(const FaceLandmarks& at, FACE_INFO_t* record) {
  const auto set = [record](int index, const PointF& point) {
    // Far outside every frame; keeps the conversion defined for any finite number.
    constexpr float kFarthest = 1e6f;
    record->landmark(index) = {
        static_cast<int32_t>(std::lround(std::clamp(point.x, -kFarthest, kFarthest))),
        static_cast<int32_t>(std::lround(std::clamp(point.y, -kFarthest, kFarthest))), 0};
  };
  const auto set_feature = [&set](const FeatureBox& feature, int left, int right, int top,
                                  int bottom) {
    set(left, feature.left);
    set(right, feature.right);
    set(top, feature.top);
    set(bottom, feature.bottom);
  };
  // Landmarks without a role lie on the nose, inside every face.
  for (int i = FACE_INFO_t::kFirstLandmark; i <= FACE_INFO_t::kLastLandmark; ++i) {
    set(i, at.nose_tip);
  }
  set_feature(at.mouth, 12, 13, 14, 15);
  set_feature(at.left_brow, 34, 33, 35, 36);
  set_feature(at.right_brow, 39, 38, 40, 41);
  set_feature(at.left_eye, 60, 59, 57, 58);
  set_feature(at.right_eye, 64, 63, 61, 62);
  set(42, at.nasion);
  set(43, Middle(at.mouth.bottom, at.chin));
  set(65, at.chin);
  set(68, at.left_temple);
  set(69, at.right_temple);
  set(70, at.left_jaw);
  set(71, at.right_jaw);
}

}  // namespace

std::optional<FACE_INFO_t> MakeFaceRecord(const Face& face, int width, int height, int slim) {
  const std::optional<Circle> circle = CircleOf(face, width, height);
  if (!circle) return std::nullopt;

  FACE_INFO_t record{};
  record.dist_valid = 1;
  record.loc_x = static_cast<int32_t>(circle->centre.x);
  record.loc_y = static_cast<int32_t>(circle->centre.y);
  record.roll = RollOf(face);

  // The larger distance sets the radius, the quotient of both the scale of the limiter.
  const double limiter = LimiterScale(face, *circle, width, height) / kLimiterScale;
  const auto scaled = [&](double factor) {
    return std::max(1, static_cast<int32_t>(std::lround(circle->measure * factor)));
  };
  record.dist = limiter >= 1 ? circle->measure : scaled(limiter);
  record.chin_dist = limiter >= 1 ? scaled(1 / limiter) : circle->measure;

  // The engine's strength grows with a small power of the radius, a share of the face needs its
  // inverse.
  const double radius = circle->radius / AlignedSize(width);
  const double strength = slim / 100.0 * kFullStrength * BorderFade(*circle, width, height);
  record.dist_level_ratio = static_cast<float>(
      strength / radius / (kStrengthAtLevel0 * std::pow(radius, kStrengthExponent)));

  SetLandmarks(face.landmarks, &record);
  return record;
}

WarpCircle SlimmingCircle(const Face& face, int frame_width, int frame_height) {
  const std::optional<Circle> circle = CircleOf(face, frame_width, frame_height);
  if (!circle) return {};
  const double down = (RollOf(face) + 90) * kRadiansPerDegree;
  return {circle->centre,
          static_cast<float>(circle->radius),
          {static_cast<float>(std::cos(down)), static_cast<float>(std::sin(down))}};
}

}  // namespace lumora
