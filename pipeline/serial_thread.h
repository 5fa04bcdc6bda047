// A thread that does what it is told, one thing after another.
#ifndef LUMORA_PIPELINE_SERIAL_THREAD_H_
#define LUMORA_PIPELINE_SERIAL_THREAD_H_

#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

namespace lumora {

/// Runs calls on one thread of its own, in the order in which they arrive. `Run` may be called from
/// any thread but that one. The destructor waits for all calls that have arrived.
class SerialThread {
 public:
  SerialThread();
  ~SerialThread();
  SerialThread(const SerialThread&) = delete;
  SerialThread& operator=(const SerialThread&) = delete;

  /// Calls `call` on the thread and waits for its result; what it throws is thrown here.
  template <typename Call>
  auto Run(Call&& call) -> decltype(call()) {
    // Shared, because the thread may still be leaving the task when the result is already here.
    const auto task =
        std::make_shared<std::packaged_task<decltype(call())()>>(std::forward<Call>(call));
    auto result = task->get_future();
    Push([task] { (*task)(); });
    return result.get();
  }

 private:
  void Push(std::function<void()> job);
  void Work();

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> jobs_;  // guarded by mutex_
  bool ending_ = false;                     // guarded by mutex_
  std::thread thread_;                      // last: it starts when the rest is there
};

}  // namespace lumora

#endif  // LUMORA_PIPELINE_SERIAL_THREAD_H_
