// SPDX-License-Identifier: Apache-2.0
// Properties of the running system.
#ifndef LUMORA_PLATFORM_PROPERTY_H_
#define LUMORA_PLATFORM_PROPERTY_H_

#include "lumora/export.h"

extern "C" {

/// The system property `name`, with Bionic's contract: copies at most 91 bytes and a terminator to
/// `value`, returns the length; an absent property gives 0 and an empty value. On Linux the value
/// is the environment variable LUMORA_PROP_<name, dots as underscores>, else the line "name=value"
/// of the file that LUMORA_PROP_FILE names. A host program may define its own in place of this one.
LUMORA_API int __system_property_get(const char* name, char* value);

}  // extern "C"

namespace lumora::platform {

/// The longest property value, terminator included.
constexpr int kPropertyValueMax = 92;

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_PROPERTY_H_
