// Making a Status.
#ifndef LUMORA_PIPELINE_STATUS_H_
#define LUMORA_PIPELINE_STATUS_H_

#include <string>
#include <utility>

#include "pipeline/pipeline.h"

namespace lumora {

inline Status Failure(StatusCode code, std::string message) {
  return {code, std::move(message)};
}

}  // namespace lumora

#endif  // LUMORA_PIPELINE_STATUS_H_
