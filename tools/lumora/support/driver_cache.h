// The shader cache that Mesa's drivers keep for themselves, beside ours.
#ifndef LUMORA_TOOLS_SUPPORT_DRIVER_CACHE_H_
#define LUMORA_TOOLS_SUPPORT_DRIVER_CACHE_H_

#include <filesystem>

namespace lumora::tools {

/// Whether Mesa has its folder below `caches`, the user's folder for caches, or can make it there.
/// Leaves nothing behind.
bool DriverCanCacheBelow(const std::filesystem::path& caches);

/// Switches Mesa's cache off for this process where there is no place for it. Mesa would do without
/// it as well, but say so on standard error for every context. Where the user names a folder for
/// this cache alone, that is the answer, and stays. To be called while there is one thread only.
void KeepDriverFromMissingItsCache();

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_SUPPORT_DRIVER_CACHE_H_
