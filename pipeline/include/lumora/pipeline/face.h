// SPDX-License-Identifier: Apache-2.0
// Faces as the pipeline takes them: plain values in pixels of the frame.
#ifndef LUMORA_PIPELINE_FACE_H_
#define LUMORA_PIPELINE_FACE_H_

#include <array>
#include <cstddef>
#include <vector>

#include "lumora/pipeline/export.h"

namespace lumora {

/// A point in pixels: x to the right, y down, (0, 0) the outer corner of the first pixel.
struct PointF {
  float x = 0;
  float y = 0;
};

/// A rectangle in pixels.
struct RectF {
  float x = 0;
  float y = 0;
  float width = 0;
  float height = 0;
};

/// Four points that span an ellipse around a feature: the ends of its two axes.
struct FeatureBox {
  PointF left, right, top, bottom;
};

/// The landmarks of one face. "Left" and "right" are the viewer's, for an upright face; for a
/// turned face they turn with it.
struct FaceLandmarks {
  FeatureBox left_eye, right_eye;
  FeatureBox left_brow, right_brow;
  FeatureBox mouth;
  PointF nasion;  ///< root of the nose, between the eyes
  PointF nose_tip;
  PointF chin;                       ///< lowest point of the chin
  PointF left_temple, right_temple;  ///< edge of the face at the height of the eyes
  PointF left_jaw, right_jaw;        ///< edge of the face at the height of the mouth
};

/// The largest coordinate of a face, to both sides of 0, in multiples of the longer side of its
/// frame. The sides of its box may be twice as long.
constexpr float kFarthestInSides = 16;
/// The largest roll, to both sides.
constexpr float kLargestRoll = 36000;

/// One detected face. The pipeline refuses faces with numbers beyond the two bounds above, and the
/// functions here tell of no circle, warp or ellipses for them.
struct Face {
  RectF box;               ///< as the detector gave it
  float roll_degrees = 0;  ///< rotation in the image plane, clockwise as seen; 0 is upright
  FaceLandmarks landmarks;
};

/// Faces in the caller's memory, which stay there as long as the span is used: one, or those of a
/// vector or an array, from which it is made by itself. It cannot be made from one that is about to
/// go away.
class FaceSpan {
 public:
  constexpr FaceSpan() = default;  ///< no faces
  constexpr FaceSpan(const Face* faces, size_t count) : faces_(faces), count_(count) {}
  constexpr FaceSpan(const Face& face) : FaceSpan(&face, 1) {}
  FaceSpan(const std::vector<Face>& faces) : FaceSpan(faces.data(), faces.size()) {}
  template <size_t count>
  constexpr FaceSpan(const std::array<Face, count>& faces) : FaceSpan(faces.data(), count) {}
  template <size_t count>
  constexpr FaceSpan(const Face (&faces)[count]) : FaceSpan(faces, count) {}
  FaceSpan(const Face&&) = delete;
  FaceSpan(const std::vector<Face>&&) = delete;
  template <size_t count>
  FaceSpan(const std::array<Face, count>&&) = delete;

  constexpr const Face* begin() const { return faces_; }
  constexpr const Face* end() const { return faces_ + count_; }
  constexpr size_t size() const { return count_; }
  constexpr bool empty() const { return count_ == 0; }
  constexpr const Face& operator[](size_t index) const { return faces_[index]; }

 private:
  const Face* faces_ = nullptr;
  size_t count_ = 0;
};

/// A face from the centres of its eyes alone: the canonical face, moved, turned and scaled so that
/// its eyes fall on the given ones. `box` becomes the bounds of the landmarks.
LUMORA_PIPELINE_API Face FaceFromEyes(PointF left_eye, PointF right_eye);

/// A face from an upright box as face detectors give it (about from the middle of the forehead
/// to the chin), with the eyes at their usual places inside.
LUMORA_PIPELINE_API Face FaceFromBox(const RectF& box);

/// A face from the 68 points of the iBUG annotation.
LUMORA_PIPELINE_API Face FaceFromIbug68(const PointF (&points)[68]);

/// A face from the first 468 points of a face mesh (meshes of 468 and 478 points share them).
LUMORA_PIPELINE_API Face FaceFromMesh468(const PointF (&points)[468]);

/// The circle in which slimming moves pixels, in pixels of the frame.
struct WarpCircle {
  PointF centre;
  float radius = 0;
  PointF towards;  ///< unit vector from the face centre to the chin: the side that is moved most
};

/// Where slimming will act for this face in a frame of that size. Pixels whose centres are farther
/// from the circle's than the radius keep their values. The radius is 0 for a face that cannot be
/// slimmed: one whose centre lies outside the frame, or whose cheeks or chin coincide with it.
LUMORA_PIPELINE_API WarpCircle SlimmingCircle(const Face& face, int frame_width, int frame_height);

/// An ellipse in pixels of the frame.
struct Ellipse {
  PointF centre;
  float half_along = 0;   ///< half axis along `angle_degrees`; 0 for an ellipse that holds nothing
  float half_across = 0;  ///< the other half axis
  float angle_degrees = 0;  ///< of the first axis, clockwise as seen; 0 is along x
};

/// Places of the ellipses that WhiteningEllipses gives.
enum WhiteningEllipse {
  kFaceEllipse,
  kCentreEllipse,
  kLeftEyeEllipse,
  kRightEyeEllipse,
  kMouthEllipse,
  kLeftBrowEllipse,
  kRightBrowEllipse
};

/// The seven ellipses of whitening: the face, the whitening's outer limit, and those of its
/// features. Pixels whose centres lie outside of the first one keep their values.
LUMORA_PIPELINE_API std::array<Ellipse, 7> WhiteningEllipses(const Face& face);

/// The warp that the preview chain draws for a face, in full. A pixel at p is taken from
///   p + d * strength * |d| * (1 - weight), d = p - centre,
/// with
///   hold = min(1, |p - limiter| / (limiter_scale * reach))
///   weight = min(1, |d| / radius / hold * (2 - border ^ border_exponent))
/// where `border` is the distance to the nearest border of the frame as a share of its side, and
/// lengths are pixels.
struct FaceWarp {
  int frame_width = 0;   ///< the frame that the border is measured in: both sides rounded up to
  int frame_height = 0;  ///< multiples of 32
  PointF centre;
  float radius = 0;    ///< pixels; 0 for a face that cannot be slimmed
  float strength = 0;  ///< per pixel
  PointF limiter;      ///< the place that keeps its pixels
  float reach = 0;     ///< pixels
  float limiter_scale = 0;
  float border_exponent = 0;
};

/// The warp of `face` at a strength `slim` (0..100) in a frame of that size.
LUMORA_PIPELINE_API FaceWarp SlimmingWarp(const Face& face, int slim, int frame_width,
                                          int frame_height);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_FACE_H_
