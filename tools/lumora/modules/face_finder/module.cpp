// SPDX-License-Identifier: Apache-2.0
// What the module shows to the command.
#include <cstring>

#include "tools/lumora/modules/face_finder/search.h"
#include "tools/lumora/modules/opencv.h"

namespace lumora::tools {
namespace {

class GuardedSearch final : public FaceSearch {
 public:
  explicit GuardedSearch(const char* cascade_folder) : search_(cascade_folder) {}

  std::vector<FoundFace> Find(const PixelView& picture) override {
    return WithOpenCv([&] { return search_.Find(picture); });
  }

 private:
  CascadeSearch search_;
};

}  // namespace
}  // namespace lumora::tools

extern "C" {

__attribute__((visibility("default"))) lumora::tools::FaceSearch* LumoraMakeFaceSearch(
    const char* version, const char* cascade_folder) {
  using lumora::tools::GuardedSearch;
  if (std::strcmp(version, LUMORA_VERSION) != 0) return nullptr;
  return lumora::tools::WithOpenCv([&] { return new GuardedSearch(cascade_folder); });
}

}  // extern "C"
