// SPDX-License-Identifier: Apache-2.0
#include "lumora/pipeline/face_tracker.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include "pipeline/faces/face_bounds.h"
#include "pipeline/faces/landmarks.h"
#include "pipeline/support/guarded.h"

namespace lumora {
namespace {

PointF MiddleOf(const RectF& box) {
  return {box.x + box.width / 2, box.y + box.height / 2};
}

/// How far two faces lie apart, in shares of the larger side of the first one's box.
float Apart(const Face& from, const Face& to) {
  const float side = std::max(from.box.width, from.box.height);
  if (!(side > 0)) return std::numeric_limits<float>::infinity();
  return Length(MiddleOf(to.box) - MiddleOf(from.box)) / side;
}

/// Moves every number of `face` by `share` of its way to `target`; angles by the shorter way.
void Approach(const Face& target, float share, Face* face) {
  const auto move = [share](float to, float* value) { *value += share * (to - *value); };
  move(target.box.x, &face->box.x);
  move(target.box.y, &face->box.y);
  move(target.box.width, &face->box.width);
  move(target.box.height, &face->box.height);
  const float turn = std::remainder(target.roll_degrees - face->roll_degrees, 360.f);
  face->roll_degrees = std::remainder(face->roll_degrees + share * turn, 360.f);

  std::array<PointF, sizeof(FaceLandmarks) / sizeof(PointF)> ends;
  size_t next = 0;
  ForEachPoint(target.landmarks, [&](const PointF& point) { ends[next++] = point; });
  next = 0;
  ForEachPoint(face->landmarks, [&](PointF& point) {
    move(ends[next].x, &point.x);
    move(ends[next].y, &point.y);
    ++next;
  });
}

}  // namespace

std::vector<Face> FaceTracker::Detected(const std::vector<Face>& faces) {
  return OrNothing([&] { return Advance(Matched(faces)); });
}

std::vector<Face> FaceTracker::Skipped() {
  return OrNothing([this] { return Advance(tracks_); });
}

std::vector<FaceTracker::Track> FaceTracker::Matched(const std::vector<Face>& faces) const {
  std::vector<Track> tracks = tracks_;
  std::vector<const Face*> left;
  for (const Face& face : faces) {
    if (IsWithin(face, FarthestInAnyFrame())) left.push_back(&face);
  }
  for (Track& track : tracks) ++track.missed;

  // The closest pair of all is matched first, then the closest of what is left.
  while (true) {
    Track* best_track = nullptr;
    size_t best_face = 0;
    float least = tracking_.reach;
    for (Track& track : tracks) {
      if (track.missed == 0) continue;
      for (size_t i = 0; i < left.size(); ++i) {
        const float apart = Apart(track.target, *left[i]);
        if (apart > least) continue;
        least = apart;
        best_track = &track;
        best_face = i;
      }
    }
    if (best_track == nullptr) break;
    best_track->target = *left[best_face];
    best_track->missed = 0;
    left.erase(left.begin() + static_cast<std::ptrdiff_t>(best_face));
  }

  tracks.erase(
      std::remove_if(tracks.begin(), tracks.end(),
                     [this](const Track& track) { return track.missed > tracking_.patience; }),
      tracks.end());
  for (const Face* face : left) tracks.push_back({*face, *face, 0});
  return tracks;
}

std::vector<Face> FaceTracker::Advance(std::vector<Track> tracks) {
  std::vector<Face> faces;
  faces.reserve(tracks.size());
  for (Track& track : tracks) {
    Approach(track.target, 1 - tracking_.smoothing, &track.shown);
    faces.push_back(track.shown);
  }
  tracks_ = std::move(tracks);
  return faces;
}

}  // namespace lumora
