// SPDX-License-Identifier: Apache-2.0
#include "pipeline/support/serial_thread.h"

namespace lumora {

SerialThread::SerialThread() : thread_([this] { Work(); }) {}

SerialThread::~SerialThread() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    ending_ = true;
  }
  arrived_.notify_one();
  thread_.join();
}

void SerialThread::Serve(Job* job) {
  std::unique_lock<std::mutex> lock(mutex_);
  (first_ == nullptr ? first_ : last_->next) = job;
  last_ = job;
  lock.unlock();
  // Without the lock, so that the thread does not wake up only to wait for it.
  arrived_.notify_one();
  lock.lock();
  served_.wait(lock, [job] { return job->served; });
}

void SerialThread::Work() {
  std::unique_lock<std::mutex> lock(mutex_);
  while (true) {
    arrived_.wait(lock, [this] { return ending_ || first_ != nullptr; });
    if (first_ == nullptr) return;
    Job* const job = std::exchange(first_, first_->next);
    lock.unlock();
    try {
      job->run(job->work);
    } catch (...) {
      job->thrown = std::current_exception();
    }
    lock.lock();
    job->served = true;
    lock.unlock();
    // Several callers may wait, and only one of them for this job.
    served_.notify_all();
    lock.lock();
  }
}

}  // namespace lumora
