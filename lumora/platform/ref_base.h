// SPDX-License-Identifier: Apache-2.0
// Counted references for objects that several owners hold, such as graphic buffers.
//
// These are the library's own stand-ins for the platform classes of similar names. They live in
// namespace lumora::platform, so a process that also loads the platform's own classes has no clash.
#ifndef LUMORA_PLATFORM_REF_BASE_H_
#define LUMORA_PLATFORM_REF_BASE_H_

#include <atomic>
#include <cstddef>
#include <utility>

#include "lumora/export.h"

namespace lumora::platform {

/// Base of a reference-counted object. An object starts with no reference; the first sp<> that
/// holds it makes one, and the object deletes itself when the last reference goes.
/// Thread-safety: counting is atomic; nothing else is guarded.
class LUMORA_API RefBase {
 public:
  void incStrong() const { references_.fetch_add(1, std::memory_order_relaxed); }
  void decStrong() const {
    if (references_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
  }

  RefBase(const RefBase&) = delete;
  RefBase& operator=(const RefBase&) = delete;

 protected:
  RefBase() = default;
  virtual ~RefBase() = default;

 private:
  mutable std::atomic<int> references_{0};
};

/// Strong pointer to a RefBase object. One pointer wide.
template <typename T>
class sp {
 public:
  sp() = default;
  sp(std::nullptr_t) {}
  sp(T* object) : object_(object) { acquire(); }
  sp(const sp& other) : object_(other.object_) { acquire(); }
  sp(sp&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  ~sp() { clear(); }

  sp& operator=(sp other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }

  /// Drops the reference; the pointer is null afterwards.
  void clear() {
    if (T* object = std::exchange(object_, nullptr)) object->decStrong();
  }

  T* get() const { return object_; }
  T* operator->() const { return object_; }
  T& operator*() const { return *object_; }
  explicit operator bool() const { return object_ != nullptr; }

 private:
  void acquire() {
    if (object_ != nullptr) object_->incStrong();
  }

  T* object_ = nullptr;
};

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_REF_BASE_H_
