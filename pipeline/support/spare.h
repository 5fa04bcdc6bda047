// SPDX-License-Identifier: Apache-2.0
// Things that every call needs for a while, without asking for their memory each time.
#ifndef LUMORA_PIPELINE_SUPPORT_SPARE_H_
#define LUMORA_PIPELINE_SUPPORT_SPARE_H_

#include <memory>
#include <mutex>
#include <utility>

namespace lumora {

/// Keeps one thing for the next call. Calls on several threads at once get one each, of which one
/// is kept.
///
/// Thread-safety: any thread. A spare outlives its loans.
template <typename Thing>
class Spare {
 public:
  /// A thing in use, as whoever had it before has left it; given back at the end of the scope.
  /// Throws where memory is short.
  class Loan {
   public:
    explicit Loan(Spare& spare) : spare_(spare) {
      {
        const std::lock_guard<std::mutex> lock(spare.mutex_);
        thing_ = std::move(spare.kept_);
      }
      if (thing_ == nullptr) thing_ = std::make_unique<Thing>();
    }
    ~Loan() {
      const std::lock_guard<std::mutex> lock(spare_.mutex_);
      spare_.kept_.swap(thing_);
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
  std::unique_ptr<Thing> kept_;  // guarded by mutex_
};

}  // namespace lumora

#endif  // LUMORA_PIPELINE_SUPPORT_SPARE_H_
