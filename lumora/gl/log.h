// SPDX-License-Identifier: Apache-2.0
// Logging for the library's own sources.
//
// A source file declares its tag once, at the top, and every log site is a priority and the exact
// text:
//
//   LUMORA_LOG_TAG("Lumora");
//   ...
//   LOGI("FaceProcess++");
//
// The tag's level mask is one byte a file. It starts with bit 7 set ("not asked yet"); the first
// log site asks the platform and keeps the answer. Threads may ask at once and get the same answer.
#ifndef LUMORA_GL_LOG_H_
#define LUMORA_GL_LOG_H_

#include "lumora/platform/log.h"

#define LUMORA_LOG_TAG(tag_text)                \
  namespace {                                   \
  ::lumora::LogChannel g_log_channel{tag_text}; \
  }                                             \
  static_assert(true, "")

#define LUMORA_LOG(priority, ...)                                                       \
  (g_log_channel.Enables(priority)                                                      \
       ? static_cast<void>(::lumora::platform::PrinterFor(priority, g_log_channel.tag)( \
             priority, g_log_channel.tag, __VA_ARGS__))                                 \
       : static_cast<void>(0))

#define LOGD(...) LUMORA_LOG(::lumora::kLogDebug, __VA_ARGS__)
#define LOGI(...) LUMORA_LOG(::lumora::kLogInfo, __VA_ARGS__)
#define LOGE(...) LUMORA_LOG(::lumora::kLogError, __VA_ARGS__)

#endif  // LUMORA_GL_LOG_H_
