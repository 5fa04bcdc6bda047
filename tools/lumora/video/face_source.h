// Where the faces of a clip come from.
#ifndef LUMORA_TOOLS_VIDEO_FACE_SOURCE_H_
#define LUMORA_TOOLS_VIDEO_FACE_SOURCE_H_

#include <memory>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "pipeline/face.h"

namespace lumora::tools {

class FaceSource {
 public:
  virtual ~FaceSource() = default;

  /// The faces of the next frame, whose luma plane is given. Throws Failure.
  virtual std::vector<Face> Next(const cv::Mat& luma) = 0;
  /// A sentence for the user at the end of the clip; empty when there is nothing to say.
  virtual std::string Remark() { return {}; }
};

/// Looks for faces in every n-th frame and follows them smoothly in between.
std::unique_ptr<FaceSource> DetectedFaces(int every);

/// Takes them from a file with one line a frame, each as ParseFaces reads it; an empty line is a
/// frame without faces. Throws Failure (Unreadable).
std::unique_ptr<FaceSource> ListedFaces(const std::string& path);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_VIDEO_FACE_SOURCE_H_
