#include "pipeline/serial_thread.h"

namespace lumora {

SerialThread::SerialThread() : thread_([this] { Work(); }) {}

SerialThread::~SerialThread() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    ending_ = true;
  }
  changed_.notify_one();
  thread_.join();
}

void SerialThread::Push(std::function<void()> job) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    jobs_.push_back(std::move(job));
  }
  changed_.notify_one();
}

void SerialThread::Work() {
  std::unique_lock<std::mutex> lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return ending_ || !jobs_.empty(); });
    if (jobs_.empty()) return;
    const std::function<void()> job = std::move(jobs_.front());
    jobs_.pop_front();
    lock.unlock();
    job();
    lock.lock();
  }
}

}  // namespace lumora
