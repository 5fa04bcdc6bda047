// SPDX-License-Identifier: Apache-2.0
#include "engine/engine_thread.h"

#include <utility>

namespace lumora::test {

EngineThread::EngineThread() : thread_([this] { loop(); }) {}

EngineThread::~EngineThread() {
  destroy();
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    ending_ = true;
  }
  changed_.notify_all();
  thread_.join();
}

void EngineThread::start(Task task) {
  std::unique_lock<std::mutex> lock(mutex_);
  changed_.wait(lock, [this] { return !task_; });
  task_ = std::move(task);
  changed_.notify_all();
}

void EngineThread::wait() {
  std::unique_lock<std::mutex> lock(mutex_);
  changed_.wait(lock, [this] { return !task_; });
}

void EngineThread::run(Task task) {
  start(std::move(task));
  wait();
}

void EngineThread::destroy() {
  run([](std::unique_ptr<GPUBeautyFace>& engine) { engine.reset(); });
}

void EngineThread::loop() {
  std::unique_lock<std::mutex> lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return task_ || ending_; });
    if (!task_) return;
    lock.unlock();
    task_(engine_);
    lock.lock();
    task_ = nullptr;
    changed_.notify_all();
  }
}

}  // namespace lumora::test
