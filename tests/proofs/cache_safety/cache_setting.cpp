// SPDX-License-Identifier: Apache-2.0
#include "proofs/cache_safety/cache_setting.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace lumora::test {
namespace {

bool WriteText(const char* path, const std::string& text) {
  const int file = open(path, O_WRONLY);
  if (file < 0) return false;
  const bool written = write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  close(file);
  return written;
}

/// A user of one's own who may mount: what is left to those who are not root.
bool BecomeRootOfOwnNamespace() {
  const std::string user = std::to_string(getuid()), group = std::to_string(getgid());
  return unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 && WriteText("/proc/self/setgroups", "deny") &&
         WriteText("/proc/self/uid_map", "0 " + user + " 1") &&
         WriteText("/proc/self/gid_map", "0 " + group + " 1");
}

}  // namespace

int Repeats(int brief, int thorough) {
  const char* const asked = std::getenv("LUMORA_SOAK_CYCLES");
  const double share = asked != nullptr ? std::atof(asked) / 10000 : 0;
  return std::clamp(static_cast<int>(share * thorough), brief, thorough);
}

Listing ListingOf(const std::string& directory) {
  Listing listing;
  for (const auto& entry : std::filesystem::directory_iterator(directory)) {
    const std::string name = entry.path().filename().string();
    const std::string extension = entry.path().extension().string();
    const bool ours = name.rfind("prog_", 0) == 0;
    (ours && extension == ".bin"    ? listing.programs
     : ours && extension == ".seal" ? listing.seals
                                    : listing.others)
        .push_back(name);
  }
  std::sort(listing.programs.begin(), listing.programs.end());
  std::sort(listing.seals.begin(), listing.seals.end());
  std::sort(listing.others.begin(), listing.others.end());
  return listing;
}

void RemoveProgram(const std::string& path) {
  std::filesystem::remove(path);
  std::filesystem::remove(path + ".seal");
}

bool UnshareMounts() {
  if (unshare(CLONE_NEWNS) != 0 && !BecomeRootOfOwnNamespace()) return false;
  return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

bool MountSmallDisk(const std::string& directory, int pages) {
  const std::string size = "size=" + std::to_string(pages * sysconf(_SC_PAGESIZE));
  return UnshareMounts() &&
         mount("tmpfs", directory.c_str(), "tmpfs", 0, (size + ",mode=700").c_str()) == 0;
}

bool MountReadOnly(const std::string& directory) {
  const char* const place = directory.c_str();
  return UnshareMounts() && mount(place, place, nullptr, MS_BIND, nullptr) == 0 &&
         mount(nullptr, place, nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) == 0;
}

}  // namespace lumora::test
