// SPDX-License-Identifier: Apache-2.0
// What the last measured step took.
#ifndef LUMORA_GL_STEP_TIMES_H_
#define LUMORA_GL_STEP_TIMES_H_

#include <ctime>

#include "lumora/export.h"

/// Timing of the last measured step: clock() readings before and after, and the milliseconds
/// between.
extern LUMORA_API clock_t g_cTimeStart;
extern LUMORA_API clock_t g_cTimeFinish;
extern LUMORA_API double g_dCountTimeInterval;

#endif  // LUMORA_GL_STEP_TIMES_H_
