#include "lumora/platform/paths.h"

#include <sys/stat.h>

#include <cstdlib>

#include "lumora/platform/settings.h"

namespace lumora::platform {

std::string DefaultCacheDirectory() {
  // A relative XDG_CACHE_HOME counts as unset, as its definition says.
  const char* const cache_home = std::getenv("XDG_CACHE_HOME");
  if (cache_home != nullptr && cache_home[0] == '/') return std::string(cache_home) + "/lumora";
  const char* const home = std::getenv("HOME");
  if (home != nullptr && home[0] != '\0') return std::string(home) + "/.cache/lumora";
  return {};
}

void MakeCacheDirectory() {
  const std::string directory = CacheDirectory();
  for (size_t end = directory.find('/', 1); end != std::string::npos;
       end = directory.find('/', end + 1)) {
    mkdir(directory.substr(0, end).c_str(), 0700);
  }
  if (!directory.empty()) mkdir(directory.c_str(), 0700);
}

}  // namespace lumora::platform
