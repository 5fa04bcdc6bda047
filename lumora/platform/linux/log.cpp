// SPDX-License-Identifier: Apache-2.0
// What of the library's log is printed: LUMORA_LOG decides for the library's lines alone, so that
// those of the host program, which share the platform's liblog, stay as they are.
#include "lumora/platform/log.h"

#include <dlfcn.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "lumora/platform/linux/liblog.h"

namespace lumora::platform {
namespace {

// What LUMORA_LOG asks for, or kLogUnset.
int ChosenPriority() {
  const char* const text = std::getenv("LUMORA_LOG");
  const std::string_view choice = text != nullptr ? text : "";
  if (choice == "debug") return kLogDebug;
  if (choice == "info") return kLogInfo;
  return choice == "error" ? kLogError : kLogUnset;
}

// The least priority to print, or kLogUnset to ask liblog for each one.
int LeastPriority() {
  const int chosen = ChosenPriority();
  if (chosen != kLogUnset) return chosen;
  // Off a device liblog disregards the default that it is given and lets INFO through.
  return __android_log_get_minimum_priority() == kLogUnset ? kLogError : kLogUnset;
}

bool Prints(int least, int priority, const char* tag) {
  return least != kLogUnset ? priority >= least
                            : __android_log_is_loggable(priority, tag, kLogError) != 0;
}

// Whether a printing function is liblog's own and not the host program's.
template <typename Function>
bool IsLiblogs(Function* function) {
  Dl_info own{};
  Dl_info liblog{};
  return dladdr(reinterpret_cast<void*>(function), &own) != 0 &&
         dladdr(reinterpret_cast<void*>(&__android_log_is_loggable), &liblog) != 0 &&
         own.dli_fbase == liblog.dli_fbase;
}

bool LiblogPrints() {
  static const bool own = IsLiblogs(&__android_log_print);
  return own;
}

bool LiblogPrintsLists() {
  static const bool own = IsLiblogs(&__android_log_vprint);
  return own;
}

// Whether liblog's own functions would drop a line that LUMORA_LOG asks for.
bool LiblogDrops(int priority, const char* tag) {
  return ChosenPriority() != kLogUnset &&
         __android_log_is_loggable(priority, tag, kLogVerbose) == 0;
}

// What liblog's own functions do with a line that they do not drop.
__attribute__((format(printf, 3, 0))) int PrintListAnyPriority(int priority, const char* tag,
                                                               const char* format,
                                                               va_list arguments) {
  char text[1024];  // as long as liblog's longest
  // Both callers have started the list; the analyzer loses that on the way into this function.
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
  std::vsnprintf(text, sizeof(text), format, arguments);
  constexpr int kMainBuffer = 0;
  if (__android_log_write_log_message != nullptr) {
    __android_log_message line = {
        sizeof(__android_log_message), kMainBuffer, priority, tag, nullptr, 0, text};
    __android_log_write_log_message(&line);
  } else if (__android_log_write_logger_data != nullptr) {
    __android_logger_data line = {
        sizeof(__android_logger_data), kMainBuffer, priority, tag, nullptr, 0};
    __android_log_write_logger_data(&line, text);
  }
  return 1;
}

__attribute__((format(printf, 3, 4))) int PrintAnyPriority(int priority, const char* tag,
                                                           const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int printed = PrintListAnyPriority(priority, tag, format, arguments);
  va_end(arguments);
  return printed;
}

}  // namespace

LogPrinter PrinterFor(int priority, const char* tag) {
  return LiblogPrints() && LiblogDrops(priority, tag) ? &PrintAnyPriority : &__android_log_print;
}

int PrintUnmasked(int priority, const char* tag, const char* format, va_list arguments) {
  if (LiblogPrintsLists()) {
    if (!Prints(LeastPriority(), priority, tag)) return 0;
    if (LiblogDrops(priority, tag)) return PrintListAnyPriority(priority, tag, format, arguments);
  }
  return __android_log_vprint(priority, tag, format, arguments);
}

}  // namespace lumora::platform

// Weak, so that a host program's own definition replaces it.
extern "C" __attribute__((weak)) unsigned char __korvolog_init_mask(const char* tag, int,
                                                                    unsigned char* mask) {
  using namespace lumora::platform;
  const int least = LeastPriority();
  unsigned int levels = 0;
  for (int priority = lumora::kLogVerbose; priority <= lumora::kLogFatal; ++priority) {
    if (Prints(least, priority, tag)) levels |= lumora::LevelBit(priority);
  }
  const auto answer = static_cast<unsigned char>(levels);
  __atomic_store_n(mask, answer, __ATOMIC_RELAXED);
  return answer;
}
