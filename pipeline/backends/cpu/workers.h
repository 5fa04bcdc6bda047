// SPDX-License-Identifier: Apache-2.0
// The threads that share the rows of one frame.
#ifndef LUMORA_PIPELINE_BACKENDS_CPU_WORKERS_H_
#define LUMORA_PIPELINE_BACKENDS_CPU_WORKERS_H_

#include <memory>

namespace lumora::cpu {

/// Calls a function for a row of numbers, on the calling thread and, where there are to be more, on
/// threads of the process's pool.
///
/// Thread-safety: one call at a time.
class Workers {
 public:
  /// `threads` is at least 1, the calling thread among them.
  explicit Workers(int threads);
  ~Workers();
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;

  int threads() const { return threads_; }

  /// Calls `work(number, worker)` once for each number below `count`, in any order; `worker` is
  /// below threads(), and the calls of one worker come one after another. Does so whatever the
  /// pool's state: without its threads the calling one does everything.
  template <typename Work>
  void Run(int count, const Work& work) {
    RunParts(count, {&work, [](const void* self, int number, int worker) {
                       (*static_cast<const Work*>(self))(number, worker);
                     }});
  }

 private:
  struct Task {
    const void* work;
    void (*call)(const void* work, int number, int worker);
  };
  struct Arena;

  void RunParts(int count, const Task& task);

  int threads_;
  std::unique_ptr<Arena> arena_;  // with one thread none
};

}  // namespace lumora::cpu

#endif  // LUMORA_PIPELINE_BACKENDS_CPU_WORKERS_H_
