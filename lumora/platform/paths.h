// Places that differ between the platform bodies.
#ifndef LUMORA_PLATFORM_PATHS_H_
#define LUMORA_PLATFORM_PATHS_H_

#include <string>

namespace lumora::platform {

/// The cache directory where neither the application nor the environment names one; empty where the
/// platform knows no such place.
std::string DefaultCacheDirectory();

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_PATHS_H_
