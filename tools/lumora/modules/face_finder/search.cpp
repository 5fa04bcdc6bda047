// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/modules/face_finder/search.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <optional>
#include <tuple>

#include "tools/lumora/faces/face_geometry.h"
#include "tools/lumora/modules/face_finder/cascade.h"
#include "tools/lumora/modules/opencv.h"

namespace lumora::tools {
namespace {

constexpr int kSearchSide = 1000;  // larger pictures are searched in this size
constexpr int kSmallestFace = 40;  // pixels of the searched picture
constexpr int kLargestShare = 16;  // ... and at least this part of its smaller side
constexpr double kScaleStep = 1.1;
// Overlapping finds that make a face. Wallpaper collects a few by chance; where the eyes are seen
// as well, fewer are enough.
constexpr int kFindsWithEyes = 4;
constexpr int kFindsWithoutEyes = 12;
constexpr double kSameFace = 0.3;  // overlap / union of two boxes around one face

using Turn = CascadeSearch::Turn;

Turn TurnedBy(const cv::Mat& gray, double degrees) {
  if (degrees == 0) return {0, gray, (cv::Mat_<double>(2, 3) << 1, 0, 0, 0, 1, 0)};
  // OpenCV's angles are counter-clockwise: a head turned clockwise comes upright.
  const cv::Point2f middle(0.5f * static_cast<float>(gray.cols),
                           0.5f * static_cast<float>(gray.rows));
  cv::Mat there = cv::getRotationMatrix2D(middle, degrees, 1);
  const double cosine = std::abs(there.at<double>(0, 0)), sine = std::abs(there.at<double>(0, 1));
  const int width = static_cast<int>(gray.cols * cosine + gray.rows * sine);
  const int height = static_cast<int>(gray.cols * sine + gray.rows * cosine);
  there.at<double>(0, 2) += 0.5 * (width - gray.cols);
  there.at<double>(1, 2) += 0.5 * (height - gray.rows);
  Turn turn{degrees, {}, {}};
  cv::warpAffine(gray, turn.gray, there, {width, height}, cv::INTER_LINEAR, cv::BORDER_REPLICATE);
  cv::invertAffineTransform(there, turn.to_picture);
  return turn;
}

PointF Through(const cv::Mat& affine, cv::Point2f point, double scale) {
  const double* row0 = affine.ptr<double>(0);
  const double* row1 = affine.ptr<double>(1);
  const double x = static_cast<double>(point.x), y = static_cast<double>(point.y);
  return {static_cast<float>((row0[0] * x + row0[1] * y + row0[2]) * scale),
          static_cast<float>((row1[0] * x + row1[1] * y + row1[2]) * scale)};
}

bool Overlap(const cv::Rect& a, const cv::Rect& b) {
  const double common = (a & b).area();
  return common > kSameFace * (a.area() + b.area() - common);
}

/// Largest first, and an order for those of one size.
template <typename Candidate>
bool LargerFirst(const Candidate& a, const Candidate& b) {
  const auto place = [](const cv::Rect& box) { return std::tuple(-box.area(), box.y, box.x); };
  return place(a.box) < place(b.box);
}

/// A face for which only its box was found; `scale` leads from there to the whole picture.
Face FaceInBox(const Turn& turn, const cv::Rect& box, double scale) {
  const cv::Point2f middle(static_cast<float>(box.x) + 0.5f * static_cast<float>(box.width),
                           static_cast<float>(box.y) + 0.5f * static_cast<float>(box.height));
  const PointF centre = Through(turn.to_picture, middle, scale);
  const float width = static_cast<float>(box.width * scale);
  const float height = static_cast<float>(box.height * scale);
  return FaceFromTurnedBox({centre.x - width / 2, centre.y - height / 2, width, height},
                           static_cast<float>(turn.degrees));
}

}  // namespace

CascadeSearch::CascadeSearch(const std::string& cascade_folder) : eyes_(cascade_folder) {
  for (const char* file :
       {"haarcascade_frontalface_alt2.xml", "haarcascade_frontalface_default.xml"}) {
    cascades_.push_back(LoadCascade(cascade_folder, file));
  }
}

std::vector<FoundFace> CascadeSearch::Find(const PixelView& picture) {
  return WithOpenCv([&] {
    const cv::Mat pixels = MatOf(picture);
    const double scale = std::max(1.0, std::max(pixels.cols, pixels.rows) / double{kSearchSide});
    cv::Mat small = pixels;
    if (scale > 1) cv::resize(pixels, small, {}, 1 / scale, 1 / scale, cv::INTER_AREA);
    cv::Mat gray = small;
    if (small.channels() == 3) cv::cvtColor(small, gray, cv::COLOR_BGR2GRAY);
    std::vector<FoundFace> faces;
    for (const double degrees : {0.0, 30.0, -30.0}) {
      faces = FindUpright(TurnedBy(gray, degrees), scale);
      if (!faces.empty()) break;
    }
    return faces;
  });
}

std::vector<FoundFace> CascadeSearch::FindUpright(const Turn& turn, double scale) {
  std::vector<FoundFace> faces;
  for (const Candidate& candidate : Candidates(turn.gray)) {
    const std::optional<Eyes> eyes = eyes_.Find(turn.gray, candidate.box);
    if (eyes) {
      faces.push_back({FaceFromEyes(Through(turn.to_picture, eyes->left, scale),
                                    Through(turn.to_picture, eyes->right, scale)),
                       FoundBy::Eyes});
    } else if (candidate.finds >= kFindsWithoutEyes) {
      faces.push_back({FaceInBox(turn, candidate.box, scale), FoundBy::Box});
    }
  }
  return faces;
}

std::vector<CascadeSearch::Candidate> CascadeSearch::Candidates(const cv::Mat& gray) {
  cv::Mat even;
  cv::equalizeHist(gray, even);
  const int smallest = std::max(kSmallestFace, std::min(gray.cols, gray.rows) / kLargestShare);
  std::vector<Candidate> candidates;
  for (cv::CascadeClassifier& cascade : cascades_) {
    std::vector<cv::Rect> boxes;
    std::vector<int> finds;
    cascade.detectMultiScale(even, boxes, finds, kScaleStep, kFindsWithEyes, 0,
                             {smallest, smallest});
    std::vector<Candidate> found;
    for (size_t i = 0; i < boxes.size(); ++i) found.push_back({boxes[i], finds[i]});
    std::sort(found.begin(), found.end(),
              LargerFirst<Candidate>);  // they come as OpenCV's threads found them
    for (const Candidate& one : found) {
      const auto known =
          std::find_if(candidates.begin(), candidates.end(),
                       [&](const Candidate& candidate) { return Overlap(candidate.box, one.box); });
      if (known == candidates.end()) {
        candidates.push_back(one);
      } else {
        known->finds = std::max(known->finds, one.finds);
      }
    }
  }
  std::sort(candidates.begin(), candidates.end(), LargerFirst<Candidate>);
  return candidates;
}

}  // namespace lumora::tools
