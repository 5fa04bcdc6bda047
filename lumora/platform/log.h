// SPDX-License-Identifier: Apache-2.0
// The platform log and its level masks.
#ifndef LUMORA_PLATFORM_LOG_H_
#define LUMORA_PLATFORM_LOG_H_

#include <cstdarg>

#include "lumora/export.h"

namespace lumora {

/// Priorities of lines, as the platform log numbers them. kLogUnset is no line's.
enum LogPriority : int {
  kLogUnset = 1,
  kLogVerbose = 2,
  kLogDebug = 3,
  kLogInfo = 4,
  kLogError = 6,
  kLogFatal = 7,
};

/// The bit of a level mask that lets lines of `priority` through.
constexpr unsigned LevelBit(int priority) {
  return 1u << (priority - kLogVerbose);
}

}  // namespace lumora

extern "C" {

// Provided by the platform's liblog.
int __android_log_print(int priority, const char* tag, const char* format, ...)
    __attribute__((format(printf, 3, 4)));
int __android_log_vprint(int priority, const char* tag, const char* format, va_list arguments)
    __attribute__((format(printf, 3, 0)));

/// The level mask of a tag (which may be null): bit p - 2 enables priority p, bit 7 is clear.
/// Stores the mask in `*mask`, which other threads may be reading, and returns it. `unused` is
/// always -1. On Linux the levels come from LUMORA_LOG (debug, info or error), else from the
/// platform log's own convention for the tag with ERROR as the default. A host program may define
/// its own in place of this one.
LUMORA_API unsigned char __korvolog_init_mask(const char* tag, int unused, unsigned char* mask);

}  // extern "C"

namespace lumora {

/// A tag and its level mask.
struct LogChannel {
  const char* tag;  ///< null is a tag of its own
  unsigned char mask = 0x80;

  /// Whether `priority` is to be printed; asks the platform while the mask is unset.
  bool Enables(LogPriority priority) {
    unsigned char levels = __atomic_load_n(&mask, __ATOMIC_RELAXED);
    if ((levels & 0x80) != 0) levels = __korvolog_init_mask(tag, -1, &mask);
    return (levels & LevelBit(priority)) != 0;
  }
};

}  // namespace lumora

namespace lumora::platform {

/// A function in the place of __android_log_print.
// NOLINTNEXTLINE(modernize-use-using): compilers take the attribute here alone.
typedef int (*LogPrinter)(int priority, const char* tag, const char* format, ...)
    __attribute__((format(printf, 3, 4)));

/// What prints a line that its mask lets through: __android_log_print. Linux: where that is the
/// platform log's own and would drop a line that LUMORA_LOG asks for, one that does not drop it;
/// the platform log's least priority belongs to the host program and is never set.
LogPrinter PrinterFor(int priority, const char* tag);

/// __android_log_vprint, for lines that ask for no mask. Linux: where that is the platform log's
/// own, lines that LUMORA_LOG leaves out go nowhere, and the answer is 0.
int PrintUnmasked(int priority, const char* tag, const char* format, va_list arguments)
    __attribute__((format(printf, 3, 0)));

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_LOG_H_
