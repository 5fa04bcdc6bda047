// SPDX-License-Identifier: Apache-2.0
// A thread that does what it is told, one thing after another.
#ifndef LUMORA_PIPELINE_SUPPORT_SERIAL_THREAD_H_
#define LUMORA_PIPELINE_SUPPORT_SERIAL_THREAD_H_

#include <condition_variable>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>
#include <type_traits>
#include <utility>

namespace lumora {

/// Runs calls on one thread of its own, in the order in which they arrive. `Run` may be called from
/// any thread but that one, and allocates nothing. The destructor waits for all calls that have
/// arrived.
class SerialThread {
 public:
  SerialThread();
  ~SerialThread();
  SerialThread(const SerialThread&) = delete;
  SerialThread& operator=(const SerialThread&) = delete;

  /// Calls `call` on the thread and waits for its result; what it throws is thrown here.
  template <typename Call>
  auto Run(Call&& call) -> decltype(call()) {
    using Result = decltype(call());
    if constexpr (std::is_void_v<Result>) {
      Serve(call);
    } else {
      std::optional<Result> result;
      const auto keep = [&] { result.emplace(call()); };
      Serve(keep);
      return *std::move(result);
    }
  }

 private:
  /// A call that waits or is being served, on the stack of its caller.
  struct Job {
    void (*run)(const void* work);
    const void* work;
    std::exception_ptr thrown;
    Job* next = nullptr;  // guarded by mutex_
    bool served = false;  // guarded by mutex_; once it is set the thread does not touch the job
  };

  template <typename Work>
  void Serve(Work& work) {
    // Work may be const, and its call operator need not be: the cast gives back what there was.
    Job job{[](const void* at) { (*static_cast<Work*>(const_cast<void*>(at)))(); }, &work, {}};
    Serve(&job);
    if (job.thrown != nullptr) std::rethrow_exception(job.thrown);
  }

  void Serve(Job* job);
  void Work();

  std::mutex mutex_;
  std::condition_variable arrived_;
  std::condition_variable served_;
  Job* first_ = nullptr;  // guarded by mutex_, as the two below; the jobs that wait
  Job* last_ = nullptr;
  bool ending_ = false;
  std::thread thread_;  // last: it starts when the rest is there
};

}  // namespace lumora

#endif  // LUMORA_PIPELINE_SUPPORT_SERIAL_THREAD_H_
