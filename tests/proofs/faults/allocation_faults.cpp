// SPDX-License-Identifier: Apache-2.0
// NOLINTBEGIN(bugprone-reserved-identifier): the linker's names.
#include "proofs/faults/allocation_faults.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstdarg>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

using lumora::test::Shortage;

std::atomic<bool> g_counting = false;
std::atomic<int> g_made = 0;
std::atomic<int> g_refused = 0;
lumora::test::Refusal g_refusal;

// The C++ library's forms call one another.
thread_local bool t_inside = false;

bool Refused() {
  if (!g_counting || t_inside) return false;
  const int number = ++g_made;
  const int first = g_refusal.number;
  const bool refused =
      first > 0 && (g_refusal.shortage == Shortage::Once ? number == first : number >= first);
  if (refused) ++g_refused;
  return refused;
}

template <typename... Arguments>
void* Make(void* (*form)(Arguments...), Arguments... arguments) {
  const bool outermost = !t_inside;
  t_inside = true;
  void* const memory = form(arguments...);
  if (outermost) t_inside = false;
  return memory;
}

template <typename... Arguments>
void* MakeOrThrow(void* (*form)(Arguments...), Arguments... arguments) {
  if (Refused()) throw std::bad_alloc();
  return Make(form, arguments...);
}

template <typename... Arguments>
void* MakeOrNull(void* (*form)(Arguments...), Arguments... arguments) {
  return Refused() ? nullptr : Make(form, arguments...);
}

}  // namespace

extern "C" {

void* __real__Znwm(size_t size);
void* __real__Znam(size_t size);
void* __real__ZnwmSt11align_val_t(size_t size, std::align_val_t alignment);
void* __real__ZnamSt11align_val_t(size_t size, std::align_val_t alignment);

void* __wrap__Znwm(size_t size) {
  return MakeOrThrow(__real__Znwm, size);
}
void* __wrap__Znam(size_t size) {
  return MakeOrThrow(__real__Znam, size);
}
void* __wrap__ZnwmSt11align_val_t(size_t size, std::align_val_t alignment) {
  return MakeOrThrow(__real__ZnwmSt11align_val_t, size, alignment);
}
void* __wrap__ZnamSt11align_val_t(size_t size, std::align_val_t alignment) {
  return MakeOrThrow(__real__ZnamSt11align_val_t, size, alignment);
}
void* __wrap__ZnwmRKSt9nothrow_t(size_t size, const std::nothrow_t&) {
  return MakeOrNull(__real__Znwm, size);
}
void* __wrap__ZnamRKSt9nothrow_t(size_t size, const std::nothrow_t&) {
  return MakeOrNull(__real__Znam, size);
}
void* __wrap__ZnwmSt11align_val_tRKSt9nothrow_t(size_t size, std::align_val_t alignment,
                                                const std::nothrow_t&) {
  return MakeOrNull(__real__ZnwmSt11align_val_t, size, alignment);
}
void* __wrap__ZnamSt11align_val_tRKSt9nothrow_t(size_t size, std::align_val_t alignment,
                                                const std::nothrow_t&) {
  return MakeOrNull(__real__ZnamSt11align_val_t, size, alignment);
}

// In place of the platform's log.
int __android_log_print(int, const char*, const char*, ...) {
  return 0;
}
int __android_log_vprint(int, const char*, const char*, va_list) {
  return 0;
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier)

namespace lumora::test {
namespace {

// Seconds, at most, of what is done with one refusal. Who waits for a lock waits for ever.
constexpr unsigned kLongest = 120;

}  // namespace

std::ostream& operator<<(std::ostream& out, const Refusal& refusal) {
  return out << "request " << refusal.number
             << (refusal.shortage == Shortage::Once ? "" : " and all after it");
}

Requests WithRefusal(const Refusal& refusal, const std::function<void()>& work) {
  g_refusal = refusal;
  g_made = 0;
  g_refused = 0;
  Requests requests;
  const unsigned left = alarm(kLongest);
  g_counting = true;
  try {
    work();
  } catch (...) {
    requests.thrown = true;
  }
  g_counting = false;
  alarm(left);
  requests.made = g_made;
  requests.refused = g_refused;
  return requests;
}

void ForEachRefusal(int requests, const std::function<void(const Refusal&)>& check) {
  const bool all = std::getenv("LUMORA_TEST_EVERY_FAULT") != nullptr;
  for (const Shortage shortage : {Shortage::Once, Shortage::Lasting}) {
    // What lasts from one request on ends most calls as it does from the next one on.
    const int step = shortage == Shortage::Once || all || requests < 20 ? 1 : 16;
    for (int number = 1; number <= requests; number += step) {
      const Refusal refusal{number, shortage};
      SCOPED_TRACE(testing::Message() << refusal);
      alarm(kLongest);
      check(refusal);
    }
  }
  alarm(0);
}

}  // namespace lumora::test
