// SPDX-License-Identifier: Apache-2.0
// What a program binary belongs to.
#ifndef LUMORA_PLATFORM_DRIVER_DIGEST_H_
#define LUMORA_PLATFORM_DRIVER_DIGEST_H_

#include "lumora/platform/byte_digest.h"

namespace lumora::platform {

/// Adds this library's version, and what the current context's driver calls itself.
void AddLibraryAndDriver(ByteDigest* digest);

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_DRIVER_DIGEST_H_
