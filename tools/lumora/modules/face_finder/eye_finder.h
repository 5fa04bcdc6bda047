// SPDX-License-Identifier: Apache-2.0
// Both eyes inside the box of a face.
#ifndef LUMORA_TOOLS_MODULES_FACE_FINDER_EYE_FINDER_H_
#define LUMORA_TOOLS_MODULES_FACE_FINDER_EYE_FINDER_H_

#include <opencv2/objdetect.hpp>
#include <optional>
#include <string>
#include <vector>

namespace lumora::tools {

struct Eyes {
  cv::Point2f left, right;  ///< centres; left is the viewer's
};

class EyeFinder {
 public:
  /// Loads the classifiers from that folder.
  explicit EyeFinder(const std::string& cascade_folder);

  /// The eyes of the face in `box`, or nothing where no pair lies as eyes do.
  std::optional<Eyes> Find(const cv::Mat& gray, const cv::Rect& box);

 private:
  std::vector<cv::CascadeClassifier> cascades_;
};

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_MODULES_FACE_FINDER_EYE_FINDER_H_
