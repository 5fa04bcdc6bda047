// SPDX-License-Identifier: Apache-2.0
// What the module shows to the command.
#include <cstring>

#include "tools/lumora/modules/face_finder/search.h"
#include "tools/lumora/modules/opencv.h"

extern "C" {

__attribute__((visibility("default"))) lumora::tools::FaceSearch* LumoraMakeFaceSearch(
    const char* version, const char* cascade_folder) {
  using lumora::tools::CascadeSearch;
  if (std::strcmp(version, LUMORA_VERSION) != 0) return nullptr;
  return lumora::tools::WithOpenCv([&] { return new CascadeSearch(cascade_folder); });
}

}  // extern "C"
