// SPDX-License-Identifier: Apache-2.0
// The search for faces, with the cascade classifiers that come with OpenCV.
#ifndef LUMORA_TOOLS_MODULES_FACE_FINDER_SEARCH_H_
#define LUMORA_TOOLS_MODULES_FACE_FINDER_SEARCH_H_

#include <opencv2/objdetect.hpp>
#include <string>
#include <vector>

#include "tools/lumora/faces/face_search.h"
#include "tools/lumora/modules/face_finder/eye_finder.h"

namespace lumora::tools {

class CascadeSearch final : public FaceSearch {
 public:
  /// The picture turned by one angle.
  struct Turn {
    double degrees;      ///< clockwise, that the heads sought are turned by
    cv::Mat gray;        ///< turned back, so that such heads are upright in it
    cv::Mat to_picture;  ///< affine: points of `gray` to points of the picture
  };

  /// Loads the classifiers from that folder. Throws Failure (Failed).
  explicit CascadeSearch(const std::string& cascade_folder);

  std::vector<FoundFace> Find(const PixelView& picture) override;

 private:
  struct Candidate {
    cv::Rect box;
    int finds = 0;  ///< overlapping ones, that made it
  };

  /// Faces that are upright in `turn.gray`; `scale` leads from there to the whole picture.
  std::vector<FoundFace> FindUpright(const Turn& turn, double scale);

  /// Boxes of both classifiers, largest first, every face once.
  std::vector<Candidate> Candidates(const cv::Mat& gray);

  std::vector<cv::CascadeClassifier> cascades_;
  EyeFinder eyes_;
};

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_MODULES_FACE_FINDER_SEARCH_H_
