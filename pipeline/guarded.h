// Keeping exceptions inside the library.
#ifndef LUMORA_PIPELINE_GUARDED_H_
#define LUMORA_PIPELINE_GUARDED_H_

#include <exception>
#include <new>

#include "pipeline/failure.h"

namespace lumora {

/// What `work` returns; what it throws becomes a Status as well.
template <typename Work>
Status Guarded(Work work) {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    return Failure(StatusCode::EngineFailed, "there is not enough memory for the frame");
  } catch (const std::exception& error) {
    return Failure(StatusCode::EngineFailed, error.what());
  }
}

}  // namespace lumora

#endif  // LUMORA_PIPELINE_GUARDED_H_
