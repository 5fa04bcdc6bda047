// SPDX-License-Identifier: Apache-2.0
// Faces in a picture. The search is in a module, since the libraries that it takes are many and
// large, and most calls of the command do not search.
#ifndef LUMORA_TOOLS_FACES_FACE_FINDER_H_
#define LUMORA_TOOLS_FACES_FACE_FINDER_H_

#include <memory>
#include <string>
#include <vector>

#include "tools/lumora/faces/face_search.h"

namespace lumora::tools {

/// Finds the faces that look at the camera.
class FaceFinder {
 public:
  /// Loads the module and its classifiers. Throws Failure (Failed) when they are not installed.
  FaceFinder();

  /// The faces of an 8-bit picture (gray or BGR) of any size, largest first. A face is first sought
  /// as a whole, then the eyes inside of it; where these are not found the usual places in the box
  /// serve. Heads may be turned by up to about 45 degrees in the image plane.
  std::vector<FoundFace> Find(const PixelView& picture);

 private:
  std::unique_ptr<FaceSearch> search_;
};

/// Loads the module. Throws Failure (Failed) when it is missing or cannot be loaded.
void LoadFaceFinder();

/// The folder with the classifiers; empty when there is none.
std::string CascadeFolder();

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_FACES_FACE_FINDER_H_
