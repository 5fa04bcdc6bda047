// The thread that serves calls one after another.
#include "pipeline/serial_thread.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

namespace lumora::test {
namespace {

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

TEST(SerialThread, PassesResultsAndExceptionsToTheCaller) {
  SerialThread thread;
  EXPECT_EQ(thread.Run([] { return 42; }), 42);
  EXPECT_EQ(*thread.Run([] { return std::make_unique<int>(7); }), 7);
  EXPECT_THROW(thread.Run([]() -> int { throw std::runtime_error("no"); }), std::runtime_error);
  EXPECT_EQ(thread.Run([] { return 1; }), 1);  // and goes on
}

}  // namespace
}  // namespace lumora::test
