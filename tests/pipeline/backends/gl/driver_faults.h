// SPDX-License-Identifier: Apache-2.0
// Faults of the driver, made on purpose.
//
// The executable defines the EGL and GL functions concerned in place of the driver's; they pass
// every call on as long as no fault is asked for.
#ifndef LUMORA_TESTS_PIPELINE_DRIVER_FAULTS_H_
#define LUMORA_TESTS_PIPELINE_DRIVER_FAULTS_H_

namespace lumora::test {

/// While one lives no context can be made.
class NoContexts {
 public:
  NoContexts();
  ~NoContexts();
};

/// While one lives every framebuffer counts as incomplete.
class FramebuffersIncomplete {
 public:
  FramebuffersIncomplete();
  ~FramebuffersIncomplete();
};

/// While one lives every draw loses its program for good, and whoever asks for errors is told of
/// one: once, when it asks until there is none.
class ProgramsLost {
 public:
  ProgramsLost();
  ~ProgramsLost();
};

}  // namespace lumora::test

#endif  // LUMORA_TESTS_PIPELINE_DRIVER_FAULTS_H_
