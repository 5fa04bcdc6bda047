// SPDX-License-Identifier: Apache-2.0
// Wrap and filter of the texture that is bound to GL_TEXTURE_2D.
#ifndef LUMORA_GL_TEXTURE_PARAMETERS_H_
#define LUMORA_GL_TEXTURE_PARAMETERS_H_

#include "lumora/gl/gl_steps.h"
#include "lumora/platform/gl_api.h"

namespace lumora::gl {

/// What lies beyond the edges, in both directions.
inline void SetWrap(GLint wrap) {
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, wrap);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, wrap);
}

/// How texels are mixed, where the texture is made smaller and larger.
inline void SetFilter(GLint filter) {
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
}

/// The same as passes set it: on whatever texture is bound before they bind their input, with a
/// check for errors after each step.
inline void SetFilterOfPass(GLint filter) {
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
  CheckGlError("glTexParameteri MIN- Y");
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
  CheckGlError("glTexParameteri MAG- Y");
}

}  // namespace lumora::gl

#endif  // LUMORA_GL_TEXTURE_PARAMETERS_H_
