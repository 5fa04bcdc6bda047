// SPDX-License-Identifier: Apache-2.0
// How a command ends: exit codes, and the exception that carries one with its sentence.
#ifndef LUMORA_TOOLS_SUPPORT_FAILURE_H_
#define LUMORA_TOOLS_SUPPORT_FAILURE_H_

#include <stdexcept>
#include <string>
#include <utility>

#include "lumora/pipeline/pipeline.h"

namespace lumora::tools {

/// What the process returns to the shell.
enum class ExitCode {
  Done = 0,
  Failed = 1,      ///< processing failed, or a result could not be written
  Usage = 2,       ///< the command line makes no sense
  Unreadable = 3,  ///< an input is missing, damaged, too small or too large
  NoDisplay = 4,   ///< this machine offers no usable EGL display
  NoFace = 5,      ///< no face was found and one was required
};

/// Ends the command: main() prints "lumora: <what>" and returns the code. `remedy`, where there is
/// one, is a command line that does what was wanted; it is printed below, just as it is.
class Failure : public std::runtime_error {
 public:
  Failure(ExitCode code, const std::string& what, std::string remedy = {})
      : std::runtime_error(what), code_(code), remedy_(std::move(remedy)) {}
  ExitCode code() const { return code_; }
  const std::string& remedy() const { return remedy_; }

 private:
  ExitCode code_;
  std::string remedy_;
};

/// Throws the Failure that belongs to a pipeline's status; does nothing for success.
inline void ThrowUnlessOk(const Status& status) {
  if (status.ok()) return;
  throw Failure(status.code == StatusCode::NoDisplay ? ExitCode::NoDisplay : ExitCode::Failed,
                status.message);
}

/// The same for a pipeline or converter that was to be made: what cannot be used then is how the
/// command was called.
inline void ThrowUnlessMade(const Status& status) {
  if (status.code == StatusCode::InvalidArgument) throw Failure(ExitCode::Usage, status.message);
  ThrowUnlessOk(status);
}

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_SUPPORT_FAILURE_H_
