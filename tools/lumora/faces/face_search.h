// SPDX-License-Identifier: Apache-2.0
// What the module face_finder gives the command: the search itself, and the libraries that it
// takes.
#ifndef LUMORA_TOOLS_FACES_FACE_SEARCH_H_
#define LUMORA_TOOLS_FACES_FACE_SEARCH_H_

#include <vector>

#include "lumora/pipeline/face.h"
#include "tools/lumora/images/image.h"
#include "tools/lumora/support/module.h"

namespace lumora::tools {

enum class FoundBy { Eyes, Box, File };

/// "eyes", "box" or "file".
const char* NameOf(FoundBy found_by);

struct FoundFace {
  Face face;
  FoundBy found_by = FoundBy::Box;
};

class FaceSearch {
 public:
  virtual ~FaceSearch() = default;

  /// As FaceFinder::Find.
  virtual std::vector<FoundFace> Find(const PixelView& picture) = 0;
};

inline constexpr Module kFaceFinderModule = {"face_finder", "LumoraMakeFaceSearch",
                                             "search for faces",
                                             "install the command again or use --faces"};

/// The module's function: a new search with the classifiers of that folder, which is the caller's;
/// none where `version` is not the module's own. Throws Failure (Failed) when they cannot be
/// loaded.
using MakeFaceSearch = FaceSearch* (*)(const char* version, const char* cascade_folder);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_FACES_FACE_SEARCH_H_
