// Wrap and filter of the bound texture.
#ifndef LUMORA_GL_TEXTURE_PARAMETERS_H_
#define LUMORA_GL_TEXTURE_PARAMETERS_H_

#include "lumora/platform/gl_api.h"

namespace lumora {

/// Sets both directions' wrap and both filters of the texture that is bound to GL_TEXTURE_2D.
inline void SetWrapAndFilter(GLint wrap, GLint filter) {
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, wrap);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, wrap);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
}

}  // namespace lumora

#endif  // LUMORA_GL_TEXTURE_PARAMETERS_H_
