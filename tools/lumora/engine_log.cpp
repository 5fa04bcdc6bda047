// SPDX-License-Identifier: Apache-2.0
// The engine's log, as the command shows it: on standard error, and only when LUMORA_LOG (debug,
// info or error) asks for it. What matters to the user comes as the pipeline's own sentence; the
// engine's errors include such harmless ones as a program cache that is still empty. The library
// calls these two functions through the dynamic linker, which takes a program's own definitions
// before those of the platform's log library.
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

int LeastPriority() {
  constexpr int kDebug = 3, kInfo = 4, kError = 6, kSilent = 8;
  const char* const text = std::getenv("LUMORA_LOG");
  const std::string_view choice = text != nullptr ? text : "";
  if (choice == "debug") return kDebug;
  if (choice == "info") return kInfo;
  return choice == "error" ? kError : kSilent;
}

}  // namespace

extern "C" {

__attribute__((visibility("default"), format(printf, 3, 0))) int __android_log_vprint(
    int priority, const char* tag, const char* format, va_list arguments) {
  if (priority < LeastPriority()) return 0;
  char text[1024];
  // The caller started the list; the analyzer loses that on the way into this function.
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
  std::vsnprintf(text, sizeof(text), format, arguments);
  return std::fprintf(stderr, "%s: %s\n", tag != nullptr ? tag : "engine", text);
}

__attribute__((visibility("default"), format(printf, 3, 4))) int __android_log_print(
    int priority, const char* tag, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int printed = __android_log_vprint(priority, tag, format, arguments);
  va_end(arguments);
  return printed;
}

}  // extern "C"
