// SPDX-License-Identifier: Apache-2.0
// What the library, or a test of it, knows of the platform's liblog beyond printing.
#ifndef LUMORA_PLATFORM_LINUX_LIBLOG_H_
#define LUMORA_PLATFORM_LINUX_LIBLOG_H_

#include <cstddef>
#include <cstdint>

extern "C" {

// A line as liblog's loggers take it: up to release 29 beside its text, then with it.
struct __android_logger_data {
  size_t struct_size;
  int32_t buffer_id;
  int32_t priority;
  const char* tag;
  const char* file;
  uint32_t line;
};
struct __android_log_message {
  size_t struct_size;
  int32_t buffer_id;
  int32_t priority;
  const char* tag;
  const char* file;
  uint32_t line;
  const char* message;
};

// Whether `priority` is printed for `tag`.
int __android_log_is_loggable(int priority, const char* tag, int default_priority);

// The least priority of the process, below which __android_log_print drops every line; kLogUnset
// when nobody has set it.
int __android_log_get_minimum_priority(void);
int __android_log_set_minimum_priority(int priority);

// Hand a line to the process's logger whatever its priority; each liblog has one of the two.
__attribute__((weak)) void __android_log_write_logger_data(__android_logger_data* data,
                                                           const char* message);
__attribute__((weak)) void __android_log_write_log_message(__android_log_message* message);

// The process's logger, and the one that it starts with. In releases up to 29.
using LiblogLogger = void (*)(const __android_logger_data* data, const char* message);
void __android_log_set_logger(LiblogLogger logger);
void __android_log_stderr_logger(const __android_logger_data* data, const char* message);

}  // extern "C"

#endif  // LUMORA_PLATFORM_LINUX_LIBLOG_H_
