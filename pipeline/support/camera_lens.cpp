// SPDX-License-Identifier: Apache-2.0
#include "pipeline/support/camera_lens.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "lumora/engine/internal/lens_files.h"
#include "lumora/platform/settings.h"

// Applications may set a root from code, which they need the engine's library for: where that is
// part of the process this finds it, elsewhere it is null.
namespace lumora::platform {
[[gnu::weak]] std::string SystemRoot();  // NOLINT(readability-redundant-declaration): it is weak
}

namespace lumora {
namespace {

std::string SystemRoot() {
  if (&platform::SystemRoot != nullptr) {
    std::string root = platform::SystemRoot();
    if (!root.empty()) return root;
    // It is empty where memory was short, too: throws where it still is, and asks again.
    std::make_unique<char[]>(PATH_MAX);
    return platform::SystemRoot();
  }
  const char* const set = std::getenv("LUMORA_SYSTEM_ROOT");
  std::string root = set != nullptr ? set : "";
  while (!root.empty() && root.back() == '/') root.pop_back();
  return root;
}

bool SystemPath(const char* path, char* text, size_t size) {
  const std::string whole = SystemRoot() + path;
  if (whole.size() >= size) return false;
  std::memcpy(text, whole.c_str(), whole.size() + 1);
  return true;
}

}  // namespace

LensCoefficients ReadCameraLens(Camera camera) {
  const auto k = engine::ReadLensCoefficients(camera == Camera::Second, SystemPath);
  return {k[0], k[1], k[2], k[3]};
}

}  // namespace lumora
