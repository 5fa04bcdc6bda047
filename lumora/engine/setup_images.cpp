// The engine's images and their framebuffers.
#include <new>

#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/geometry/frame_sizes.h"
#include "lumora/gl/gl_steps.h"
#include "lumora/gl/log.h"
#include "lumora/gl/no_name.h"
#include "lumora/gl/offscreen_context.h"
#include "lumora/gl/texture_parameters.h"
#include "lumora/platform/gl_api.h"

LUMORA_LOG_TAG("Lumora");

namespace android {
namespace {

using lumora::kNoName;
using lumora::RoundUpTo32;
using lumora::SetWrapAndFilter;

constexpr unsigned char kBuffered = 1;
constexpr unsigned char kPlain = 0;

constexpr char kCheckRgb[] = "InitTexture - after RGB SetColorAttachment";
constexpr char kCheckYyyy[] = "InitTexture - after YYYY SetColorAttachment";
constexpr char kCheckUvuv[] = "InitTexture - after UVUV SetColorAttachment";

/// A plain texture of one plane of a capture, or -1. Rows of the plane are tightly packed bytes.
GLuint MakePlaneTexture(GLint format, int width, int height, const void* plane) {
  lumora::gl::CheckGlError("InitTextureLarge");
  GLuint texture = 0;
  glGenTextures(1, &texture);
  glBindTexture(GL_TEXTURE_2D, texture);
  GLint alignment = 4;
  glGetIntegerv(GL_UNPACK_ALIGNMENT, &alignment);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glTexImage2D(GL_TEXTURE_2D, 0, format, width, height, 0, static_cast<GLenum>(format),
               GL_UNSIGNED_BYTE, plane);
  glPixelStorei(GL_UNPACK_ALIGNMENT, alignment);
  SetWrapAndFilter(GL_MIRRORED_REPEAT, GL_NEAREST);
  const GLenum error = glGetError();
  if (error == GL_NO_ERROR) return texture;
  LOGE("[%s] can't make plane texture, glError (0x%x)", "InitTextureLarge", error);
  glDeleteTextures(1, &texture);
  return kNoName;
}

}  // namespace

bool GPUBeautyFace::MakeImageTarget(SEGLImage*& image, GLuint& fbo, unsigned char flag, int width,
                                    int height, GLint wrap, GLint filter, const char* check) {
  image = new (std::nothrow) SEGLImage(flag);
  const bool created = image != nullptr && image->Create(width, height, 1) == 1;
  if (image == nullptr || image->m_hTexture == kNoName) {
    LOGE("[%s] can't new image", "MakeImageTarget");
    delete image;
    image = nullptr;
    return false;
  }
  SetWrapAndFilter(wrap, filter);
  GLuint name = 0;
  glGenFramebuffers(1, &name);
  if (name == 0) {
    // Framebuffer 0 is the pbuffer's: nothing may be drawn to it in this one's place.
    LOGE("[%s] can't make framebuffer", "MakeImageTarget");
    lumora::gl::CheckGlError(check);
    return false;
  }
  fbo = name;
  glBindFramebuffer(GL_FRAMEBUFFER, fbo);
  const bool complete = lumora::gl::AttachColour(GL_TEXTURE_2D, image->m_hTexture);
  lumora::gl::CheckGlError(check);
  return created && complete;
}

bool GPUBeautyFace::MakePackedTargets() {
  const bool luma = MakeImageTarget(m_pYYYYImage, m_hYYYYFbo, kBuffered, m_nYYYYWidth / 4,
                                    m_nYYYYHeight, GL_CLAMP_TO_EDGE, GL_NEAREST, kCheckYyyy);
  const bool chroma = MakeImageTarget(m_pUVUVImage, m_hUVUVFbo, kBuffered, m_nUVUVWidth / 4,
                                      m_nUVUVHeight, GL_CLAMP_TO_EDGE, GL_NEAREST, kCheckUvuv);
  return luma && chroma;
}

int GPUBeautyFace::InitTexture() {
  const int width = RoundUpTo32(m_nSrcWidth);
  bool made = MakeImageTarget(m_pRGBImage, m_hRGBFbo, kBuffered, width, m_nSrcHeight,
                              GL_MIRRORED_REPEAT, GL_LINEAR, kCheckRgb);
  for (int i = 0; i < 3; ++i) {
    made &= MakeImageTarget(m_pWorkImage[i], m_hWorkFbo[i], kBuffered, width, m_nSrcHeight,
                            GL_CLAMP_TO_EDGE, GL_LINEAR, kCheckRgb);
  }
  made &= MakePackedTargets();
  return made ? 1 : 0;
}

int GPUBeautyFace::InitTextureLarge(int width, int height) {
  bool made = MakeImageTarget(m_pRGBImage, m_hRGBFbo, kBuffered, RoundUpTo32(m_nSrcWidth),
                              m_nSrcHeight, GL_MIRRORED_REPEAT, GL_NEAREST, kCheckRgb);
  const auto make_work_image = [this](int i, int work_width, int work_height) {
    return MakeImageTarget(m_pWorkImage[i], m_hWorkFbo[i], kBuffered, work_width, work_height,
                           GL_CLAMP_TO_EDGE, GL_NEAREST, kCheckRgb);
  };
  made &= make_work_image(0, m_nSrcWidth, m_nSrcHeight);
  // The store of the whole capture: an image while it fits a texture, else plain shared memory.
  if (m_bLargeCapture) {
    namespace platform = lumora::platform;
    m_spLargeBuffer = new (std::nothrow) platform::GraphicBuffer(
        static_cast<uint32_t>(RoundUpTo32(width)), static_cast<uint32_t>(height),
        platform::HAL_PIXEL_FORMAT_RGBA_8888,
        platform::GRALLOC_USAGE_SW_READ_OFTEN | platform::GRALLOC_USAGE_SW_WRITE_OFTEN |
            platform::GRALLOC_USAGE_HW_TEXTURE);
    if (m_spLargeBuffer && m_spLargeBuffer->handle().base == nullptr) m_spLargeBuffer.clear();
    if (!m_spLargeBuffer) LOGE("[%s] can't new image", "InitTextureLarge");
    made &= static_cast<bool>(m_spLargeBuffer);
  } else {
    made &= make_work_image(1, RoundUpTo32(width), height);
  }
  made &= make_work_image(2, m_nSrcWidth, m_nSrcHeight);
  made &= MakePackedTargets();
  return made ? 1 : 0;
}

int GPUBeautyFace::InitTextureLarge(void* pY, void* pCbCr, int width, int height) {
  m_hYTexture = MakePlaneTexture(GL_LUMINANCE, width, height, pY);
  m_hCbCrTexture = MakePlaneTexture(GL_LUMINANCE_ALPHA, width / 2, height / 2, pCbCr);
  bool made = MakeImageTarget(m_pWorkImage[0], m_hWorkFbo[0], kPlain, m_nProcWidth, m_nProcHeight,
                              GL_CLAMP_TO_EDGE, GL_NEAREST, kCheckRgb);
  made &= m_hYTexture != kNoName && m_hCbCrTexture != kNoName;
  made &= MakePackedTargets();
  return made ? 1 : 0;
}

}  // namespace android
