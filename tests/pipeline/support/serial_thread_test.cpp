// SPDX-License-Identifier: Apache-2.0
// The thread that serves calls one after another.
#include "pipeline/support/serial_thread.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include "support/next_function.h"

namespace lumora::test {
namespace {

/// Tells when a thread begins to wait for a condition, and holds it back before that if wanted: a
/// caller has then left its job, and another one comes to wait first. The program defines the C
/// library's functions that conditions call.
struct CallersWait {
  std::atomic<bool> held_back = false;
  std::atomic<bool> may_wait = true;
  std::atomic<int> waits = 0;  // begun so far
  std::atomic<pthread_cond_t*> waits_for = nullptr;
};
thread_local CallersWait* t_wait = nullptr;

void Await(const std::atomic<bool>& flag) {
  while (!flag) std::this_thread::yield();
}
void AwaitWaiting(const CallersWait& caller, int times = 1) {
  while (caller.waits < times) std::this_thread::yield();
}

bool ComesToPass(const std::function<bool()>& what) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!what() && std::chrono::steady_clock::now() < end) std::this_thread::yield();
  return what();
}

TEST(SerialThread, RunsEverythingOnOneThreadThatIsNotTheCallers) {
  SerialThread thread;
  const auto first = thread.Run([] { return std::this_thread::get_id(); });
  const auto second = thread.Run([] { return std::this_thread::get_id(); });
  EXPECT_EQ(first, second);
  EXPECT_NE(first, std::this_thread::get_id());
}

TEST(SerialThread, ServesManyCallersOneAtATime) {
  SerialThread thread;
  int inside = 0;  // not atomic on purpose: a thread sanitizer sees any overlap
  int served = 0;
  std::atomic<int> most = 0;
  std::vector<std::thread> callers;
  for (int caller = 0; caller < 8; ++caller) {
    callers.emplace_back([&] {
      for (int i = 0; i < 200; ++i) {
        thread.Run([&] {
          ++inside;
          most = std::max(most.load(), inside);
          ++served;
          --inside;
        });
      }
    });
  }
  for (std::thread& caller : callers) caller.join();
  EXPECT_EQ(served, 1600);
  EXPECT_EQ(most, 1);
}

// Callers may come to wait in another order than they are served in: who is told first is then not
// the one that is done, and a caller that nobody tells waits for ever.
TEST(SerialThread, TellsEveryCallerThatItIsServed) {
  SerialThread thread;
  std::atomic<bool> busy = false;
  std::atomic<bool> open = false;
  std::atomic<int> served = 0;
  const auto call = [&](CallersWait& wait, const std::function<void()>& work) {
    return std::thread([&thread, &wait, &served, work] {
      t_wait = &wait;
      thread.Run(work);
      ++served;
    });
  };
  CallersWait waits[3];
  std::vector<std::thread> callers;
  callers.push_back(call(waits[0], [&] {
    busy = true;
    Await(open);
  }));
  Await(busy);
  AwaitWaiting(waits[0]);
  waits[1].may_wait = false;
  callers.push_back(call(waits[1], [] {}));
  Await(waits[1].held_back);
  // Served only when its caller was woken in vain.
  callers.push_back(call(waits[2], [&] { AwaitWaiting(waits[2], 2); }));
  AwaitWaiting(waits[2]);
  waits[1].may_wait = true;
  AwaitWaiting(waits[1]);
  open = true;
  EXPECT_TRUE(ComesToPass([&] { return served == 3; })) << served << " of 3 went on";
  while (served < 3) pthread_cond_broadcast(waits[0].waits_for);
  for (std::thread& caller : callers) caller.join();
}

TEST(SerialThread, PassesResultsAndExceptionsToTheCaller) {
  SerialThread thread;
  EXPECT_EQ(thread.Run([] { return 42; }), 42);
  EXPECT_EQ(*thread.Run([] { return std::make_unique<int>(7); }), 7);
  EXPECT_THROW(thread.Run([]() -> int { throw std::runtime_error("no"); }), std::runtime_error);
  EXPECT_EQ(thread.Run([] { return 1; }), 1);  // and goes on
}

}  // namespace
}  // namespace lumora::test

using lumora::test::t_wait;

#pragma GCC visibility push(default)
extern "C" {

int pthread_cond_signal(pthread_cond_t* condition) {
  const int result = LUMORA_NEXT(pthread_cond_signal)(condition);
  if (t_wait != nullptr) {
    t_wait->held_back = true;
    lumora::test::Await(t_wait->may_wait);
  }
  return result;
}

// With the mutex locked, which others find free only once this thread waits.
int pthread_cond_wait(pthread_cond_t* condition, pthread_mutex_t* mutex) {
  if (t_wait != nullptr) {
    t_wait->waits_for = condition;
    ++t_wait->waits;
  }
  return LUMORA_NEXT(pthread_cond_wait)(condition, mutex);
}

}  // extern "C"
#pragma GCC visibility pop
