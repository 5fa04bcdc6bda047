// SPDX-License-Identifier: Apache-2.0
#include "lumora/gl/segl_image.h"

#include <cstdint>
#include <new>

#include "lumora/gl/cache_clean.h"
#include "lumora/gl/gl_steps.h"
#include "lumora/gl/log.h"
#include "lumora/gl/no_name.h"
#include "lumora/gl/step_timer.h"
#include "lumora/gl/texture_parameters.h"
#include "lumora/platform/gl_api.h"

LUMORA_LOG_TAG("EGLImageTest");

namespace platform = lumora::platform;

namespace {

/// A pointer as the log shows it: the low 32 bits, in decimal.
int LogNumber(const void* pointer) {
  return static_cast<int>(static_cast<uint32_t>(reinterpret_cast<uintptr_t>(pointer)));
}

/// The shared memory. False where there is none.
bool MakeBuffer(SEGLImage& image, int width, int height, int format) {
  LOGD("new GraphicBuffer - start");
  const lumora::gl::StepTimer timer;
  image.m_spBuffer = new (std::nothrow) platform::GraphicBuffer(
      width > 0 ? static_cast<uint32_t>(width) : 0, height > 0 ? static_cast<uint32_t>(height) : 0,
      format, platform::GRALLOC_USAGE_SW_WRITE_OFTEN | platform::GRALLOC_USAGE_HW_TEXTURE);
  if (!image.m_spBuffer) return false;
  const double spent_ms = timer.Stop();
  LOGD("new GraphicBuffer spend: %f ms\n", spent_ms);
  LOGD("new GraphicBuffer - end");

  const void* native_buffer = image.m_spBuffer->getNativeBuffer();
  image.m_pData = static_cast<unsigned char*>(image.m_spBuffer->handle().base);
  LOGD("clientBuf: %i", LogNumber(native_buffer));
  return true;
}

/// The EGL image over the memory. One that cannot be made shows in the log alone.
void MakeEglImage(SEGLImage& image) {
  LOGD("eglCreateImageKHR - start");
  const EGLint attributes[] = {EGL_IMAGE_PRESERVED_KHR, EGL_TRUE, EGL_NONE};
  image.m_eglImage = image.m_spBuffer->createImage(eglGetCurrentDisplay(), attributes);
  if (image.m_eglImage == EGL_NO_IMAGE_KHR) {
    LOGD("eglCreateImageKHR() failed. err=0x%4x", static_cast<unsigned>(eglGetError()));
  }
  lumora::gl::LogUnmasked("eglCreateImageKHR() done! ");
  LOGD("eglImageID: %i", LogNumber(image.m_eglImage));
  LOGD("eglCreateImageKHR - end");
}

/// The texture, which has no pixels yet. False when there is none.
bool MakeTexture(SEGLImage& image) {
  LOGD("CreateTexture - start");
  GLuint texture = 0;
  glGenTextures(1, &texture);
  lumora::gl::CheckGlError("CreateTexture - glGenTextures");
  glBindTexture(GL_TEXTURE_2D, texture);
  lumora::gl::CheckGlError("CreateTexture - glBindTexture");
  lumora::gl::SetFilter(GL_NEAREST);
  lumora::gl::SetWrap(GL_CLAMP_TO_EDGE);
  image.m_hTexture = texture;
  // The check after glGenTextures has taken the error of a name that could not be made.
  if (texture == 0 || glGetError() != GL_NO_ERROR) {
    // The code told is that of the next error in the queue, usually none.
    lumora::gl::LogUnmasked("CreateTexture failed 0x%08x", glGetError());
    return false;
  }
  LOGD("textureID: %i", static_cast<int>(texture));
  LOGD("CreateTexture - end");
  return true;
}

/// Makes the EGL image's memory the texture's pixels. A failure shows in the log alone.
void BindImageToTexture(const SEGLImage& image) {
  LOGD("glBindTexture - start");
  glBindTexture(GL_TEXTURE_2D, image.m_hTexture);
  LOGD("glBindTexture - end");

  LOGD("glEGLImageTargetTexture2DOES - start");
  if (lumora::gl::Extensions().glEGLImageTargetTexture2DOES != nullptr) {
    lumora::gl::Extensions().glEGLImageTargetTexture2DOES(GL_TEXTURE_2D, image.m_eglImage);
    image.m_spBuffer->attachTexture(image.m_hTexture);
  }
  LOGD("glEGLImageTargetTexture2DOES - end");
  if (glGetError() != GL_NO_ERROR) {
    LOGD("glEGLImageTargetTexture2DOES failed 0x%08x", glGetError());
  }
}

int CreateBuffered(SEGLImage& image, int width, int height, int format) {
  LOGD("SEGLImage::Create - start");
  if (!MakeBuffer(image, width, height, format)) return 0;
  const lumora::gl::StepTimer timer;
  MakeEglImage(image);
  if (!MakeTexture(image)) return 0;
  BindImageToTexture(image);
  const double spent_ms = timer.Stop();
  LOGD("GL create texture spend: %f ms\n", spent_ms);
  LOGD("SEGLImage::Create - end");
  return 1;
}

int CreatePlain(SEGLImage& image, int width, int height) {
  GLuint texture = 0;
  glGenTextures(1, &texture);
  glBindTexture(GL_TEXTURE_2D, texture);
  glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
  image.m_hTexture = texture;
  lumora::gl::SetFilter(GL_NEAREST);
  lumora::gl::SetWrap(GL_REPEAT);
  return 1;
}

}  // namespace

SEGLImage::SEGLImage(unsigned char flag)
    : m_eglImage(EGL_NO_IMAGE_KHR), m_hTexture(lumora::kNoName), m_pData(nullptr), m_nFlag(flag) {}

int SEGLImage::Create(int width, int height, int format) {
  return m_nFlag != 0 ? CreateBuffered(*this, width, height, format)
                      : CreatePlain(*this, width, height);
}

void SEGLImage::Destroy() {
  if (m_spBuffer) m_spBuffer->detachTexture();
  glDeleteTextures(1, &m_hTexture);
  m_hTexture = lumora::kNoName;
  if (m_nFlag != 0 && m_eglImage != EGL_NO_IMAGE_KHR) {
    lumora::gl::Extensions().eglDestroyImageKHR(eglGetCurrentDisplay(), m_eglImage);
    m_eglImage = EGL_NO_IMAGE_KHR;
  }
}

unsigned char* SEGLImage::Lock() {
  return m_spBuffer ? m_spBuffer->lockPixels() : nullptr;
}

int SEGLImage::Unlock() {
  if (!m_spBuffer) return 0;
  const platform::PrivateHandle& handle = m_spBuffer->handle();
  const int result =
      lumora::CleanBuffer(handle.base, handle.flags, handle.offset, handle.fd, handle.size);
  if (result < 0) LOGD("[%s] clean buffer error", "Unlock");
  return result;
}

int SEGLImage::GetFlag() {
  return m_spBuffer ? m_spBuffer->handle().flags : 0;
}
