// SPDX-License-Identifier: Apache-2.0
// Wrap and filter of the texture that is bound to GL_TEXTURE_2D.
#ifndef LUMORA_GL_TEXTURE_PARAMETERS_H_
#define LUMORA_GL_TEXTURE_PARAMETERS_H_

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

}  // namespace lumora::gl

#endif  // LUMORA_GL_TEXTURE_PARAMETERS_H_
