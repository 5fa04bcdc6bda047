// SPDX-License-Identifier: Apache-2.0
// The platform log of fuzz targets. Every line is formatted, so that its arguments are read, and
// dropped. LUMORA_FUZZ_LOG=1 prints them, for looking into a finding.
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

extern "C" {

__attribute__((visibility("default"), format(printf, 3, 0))) int __android_log_vprint(
    int /*priority*/, const char* /*tag*/, const char* format, va_list arguments) {
  static const bool printed = std::getenv("LUMORA_FUZZ_LOG") != nullptr;
  char line[1024];
  const int length = std::vsnprintf(line, sizeof(line), format, arguments);
  if (printed) std::fprintf(stderr, "%s\n", line);
  return length;
}

__attribute__((visibility("default"), format(printf, 3, 4))) int __android_log_print(
    int priority, const char* tag, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int length = __android_log_vprint(priority, tag, format, arguments);
  va_end(arguments);
  return length;
}

__attribute__((visibility("default"))) unsigned char __korvolog_init_mask(const char* /*tag*/,
                                                                          int /*unused*/,
                                                                          unsigned char* mask) {
  *mask = 0x7F;  // every level
  return *mask;
}

}  // extern "C"
