#include "pipeline/whitening_geometry.h"

#include <algorithm>

#include "pipeline/face_record.h"
#include "pipeline/landmarks.h"
#include "pipeline/number_bounds.h"

namespace lumora {
namespace {

constexpr double kDegreesPerRadian = 57.295779513082320877;

// The engine's own constants.
constexpr float kForeheadShare = 0.7f;  // of nasion to chin, beyond the nasion
constexpr int kEyePadding = 10;         // pixels, of the ellipses around eyes and brows
constexpr float kLeastHalfAxis = 2;     // pixels; ellipses up to this hold nothing
constexpr double kQuarterTurn = 0.7854;
constexpr double kThreeQuarterTurn = 2.3562;
constexpr int kSamplesAcross = 30;  // half of them to each side of the centre

/// A length in whole pixels.
int Distance(const fpf_point& a, const fpf_point& b) {
  return static_cast<int>(
      std::hypot(static_cast<double>(b.x) - a.x, static_cast<double>(b.y) - a.y));
}

fpf_point Middle(const fpf_point& a, const fpf_point& b) {
  return {(a.x + b.x) / 2, (a.y + b.y) / 2, 0};
}

/// An ellipse with an axis from `p0` to `p1` and another as long as `p2` to `p3`. Each coordinate
/// of its centre is taken from the axis that runs along it.
Ellipse EllipseOf(const fpf_point& p0, const fpf_point& p1, const fpf_point& p2,
                  const fpf_point& p3, int padding = 0) {
  const double angle =
      std::atan2(static_cast<double>(p1.y) - p0.y, static_cast<double>(p1.x) - p0.x);
  const bool level = std::abs(angle) < kQuarterTurn || std::abs(angle) > kThreeQuarterTurn;
  const fpf_point first = Middle(p0, p1);
  const fpf_point second = Middle(p2, p3);
  const auto half = [padding](const fpf_point& from, const fpf_point& to) {
    const int whole_pixels = Distance(from, to) / 2;
    return static_cast<float>(padding + whole_pixels);
  };
  Ellipse ellipse;
  ellipse.centre = {static_cast<float>(level ? first.x : second.x),
                    static_cast<float>(level ? second.y : first.y)};
  ellipse.half_along = half(p0, p1);
  ellipse.half_across = half(p2, p3);
  ellipse.angle_degrees = static_cast<float>(angle * kDegreesPerRadian);
  if (ellipse.half_along <= kLeastHalfAxis || ellipse.half_across <= kLeastHalfAxis) {
    ellipse.half_along = ellipse.half_across = 0;
  }
  return ellipse;
}

/// The ends of the face's two axes.
struct FaceAxes {
  explicit FaceAxes(const FACE_INFO_t& record)
      : left(Middle(record.landmark(68), record.landmark(70))),
        right(Middle(record.landmark(69), record.landmark(71))),
        chin(record.landmark(65)) {
    const auto beyond = [](int from, int towards) {
      return static_cast<int>(static_cast<float>(from) -
                              kForeheadShare * static_cast<float>(towards - from));
    };
    const fpf_point& nasion = record.landmark(42);
    forehead = {beyond(nasion.x, chin.x), beyond(nasion.y, chin.y), 0};
  }
  fpf_point left, right, forehead, chin;
};

}  // namespace

std::array<Ellipse, 7> EllipsesOf(const FACE_INFO_t& record) {
  const auto at = [&record](int i) { return record.landmark(i); };
  const FaceAxes face(record);
  return {EllipseOf(face.left, face.right, face.forehead, face.chin),
          EllipseOf(at(70), at(71), Middle(at(57), at(61)), at(43)),
          EllipseOf(at(60), at(59), at(57), at(58), kEyePadding),
          EllipseOf(at(64), at(63), at(61), at(62), kEyePadding),
          EllipseOf(at(12), at(13), at(14), at(15)),
          EllipseOf(at(34), at(33), at(35), at(36), kEyePadding),
          EllipseOf(at(39), at(38), at(40), at(41), kEyePadding)};
}

SampleSquare SampleSquareOf(const FACE_INFO_t& record) {
  const FaceAxes face(record);
  const Ellipse ellipse = EllipseOf(face.left, face.right, face.forehead, face.chin);
  SampleSquare square;
  square.centre_x = static_cast<int>(ellipse.centre.x);
  square.centre_y = static_cast<int>(ellipse.centre.y);
  square.radius = Distance(face.left, face.right) / 2;
  square.step = std::max(1, square.radius / kSamplesAcross);
  return square;
}

EllipseRows::EllipseRows(const Ellipse& ellipse)
    : centre_x_(static_cast<double>(ellipse.centre.x)),
      centre_y_(static_cast<double>(ellipse.centre.y)) {
  constexpr double kHeld = 1 - 1e-4;
  const double along = kHeld * static_cast<double>(ellipse.half_along);
  const double across = kHeld * static_cast<double>(ellipse.half_across);
  area_ = along * across;
  if (!(area_ > 0)) return;
  const double angle = static_cast<double>(ellipse.angle_degrees) / kDegreesPerRadian;
  const double cosine = std::cos(angle), sine = std::sin(angle);
  across2_ = std::pow(cosine / along, 2) + std::pow(sine / across, 2);
  mixed_ = 2 * cosine * sine * (1 / (along * along) - 1 / (across * across));
}

RowSpan EllipseRows::Row(int y, int width) const {
  if (!(area_ > 0)) return {};
  const double dy = y + 0.5 - centre_y_;
  // A quarter of the discriminant, in which all but this cancels out.
  const double left = across2_ - std::pow(dy / area_, 2);
  if (left < 0) return {};
  return SpanAround(centre_x_ - mixed_ * dy / (2 * across2_), std::sqrt(left) / across2_, width);
}

std::array<Ellipse, 7> WhiteningEllipses(const Face& face) {
  if (!IsWithin(face, FarthestInAnyFrame())) return {};
  return EllipsesOf(LandmarkRecord(face));
}

}  // namespace lumora
