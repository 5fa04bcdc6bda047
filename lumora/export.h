// SPDX-License-Identifier: Apache-2.0
// The export macros of libLumora: what carries neither is hidden, unless it is a member of an
// exported class.
#ifndef LUMORA_EXPORT_H_
#define LUMORA_EXPORT_H_

#define LUMORA_API __attribute__((visibility("default")))

// For members of exported classes that only the library itself uses.
#define LUMORA_LOCAL __attribute__((visibility("hidden")))

#endif  // LUMORA_EXPORT_H_
