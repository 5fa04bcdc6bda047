// SPDX-License-Identifier: Apache-2.0
// EGL calls that fail on purpose.
//
// The executable defines these functions in place of the driver's; as long as no fault is asked for
// they pass every call on.
#ifndef LUMORA_TESTS_ENGINE_EGL_FAULTS_H_
#define LUMORA_TESTS_ENGINE_EGL_FAULTS_H_

namespace lumora::test {

enum class EglStep {
  FindDisplay,  ///< no display of any platform, and none that was found before can be started
  Initialize,
  ChooseConfig,
  AnswerNoConfig,  ///< eglChooseConfig succeeds and offers nothing
  CreateContext,
  CreatePbuffer,
  MakeCurrent
};

/// Makes a step fail while it lives, after the given number of calls that pass. One at a time.
class EglFault {
 public:
  explicit EglFault(EglStep step, int passing_calls = 0);
  ~EglFault();
  EglFault(const EglFault&) = delete;
  EglFault& operator=(const EglFault&) = delete;

  /// How many calls have failed.
  int failed() const;
};

}  // namespace lumora::test

#endif  // LUMORA_TESTS_ENGINE_EGL_FAULTS_H_
