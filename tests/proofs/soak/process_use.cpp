// SPDX-License-Identifier: Apache-2.0
#include "proofs/soak/process_use.h"

#include <malloc.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace lumora::test {
namespace {

long EntriesOf(const char* directory) {
  namespace fs = std::filesystem;
  return std::distance(fs::directory_iterator(directory), fs::directory_iterator());
}

}  // namespace

ProcessUse CurrentUse() {
  malloc_trim(0);
  long size = 0, resident = 0;
  std::ifstream("/proc/self/statm") >> size >> resident;
  return {resident * sysconf(_SC_PAGESIZE) / 1024, EntriesOf("/proc/self/fd"),
          EntriesOf("/proc/self/task")};
}

}  // namespace lumora::test
