// SPDX-License-Identifier: Apache-2.0
// The shader cache that Mesa's drivers keep for themselves, beside ours.
#ifndef LUMORA_TOOLS_SUPPORT_DRIVER_CACHE_H_
#define LUMORA_TOOLS_SUPPORT_DRIVER_CACHE_H_

#include <filesystem>

#include "lumora/pipeline/device.h"

namespace lumora::tools {

/// Whether a pipeline that is made for `device` may bring Mesa's drivers in: they work through the
/// nodes in /dev/dri, and without those only who asks for gl gets one, a software renderer.
bool MayStartMesa(Device device);

/// Whether Mesa has its folder below `caches`, the user's folder for caches, or can make it there.
/// Leaves nothing behind.
bool DriverCanCacheBelow(const std::filesystem::path& caches);

/// Switches Mesa's cache off for this process where there is no place for it. Mesa would do so too,
/// but complain on standard error about every context. A folder that the user names for this cache
/// alone is left to Mesa. Call it while there is one thread only.
void KeepDriverFromMissingItsCache();

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_SUPPORT_DRIVER_CACHE_H_
