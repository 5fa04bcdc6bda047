// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/gpu_nodes.h"

#include <dirent.h>
#include <fnmatch.h>

#include <algorithm>
#include <cerrno>
#include <initializer_list>
#include <memory>

namespace lumora {
namespace {

struct CloseFolder {
  void operator()(DIR* folder) const { closedir(folder); }
};

/// Whether a folder has an entry of such a name, or does not let itself be read.
bool Has(const std::string& path, std::initializer_list<const char*> patterns) {
  const std::unique_ptr<DIR, CloseFolder> folder(opendir(path.c_str()));
  if (folder == nullptr) return errno != ENOENT && errno != ENOTDIR;
  const auto fits = [](const char* name) {
    return [name](const char* pattern) { return fnmatch(pattern, name, 0) == 0; };
  };
  while (const dirent* const entry = readdir(folder.get())) {
    if (std::any_of(patterns.begin(), patterns.end(), fits(entry->d_name))) return true;
  }
  return false;
}

}  // namespace

bool HasGpuNode(const std::string& root) {
  return Has(root + "/dev/dri", {"card*", "renderD*"}) ||
         Has(root + "/dev", {
                                "nvidia[0-9]*", "nvhost-gpu", "nvgpu",  // NVIDIA's own drivers
                                "mali*", "kgsl-3d*", "pvr*",  // Arm's, Qualcomm's, Imagination's
                                "galcore*",                   // Vivante's
                                "dxg",                        // a GPU of Windows, below Linux
                            });
}

}  // namespace lumora
