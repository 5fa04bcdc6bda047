#include "lumora/gl/segl_image.h"

#include <cstdint>
#include <new>

#include "lumora/gl/gl_steps.h"
#include "lumora/gl/log.h"
#include "lumora/gl/no_name.h"
#include "lumora/gl/step_timer.h"
#include "lumora/platform/gl_api.h"
#include "lumora/platform/gralloc.h"

LUMORA_LOG_TAG("EGLImageTest");

namespace platform = lumora::platform;

namespace {

/// A pointer as the log shows it: the low 32 bits, in decimal.
int LogNumber(const void* pointer) {
  return static_cast<int>(static_cast<uint32_t>(reinterpret_cast<uintptr_t>(pointer)));
}

void SetFilterAndWrap(GLint filter, GLint wrap) {
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, wrap);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, wrap);
}

}  // namespace

SEGLImage::SEGLImage(unsigned char flag)
    : m_eglImage(EGL_NO_IMAGE_KHR), m_hTexture(lumora::kNoName), m_pData(nullptr), m_nFlag(flag) {}

int SEGLImage::Create(int width, int height, int format) {
  return m_nFlag != 0 ? CreateBuffered(width, height, format) : CreatePlain(width, height);
}

int SEGLImage::CreateBuffered(int width, int height, int format) {
  LOGD("SEGLImage::Create - start");

  LOGD("new GraphicBuffer - start");
  const lumora::gl::StepTimer buffer_timer;
  m_spBuffer = new (std::nothrow) platform::GraphicBuffer(
      width > 0 ? static_cast<uint32_t>(width) : 0, height > 0 ? static_cast<uint32_t>(height) : 0,
      format, platform::GRALLOC_USAGE_SW_WRITE_OFTEN | platform::GRALLOC_USAGE_HW_TEXTURE);
  if (!m_spBuffer) return 0;
  const double buffer_ms = buffer_timer.Stop();
  LOGD("new GraphicBuffer spend: %f ms\n", buffer_ms);
  LOGD("new GraphicBuffer - end");

  const void* native_buffer = m_spBuffer->getNativeBuffer();
  m_pData = static_cast<unsigned char*>(m_spBuffer->handle().base);
  LOGD("clientBuf: %i", LogNumber(native_buffer));

  LOGD("eglCreateImageKHR - start");
  const lumora::gl::StepTimer texture_timer;
  const EGLint attributes[] = {EGL_IMAGE_PRESERVED_KHR, EGL_TRUE, EGL_NONE};
  m_eglImage = m_spBuffer->createImage(eglGetCurrentDisplay(), attributes);
  if (m_eglImage == EGL_NO_IMAGE_KHR) {
    LOGD("eglCreateImageKHR() failed. err=0x%4x", static_cast<unsigned>(eglGetError()));
  }
  lumora::gl::LogUnmasked("eglCreateImageKHR() done! ");
  LOGD("eglImageID: %i", LogNumber(m_eglImage));
  LOGD("eglCreateImageKHR - end");

  LOGD("CreateTexture - start");
  GLuint texture = 0;
  glGenTextures(1, &texture);
  lumora::gl::CheckGlError("CreateTexture - glGenTextures");
  glBindTexture(GL_TEXTURE_2D, texture);
  lumora::gl::CheckGlError("CreateTexture - glBindTexture");
  SetFilterAndWrap(GL_NEAREST, GL_CLAMP_TO_EDGE);
  m_hTexture = texture;
  // The check after glGenTextures has taken the error of a name that could not be made.
  if (texture == 0 || glGetError() != GL_NO_ERROR) {
    // The code told is that of the next error in the queue, usually none.
    lumora::gl::LogUnmasked("CreateTexture failed 0x%08x", glGetError());
    return 0;
  }
  LOGD("textureID: %i", static_cast<int>(m_hTexture));
  LOGD("CreateTexture - end");

  LOGD("glBindTexture - start");
  glBindTexture(GL_TEXTURE_2D, m_hTexture);
  LOGD("glBindTexture - end");

  LOGD("glEGLImageTargetTexture2DOES - start");
  if (lumora::gl::Extensions().glEGLImageTargetTexture2DOES != nullptr) {
    lumora::gl::Extensions().glEGLImageTargetTexture2DOES(GL_TEXTURE_2D, m_eglImage);
    m_spBuffer->attachTexture(m_hTexture);
  }
  LOGD("glEGLImageTargetTexture2DOES - end");
  if (glGetError() != GL_NO_ERROR) {
    LOGD("glEGLImageTargetTexture2DOES failed 0x%08x", glGetError());
  }
  const double texture_ms = texture_timer.Stop();
  LOGD("GL create texture spend: %f ms\n", texture_ms);
  LOGD("SEGLImage::Create - end");
  return 1;
}

int SEGLImage::CreatePlain(int width, int height) {
  GLuint texture = 0;
  glGenTextures(1, &texture);
  glBindTexture(GL_TEXTURE_2D, texture);
  glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
  m_hTexture = texture;
  SetFilterAndWrap(GL_NEAREST, GL_REPEAT);
  return 1;
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
  const auto allocator =
      platform::gralloc::IAllocController::getInstance()->getAllocator(handle.flags);
  const int result =
      allocator->clean_buffer(handle.base, static_cast<size_t>(handle.size), handle.offset,
                              handle.fd, platform::gralloc::CACHE_CLEAN);
  if (result < 0) LOGD("[%s] clean buffer error", "Unlock");
  return result;
}

int SEGLImage::GetFlag() {
  return m_spBuffer ? m_spBuffer->handle().flags : 0;
}
