// SPDX-License-Identifier: Apache-2.0
// Making a Status that says what went wrong.
#ifndef LUMORA_PIPELINE_SUPPORT_FAILURE_H_
#define LUMORA_PIPELINE_SUPPORT_FAILURE_H_

#include <string>
#include <utility>

#include "lumora/pipeline/status.h"

namespace lumora {

inline Status Failure(StatusCode code, std::string message) {
  return {code, std::move(message)};
}

inline Status Invalid(std::string message) {
  return Failure(StatusCode::InvalidArgument, std::move(message));
}

}  // namespace lumora

#endif  // LUMORA_PIPELINE_SUPPORT_FAILURE_H_
