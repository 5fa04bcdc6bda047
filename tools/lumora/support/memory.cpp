// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/support/memory.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <new>
#include <stdexcept>

#include "tools/lumora/support/failure.h"

namespace lumora::tools {
namespace {

namespace fs = std::filesystem;

constexpr uint64_t kNoLimit = std::numeric_limits<uint64_t>::max();

uint64_t ResourceLimit(decltype(RLIMIT_AS) resource) {
  rlimit limit = {};
  const bool limited = getrlimit(resource, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY;
  return limited ? limit.rlim_cur : kNoLimit;
}

/// The number in a file; no limit where the file says "max" or is missing.
uint64_t LimitIn(const fs::path& file) {
  std::string text;
  std::ifstream(file) >> text;
  uint64_t limit = kNoLimit;
  std::from_chars(text.data(), text.data() + text.size(), limit);
  return limit;
}

/// The least limit of a group and the ones that it is in, down to `top`, which may be the root of
/// the hierarchy or, in a container, the container's own group.
uint64_t LimitOfGroups(const fs::path& top, const std::string& group, const char* file) {
  uint64_t limit = LimitIn(top / file);
  fs::path place = top;
  for (const fs::path& name : fs::path(group).relative_path()) {
    place /= name;
    limit = std::min(limit, LimitIn(place / file));
  }
  return limit;
}

/// Lines are "number:controllers:group"; the unified hierarchy has no controllers there.
uint64_t ControlGroupLimit(const std::string& root) {
  uint64_t limit = kNoLimit;
  std::ifstream groups(root + "/proc/self/cgroup");
  for (std::string line; std::getline(groups, line);) {
    const size_t first = line.find(':'), second = line.find(':', first + 1);
    if (second == std::string::npos) continue;
    const std::string controllers = "," + line.substr(first + 1, second - first - 1) + ",";
    const std::string group = line.substr(second + 1);
    const std::string top = root + "/sys/fs/cgroup";
    if (controllers == ",,") {
      limit = std::min(limit, LimitOfGroups(top, group, "memory.max"));
    } else if (controllers.find(",memory,") != std::string::npos) {
      limit = std::min(limit, LimitOfGroups(top + "/memory", group, "memory.limit_in_bytes"));
    }
  }
  return limit;
}

uint64_t MachineMemory() {
  const long pages = sysconf(_SC_PHYS_PAGES), page = sysconf(_SC_PAGESIZE);
  return pages > 0 && page > 0 ? static_cast<uint64_t>(pages) * static_cast<uint64_t>(page)
                               : kNoLimit;
}

std::string Megabytes(uint64_t bytes) {
  return std::to_string(bytes >> 20) + " MiB";
}

}  // namespace

uint64_t MemoryLimit(const std::string& root) {
  return std::min({MachineMemory(), ControlGroupLimit(root), ResourceLimit(RLIMIT_AS),
                   ResourceLimit(RLIMIT_DATA)});
}

void CheckMemory(uint64_t bytes, const std::string& name) {
  const uint64_t limit = MemoryLimit();
  if (bytes <= limit / kMemoryParts) return;
  throw Failure(ExitCode::Unreadable, name + ": needs about " + Megabytes(bytes) +
                                          " of memory, more than half of the " + Megabytes(limit) +
                                          " available; --force tries it all the same");
}

double PeakMemory() {
  const std::string peak = "VmHWM:";  // in KiB
  // Of this program alone: what getrusage tells counts whoever became it.
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.compare(0, peak.size(), peak) == 0) return std::stod(line.substr(peak.size())) / 1024;
  }
  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024;
}

void RethrowIfOutOfMemory() {
  try {
    throw;
  } catch (const std::runtime_error& error) {
    // A thread's stack did not fit; there is no code that says so.
    if (std::strncmp(error.what(), "pthread_create", 14) == 0) throw std::bad_alloc();
  } catch (...) {
    // Something else.
  }
}

}  // namespace lumora::tools
