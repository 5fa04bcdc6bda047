// SPDX-License-Identifier: Apache-2.0
// A tag of the platform log whose levels are asked once.
#ifndef LUMORA_PLATFORM_LOG_CHANNEL_H_
#define LUMORA_PLATFORM_LOG_CHANNEL_H_

#include "lumora/platform/log.h"

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

#endif  // LUMORA_PLATFORM_LOG_CHANNEL_H_
