// SPDX-License-Identifier: Apache-2.0
// A thread with an engine of its own.
#ifndef LUMORA_TESTS_ENGINE_ENGINE_THREAD_H_
#define LUMORA_TESTS_ENGINE_ENGINE_THREAD_H_

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include "engine/engine_images.h"

namespace lumora::test {

/// Starts without an engine. Whatever is done with the engine is done on the thread.
class EngineThread {
 public:
  using Task = std::function<void(std::unique_ptr<GPUBeautyFace>& engine)>;

  EngineThread();
  /// Destroys the engine, if there is one, on its thread.
  ~EngineThread();
  EngineThread(const EngineThread&) = delete;
  EngineThread& operator=(const EngineThread&) = delete;

  /// Gives the thread something to do; it may be doing it when this returns.
  void start(Task task);
  /// Waits until the thread has done what it was given.
  void wait();
  /// start, then wait.
  void run(Task task);

  void destroy();

 private:
  void loop();

  std::mutex mutex_;
  std::condition_variable changed_;
  Task task_;
  bool ending_ = false;
  std::unique_ptr<GPUBeautyFace> engine_;
  std::thread thread_;
};

}  // namespace lumora::test

#endif  // LUMORA_TESTS_ENGINE_ENGINE_THREAD_H_
