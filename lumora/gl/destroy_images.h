// SPDX-License-Identifier: Apache-2.0
// The end of the images that an engine owns.
#ifndef LUMORA_GL_DESTROY_IMAGES_H_
#define LUMORA_GL_DESTROY_IMAGES_H_

#include <initializer_list>

#include "lumora/gl/segl_image.h"

namespace lumora::gl {

/// Destroys the images that exist, then deletes them; the pointers are null afterwards.
inline void DestroyImages(std::initializer_list<SEGLImage**> images) {
  for (SEGLImage** image : images) {
    if (*image != nullptr) (*image)->Destroy();
  }
  for (SEGLImage** image : images) {
    delete *image;
    *image = nullptr;
  }
}

}  // namespace lumora::gl

#endif  // LUMORA_GL_DESTROY_IMAGES_H_
