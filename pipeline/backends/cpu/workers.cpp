// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/cpu/workers.h"

#include <oneapi/tbb/info.h>
#include <oneapi/tbb/parallel_for.h>
#include <oneapi/tbb/task_arena.h>

#include <algorithm>
#include <atomic>

namespace lumora::cpu {

struct Workers::Arena {
  // The pool has no more threads than the machine and warns who asks for more.
  explicit Arena(int threads) : tasks(std::min(threads, tbb::info::default_concurrency())) {}
  tbb::task_arena tasks;
};

Workers::Workers(int threads) : threads_(threads) {
  if (threads > 1) arena_ = std::make_unique<Arena>(threads);
}

Workers::~Workers() = default;

void Workers::RunParts(int count, const Task& task) {
  // Enough parts for threads that are late, few enough to cost nothing.
  const int part = std::max(1, count / (threads_ * 8));
  std::atomic<int> next{0};
  const auto take_parts = [&](int worker) {
    for (int begin = next.fetch_add(part); begin < count; begin = next.fetch_add(part)) {
      for (int number = begin; number < std::min(begin + part, count); ++number) {
        task.call(task.work, number, worker);
      }
    }
  };
  if (arena_ == nullptr || count <= part) return take_parts(0);
  try {
    arena_->tasks.execute(
        [&] { tbb::parallel_for(0, threads_, take_parts, tbb::simple_partitioner()); });
  } catch (...) {
    take_parts(0);  // the pool is short of memory: what nobody has taken is left to this thread
  }
}

}  // namespace lumora::cpu
