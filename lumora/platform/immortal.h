// SPDX-License-Identifier: Apache-2.0
// Objects that outlive all others.
#ifndef LUMORA_PLATFORM_IMMORTAL_H_
#define LUMORA_PLATFORM_IMMORTAL_H_

#include <new>
#include <utility>

namespace lumora::platform {

/// Holds a T in place and never destroys it: what static objects may still ask at their end is a
/// function's static Immortal. Asks for no memory of its own.
template <typename T>
class Immortal {
 public:
  template <typename... Arguments>
  explicit Immortal(Arguments&&... arguments) {
    new (storage_) T(std::forward<Arguments>(arguments)...);
  }
  Immortal(const Immortal&) = delete;
  Immortal& operator=(const Immortal&) = delete;

  T& operator*() { return *std::launder(reinterpret_cast<T*>(storage_)); }

 private:
  alignas(T) unsigned char storage_[sizeof(T)];
};

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_IMMORTAL_H_
