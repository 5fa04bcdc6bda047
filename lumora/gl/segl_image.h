// SPDX-License-Identifier: Apache-2.0
// An RGBA image that the CPU and the GPU share.
#ifndef LUMORA_GL_SEGL_IMAGE_H_
#define LUMORA_GL_SEGL_IMAGE_H_

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GLES2/gl2.h>

#include "lumora/export.h"
#include "lumora/gl/step_times.h"
#include "lumora/platform/graphic_buffer.h"

/// One image: in buffer mode a graphic buffer that the CPU addresses, wrapped in an EGL image and
/// bound to a texture; in plain mode an ordinary texture with no memory for the CPU.
///
/// Life: construct, `Create` once, `Destroy`, delete, in that order. The buffer lives until the
/// object is deleted.
///
/// Context: the one that `Create` ran under must be current for every later call.
class LUMORA_API SEGLImage {
 public:
  /// `flag`: 1 (or any value but 0) is buffer mode, 0 is plain texture mode. Makes no GL call.
  explicit SEGLImage(unsigned char flag);

  /// Makes the buffer, the EGL image and the texture, or the plain texture. `width` and `height`
  /// are pixels; `format` is 1 (RGBA, 8 bits each) and is not looked at in plain mode. Buffer
  /// textures start with nearest filters and clamped edges, plain ones with nearest filters and
  /// repeated edges. Returns 1, or 0 when the texture could not be made. A failed EGL image is only
  /// logged: the texture then has no storage, and the framebuffer check shows it. The texture is
  /// bound to GL_TEXTURE_2D afterwards.
  int Create(int width, int height, int format);

  /// Deletes the texture and the EGL image. May be called twice.
  void Destroy();

  /// The address of the first pixel (buffer mode), null in plain mode and when the GPU has newer
  /// pixels that cannot be had without the context. Rows are the width rounded up to 32 pixels, 4
  /// bytes a pixel. Everything that the GPU has drawn is visible there: call it at each use and
  /// never keep the address over a draw.
  unsigned char* Lock();

  /// Writes back what the CPU wrote since `Lock`, so that the GPU sees it. Returns the allocator's
  /// result: 0, or a negative number (always 0 in plain mode).
  int Unlock();

  /// The allocation flags of the buffer (buffer mode), 0 in plain mode.
  int GetFlag();

  EGLImageKHR m_eglImage;                                            ///< owned; null when unset
  GLuint m_hTexture;                                                 ///< owned; -1 when unset
  lumora::platform::sp<lumora::platform::GraphicBuffer> m_spBuffer;  ///< null in plain mode
  unsigned char* m_pData;  ///< CPU address of the buffer, taken at creation; null when unset
  unsigned char m_nFlag;
};

#endif  // LUMORA_GL_SEGL_IMAGE_H_
