// Faces in a picture, found with the cascade classifiers that come with OpenCV.
#ifndef LUMORA_TOOLS_FACES_FACE_FINDER_H_
#define LUMORA_TOOLS_FACES_FACE_FINDER_H_

#include <memory>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "lumora/pipeline/face.h"

namespace lumora::tools {

enum class FoundBy { Eyes, Box, File };

/// "eyes", "box" or "file".
const char* NameOf(FoundBy found_by);

struct FoundFace {
  Face face;
  FoundBy found_by = FoundBy::Box;
};

/// Finds the faces that look at the camera.
class FaceFinder {
 public:
  /// Loads the classifiers. Throws Failure (Failed) when they are not installed.
  FaceFinder();
  ~FaceFinder();
  FaceFinder(const FaceFinder&) = delete;
  FaceFinder& operator=(const FaceFinder&) = delete;

  /// The faces of an 8-bit picture (gray or BGR) of any size, largest first. A face is first sought
  /// as a whole, then the eyes inside of it; where these are not found the usual places in the box
  /// serve. Heads may be turned by up to about 45 degrees in the image plane.
  std::vector<FoundFace> Find(const cv::Mat& picture);

 private:
  class Search;
  std::unique_ptr<Search> search_;
};

/// The folder with the classifiers; empty when there is none.
std::string CascadeFolder();

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_FACES_FACE_FINDER_H_
