// SPDX-License-Identifier: Apache-2.0
#include "proofs/faults/fault_test.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>

namespace lumora::test {

std::string CacheFolder::directory(Cache cache) const {
  switch (cache) {
    case Cache::Off:
      return std::string(300, 'x');  // longer than the path of a cache file may be
    case Cache::Cold:
      return cold_.path();
    case Cache::Warm:
      return warm_.path();
  }
  return {};
}

void CacheFolder::prepare(Cache cache) {
  for (const auto& file : std::filesystem::directory_iterator(cold_.path())) {
    std::filesystem::remove(file.path());
  }
  setenv("LUMORA_CACHE_DIR", directory(cache).c_str(), 1);
}

bool CacheFolder::holds_whole_files() const {
  for (const TempDirectory* directory : {&warm_, &cold_}) {
    for (const auto& file : std::filesystem::directory_iterator(directory->path())) {
      const auto extension = file.path().extension();
      if (extension != ".bin" && extension != ".seal") return false;
    }
  }
  return true;
}

void TellInjected(size_t faults) {
  static size_t all = 0;
  all += faults;
  std::cout << "[  FAULTS  ] " << faults << ", " << all << " in all\n";
  testing::Test::RecordProperty("faults", static_cast<int>(faults));
}

}  // namespace lumora::test
