// SPDX-License-Identifier: Apache-2.0
// Threads that share rows: every row once, no worker twice at a time.
#include "pipeline/backends/cpu/workers.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace lumora::test {
namespace {

TEST(Workers, DoEveryNumberOnceAndOneAtATimeEach) {
  for (const int threads : {1, 2, 5}) {
    cpu::Workers workers(threads);
    EXPECT_EQ(workers.threads(), threads);
    for (const int count : {0, 1, 7, 1000}) {
      std::vector<std::atomic<int>> done(static_cast<size_t>(count));
      std::vector<std::atomic<bool>> busy(static_cast<size_t>(threads));
      workers.Run(count, [&](int number, int worker) {
        EXPECT_FALSE(busy[static_cast<size_t>(worker)].exchange(true));
        ++done[static_cast<size_t>(number)];
        busy[static_cast<size_t>(worker)] = false;
      });
      for (const auto& times : done) ASSERT_EQ(1, times) << threads << " of " << count;
    }
  }
}

TEST(Workers, OfManyCallersKeepApart) {
  std::vector<std::thread> callers;
  std::atomic<int> sum{0};
  for (int i = 0; i < 4; ++i) {
    callers.emplace_back([&sum] {
      cpu::Workers workers(3);
      for (int round = 0; round < 20; ++round) {
        workers.Run(100, [&sum](int number, int) { sum += number; });
      }
    });
  }
  for (std::thread& caller : callers) caller.join();
  EXPECT_EQ(4 * 20 * 4950, sum);
}

}  // namespace
}  // namespace lumora::test
