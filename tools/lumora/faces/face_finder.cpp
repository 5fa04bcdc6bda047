// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/faces/face_finder.h"

#include <filesystem>

namespace lumora::tools {
namespace {

MakeFaceSearch Maker() {
  return reinterpret_cast<MakeFaceSearch>(ModuleFunction(kFaceFinderModule));
}

}  // namespace

const char* NameOf(FoundBy found_by) {
  switch (found_by) {
    case FoundBy::Eyes:
      return "eyes";
    case FoundBy::Box:
      return "box";
    case FoundBy::File:
      break;
  }
  return "file";
}

std::string CascadeFolder() {
  for (const char* folder : {LUMORA_CASCADE_FOLDER, "/usr/share/opencv4/haarcascades",
                             "/usr/local/share/opencv4/haarcascades"}) {
    std::error_code ignored;
    if (std::filesystem::is_directory(folder, ignored)) return folder;
  }
  return {};
}

void LoadFaceFinder() {
  Maker();
}

FaceFinder::FaceFinder()
    : search_(MadeBy(kFaceFinderModule, Maker()(LUMORA_VERSION, CascadeFolder().c_str()))) {}

std::vector<FoundFace> FaceFinder::Find(const PixelView& picture) {
  return search_->Find(picture);
}

}  // namespace lumora::tools
