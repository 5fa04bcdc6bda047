// SPDX-License-Identifier: Apache-2.0
// For files that define functions of libraries in a test program, and pass calls on.
#ifndef LUMORA_TESTS_SUPPORT_NEXT_FUNCTION_H_
#define LUMORA_TESTS_SUPPORT_NEXT_FUNCTION_H_

#include <dlfcn.h>

#include <cstdlib>

namespace lumora::test {

/// The function of this name that would have been called without the program's own.
template <typename Function>
Function NextFunction(const char* name) {
  void* const function = dlsym(RTLD_NEXT, name);
  if (function == nullptr) std::abort();
  return reinterpret_cast<Function>(function);
}

}  // namespace lumora::test

/// The next function of that name, looked up once.
#define LUMORA_NEXT(function)                                                                 \
  ([] {                                                                                       \
    static const auto looked_up = lumora::test::NextFunction<decltype(&function)>(#function); \
    return looked_up;                                                                         \
  }())

#endif  // LUMORA_TESTS_SUPPORT_NEXT_FUNCTION_H_
