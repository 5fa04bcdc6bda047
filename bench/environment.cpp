// SPDX-License-Identifier: Apache-2.0
#include "bench/environment.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace lumora::bench {

TemporaryFolder::TemporaryFolder() {
  path_ = (std::filesystem::temp_directory_path() / "lumora-bench-XXXXXX").string();
  if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no temporary folder");
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

void SettleEnvironment(const std::string& folder) {
  setenv("LP_NUM_THREADS", "0", 1);
  setenv("MESA_SHADER_CACHE_DIR", (folder + "/mesa").c_str(), 1);
  setenv("LUMORA_CACHE_DIR", (folder + "/programs").c_str(), 1);
  unsetenv("MESA_SHADER_CACHE_DISABLE");
  unsetenv("LUMORA_FULL_QUADS");
}

}  // namespace lumora::bench
