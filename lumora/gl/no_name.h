// SPDX-License-Identifier: Apache-2.0
// The name of no GL object.
#ifndef LUMORA_GL_NO_NAME_H_
#define LUMORA_GL_NO_NAME_H_

#include "lumora/platform/gl_api.h"

namespace lumora {

/// What members that hold the name of a GL object are while there is none.
constexpr GLuint kNoName = static_cast<GLuint>(-1);

}  // namespace lumora

#endif  // LUMORA_GL_NO_NAME_H_
