// SPDX-License-Identifier: Apache-2.0
// What the replaced functions ask and tell.
#ifndef LUMORA_TESTS_FAULTS_FAULT_SWITCH_H_
#define LUMORA_TESTS_FAULTS_FAULT_SWITCH_H_

#include <EGL/egl.h>
#include <GLES2/gl2.h>

#include "proofs/faults/fault_layer.h"

namespace lumora::test {

/// Counts a call; whether it has to fail.
bool Fails(Call call);

/// The same, leaving a GL error behind when it fails.
bool FailsWith(Call call, GLenum error);

/// The function to hand out for one that a driver offers by name; `found` itself when it is none of
/// those that can fail.
__eglMustCastToProperFunctionPointerType ReplaceGlProcedure(
    const char* name, __eglMustCastToProperFunctionPointerType found);

/// The context is destroyed, with all its names.
void ForgetContext(EGLContext context);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_FAULTS_FAULT_SWITCH_H_
