// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/modules/face_finder/eye_finder.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <tuple>

#include "tools/lumora/modules/face_finder/cascade.h"

namespace lumora::tools {
namespace {

constexpr int kFaceWidth = 240;  // faces are looked at in this size, whatever theirs is

// Where eyes lie in a box as the face classifiers give it, in box widths and heights.
constexpr double kUsualHeight = 0.39;
constexpr double kUsualDistance = 0.40;
constexpr double kLeastDistance = 0.26, kMostDistance = 0.58;
constexpr double kMostSlope = 0.6;  // height difference / distance: about 31 degrees
constexpr double kHighest = 0.22, kLowest = 0.56;

/// How far a pair is from the usual one; negative for a pair that cannot be eyes.
double Oddity(cv::Point2d left, cv::Point2d right) {
  const cv::Point2d across = right - left;
  const cv::Point2d middle = 0.5 * (left + right);
  const double distance = std::hypot(across.x, across.y);
  const bool plausible = distance > kLeastDistance && distance < kMostDistance &&
                         std::abs(across.y) < kMostSlope * across.x && middle.y > kHighest &&
                         middle.y < kLowest && std::abs(middle.x - 0.5) < 0.14;
  if (!plausible) return -1;
  return std::abs(distance - kUsualDistance) + std::abs(middle.y - kUsualHeight) +
         std::abs(middle.x - 0.5) + 0.5 * std::abs(across.y);
}

}  // namespace

EyeFinder::EyeFinder(const std::string& cascade_folder) {
  for (const char* file : {"haarcascade_eye_tree_eyeglasses.xml", "haarcascade_eye.xml"}) {
    cascades_.push_back(LoadCascade(cascade_folder, file));
  }
}

std::optional<Eyes> EyeFinder::Find(const cv::Mat& gray, const cv::Rect& box) {
  cv::Mat face;
  const double scale = static_cast<double>(kFaceWidth) / box.width;
  cv::resize(gray(box), face, {kFaceWidth, static_cast<int>(std::lround(box.height * scale))}, 0, 0,
             scale < 1 ? cv::INTER_AREA : cv::INTER_CUBIC);
  cv::equalizeHist(face, face);
  const cv::Rect upper(0, face.rows * 15 / 100, face.cols, face.rows * 50 / 100);
  for (cv::CascadeClassifier& cascade : cascades_) {
    std::vector<cv::Rect> found;
    cascade.detectMultiScale(face(upper), found, 1.05, 4, 0, {kFaceWidth / 8, kFaceWidth / 8},
                             {kFaceWidth / 2, kFaceWidth / 2});
    // They come as OpenCV's threads found them.
    std::sort(found.begin(), found.end(), [](const cv::Rect& a, const cv::Rect& b) {
      return std::tuple(a.y, a.x, a.width) < std::tuple(b.y, b.x, b.width);
    });
    std::vector<cv::Point2d> centres;  // in box widths and heights
    centres.reserve(found.size());
    for (const cv::Rect& eye : found) {
      centres.emplace_back((eye.x + 0.5 * eye.width) / face.cols,
                           (upper.y + eye.y + 0.5 * eye.height) / face.rows);
    }
    double least = -1;
    Eyes best;
    for (const cv::Point2d& left : centres) {
      for (const cv::Point2d& right : centres) {
        const double oddity = Oddity(left, right);
        if (oddity < 0 || (least >= 0 && oddity >= least)) continue;
        least = oddity;
        const auto placed = [&box](cv::Point2d p) {
          return cv::Point2f(static_cast<float>(box.x + p.x * box.width),
                             static_cast<float>(box.y + p.y * box.height));
        };
        best = {placed(left), placed(right)};
      }
    }
    if (least >= 0) return best;
  }
  return std::nullopt;
}

}  // namespace lumora::tools
