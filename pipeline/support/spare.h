// SPDX-License-Identifier: Apache-2.0
// Things that every call needs for a while, without asking for their memory each time.
#ifndef LUMORA_PIPELINE_SUPPORT_SPARE_H_
#define LUMORA_PIPELINE_SUPPORT_SPARE_H_

#include <cstddef>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace lumora {

/// Keeps things for the next calls: as many as were ever in use at once.
///
/// Thread-safety: any thread. A spare outlives its loans.
template <typename Thing>
class Spare {
 public:
  /// A thing in use, as whoever had it before has left it; given back at the end of the scope. A
  /// new one is made of `arguments`. Throws where memory is short.
  class Loan {
   public:
    template <typename... Arguments>
    explicit Loan(Spare& spare, const Arguments&... arguments) : spare_(spare) {
      {
        const std::lock_guard<std::mutex> lock(spare.mutex_);
        if (!spare.kept_.empty()) {
          thing_ = std::move(spare.kept_.back());
          spare.kept_.pop_back();
          return;
        }
      }
      thing_ = std::make_unique<Thing>(arguments...);
      // Giving things back must not ask for memory.
      const std::lock_guard<std::mutex> lock(spare.mutex_);
      spare.kept_.reserve(spare.made_ + 1);
      ++spare.made_;
    }
    ~Loan() {
      const std::lock_guard<std::mutex> lock(spare_.mutex_);
      spare_.kept_.push_back(std::move(thing_));
    }
    Loan(const Loan&) = delete;
    Loan& operator=(const Loan&) = delete;

    Thing& operator*() const { return *thing_; }

   private:
    Spare& spare_;
    std::unique_ptr<Thing> thing_;
  };

 private:
  std::mutex mutex_;
  std::vector<std::unique_ptr<Thing>> kept_;  // guarded by mutex_
  size_t made_ = 0;                           // guarded by mutex_; there is room for so many
};

}  // namespace lumora

#endif  // LUMORA_PIPELINE_SUPPORT_SPARE_H_
