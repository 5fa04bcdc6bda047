#include <cstdlib>
#include <string_view>

#include "lumora/platform/log.h"

// Provided by the platform's liblog: whether `priority` is printed for `tag`, and the least
// priority of the process (kUnset when nobody has set it), below which liblog drops every line.
extern "C" {
int __android_log_is_loggable(int priority, const char* tag, int default_priority);
int __android_log_get_minimum_priority(void);
int __android_log_set_minimum_priority(int priority);
}

namespace {

constexpr int kUnset = 1;
constexpr int kVerbose = 2;
constexpr int kDebug = 3;
constexpr int kInfo = 4;
constexpr int kError = 6;
constexpr int kFatal = 7;

// The least priority to print, or kUnset to ask liblog for each one.
int LeastPriority() {
  const char* const text = std::getenv("LUMORA_LOG");
  const std::string_view choice = text != nullptr ? text : "";
  if (choice == "debug") return kDebug;
  if (choice == "info") return kInfo;
  if (choice == "error") return kError;
  // Off a device liblog disregards the default that it is given and lets INFO through.
  return __android_log_get_minimum_priority() == kUnset ? kError : kUnset;
}

}  // namespace

// Weak, so that a host program's own definition replaces it.
extern "C" __attribute__((weak)) unsigned char __korvolog_init_mask(const char* tag, int,
                                                                    unsigned char* mask) {
  const int least = LeastPriority();
  // The lines that ask no mask follow too, and a lower priority than liblog's own gets through.
  if (least != kUnset) __android_log_set_minimum_priority(least);
  unsigned int levels = 0;
  for (int priority = kVerbose; priority <= kFatal; ++priority) {
    const bool enabled =
        least != kUnset ? priority >= least : __android_log_is_loggable(priority, tag, kError) != 0;
    if (enabled) levels |= 1u << (priority - kVerbose);
  }
  const auto answer = static_cast<unsigned char>(levels);
  __atomic_store_n(mask, answer, __ATOMIC_RELAXED);
  return answer;
}
