// SPDX-License-Identifier: Apache-2.0
// What calls of the pipeline come back with.
#ifndef LUMORA_PIPELINE_STATUS_H_
#define LUMORA_PIPELINE_STATUS_H_

#include <string>

namespace lumora {

/// What went wrong.
enum class StatusCode {
  Ok,
  InvalidArgument,  ///< the call's arguments cannot be used; nothing was done
  NoDisplay,        ///< gl: no EGL display or context, or no EGL, could be had on this machine
  TooLarge,         ///< gl: the frame is larger than the driver's textures
  EngineFailed,     ///< memory was short, or the engine refused to process (its log says why)
};

/// Success, or a code and a sentence that can be shown to a user.
struct Status {
  StatusCode code = StatusCode::Ok;
  std::string message;

  bool ok() const { return code == StatusCode::Ok; }
};

}  // namespace lumora

#endif  // LUMORA_PIPELINE_STATUS_H_
