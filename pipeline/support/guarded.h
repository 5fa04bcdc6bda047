// SPDX-License-Identifier: Apache-2.0
// Keeping exceptions inside the library.
#ifndef LUMORA_PIPELINE_SUPPORT_GUARDED_H_
#define LUMORA_PIPELINE_SUPPORT_GUARDED_H_

#include <exception>
#include <new>

#include "pipeline/support/failure.h"

namespace lumora {

/// The failure of work that has run out of memory: so short a text asks for none.
inline Status OutOfMemory() noexcept {
  return {StatusCode::EngineFailed, "out of memory"};
}

/// What `work` returns; what it throws becomes a Status as well.
template <typename Work>
Status Guarded(Work work) noexcept {
  try {
    try {
      return work();
    } catch (const std::bad_alloc&) {
      return OutOfMemory();
    } catch (const std::exception& error) {
      return Failure(StatusCode::EngineFailed, error.what());
    }
  } catch (...) {
    return OutOfMemory();  // for the failure's own text
  }
}

/// What `work` returns, or an empty value where it has run out of memory.
template <typename Work>
auto OrNothing(Work work) noexcept -> decltype(work()) {
  decltype(work()) result{};
  Guarded([&] {
    result = work();
    return Status{};
  });
  return result;
}

}  // namespace lumora

#endif  // LUMORA_PIPELINE_SUPPORT_GUARDED_H_
