// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/support/places.h"

#include <sys/stat.h>
#include <unistd.h>

#include <optional>
#include <tuple>

#include "tools/lumora/support/failure.h"

namespace lumora::tools {
namespace {

namespace fs = std::filesystem;

constexpr int kMostLinks = 40;  // as many as the system follows

/// What two paths to one file have in common: the file itself or, while there is none, its folder
/// and its name there.
using Identity = std::tuple<dev_t, ino_t, std::string>;

bool CanBeOverwritten(const struct stat& status) {
  return !S_ISCHR(status.st_mode) && !S_ISSOCK(status.st_mode);
}

std::optional<Identity> IdentityOf(const std::string& path, int standard_stream) {
  struct stat status = {};
  const bool is_stream = path == kStandardStream;
  if ((is_stream ? fstat(standard_stream, &status) : stat(path.c_str(), &status)) == 0) {
    if (!CanBeOverwritten(status)) return std::nullopt;
    return Identity{status.st_dev, status.st_ino, ""};
  }
  if (is_stream) return std::nullopt;  // it is closed
  const fs::path place = PlaceOf(path);
  const fs::path folder = place.has_parent_path() ? place.parent_path() : fs::path(".");
  if (stat(folder.c_str(), &status) != 0) return std::nullopt;  // nothing can be written there
  return Identity{status.st_dev, status.st_ino, place.filename().string()};
}

struct Known {
  std::string path;
  std::optional<Identity> identity;
  bool is_input;

  bool IsSameAs(const Known& result) const {
    if (!is_input && path == result.path) return true;
    return identity && identity == result.identity;
  }
};

Failure Clash(const Known& result, const Known& other) {
  const std::string which = result.path == other.path ? "" : " (" + other.path + ")";
  return {ExitCode::Usage, result.path +
                               (other.is_input ? ": a result cannot take the place of an input"
                                               : ": two results cannot have the same name") +
                               which};
}

}  // namespace

fs::path PlaceOf(const std::string& path) {
  fs::path place = path;
  std::error_code error;
  for (int links = 0; links < kMostLinks; ++links) {
    const fs::path target = fs::read_symlink(place, error);
    if (error) break;
    place = place.parent_path() / target;
  }
  return place;
}

void CheckPlacesDiffer(const std::vector<std::string>& inputs,
                       const std::vector<std::string>& results) {
  std::vector<Known> known;
  for (const std::string& path : inputs) {
    if (!path.empty()) known.push_back({path, IdentityOf(path, STDIN_FILENO), true});
  }
  for (const std::string& path : results) {
    if (path.empty()) continue;
    const Known result = {path, IdentityOf(path, STDOUT_FILENO), false};
    for (const Known& other : known) {
      if (other.IsSameAs(result)) throw Clash(result, other);
    }
    known.push_back(result);
  }
}

}  // namespace lumora::tools
