// SPDX-License-Identifier: Apache-2.0
// The engine's images and their framebuffers.
#include <new>

#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/geometry/rounding.h"
#include "lumora/gl/gl_steps.h"
#include "lumora/gl/log.h"
#include "lumora/gl/no_name.h"
#include "lumora/gl/texture_parameters.h"
#include "lumora/platform/gl_api.h"

LUMORA_LOG_TAG("Lumora");

namespace android {
namespace {

using lumora::kNoName;
using lumora::RoundUpTo32;

constexpr char kCheckRgb[] = "InitTexture - after RGB SetColorAttachment";

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
  lumora::gl::SetWrap(GL_MIRRORED_REPEAT);
  lumora::gl::SetFilter(GL_NEAREST);
  const GLenum error = glGetError();
  if (error == GL_NO_ERROR) return texture;
  LOGE("[%s] can't make plane texture, glError (0x%x)", "InitTextureLarge", error);
  glDeleteTextures(1, &texture);
  return kNoName;
}

/// How an image with its framebuffer is to be made.
struct ImagePlan {
  bool buffered = true;  ///< in memory that the CPU addresses
  int width = 0;         ///< pixels
  int height = 0;
  GLint wrap = GL_CLAMP_TO_EDGE;
  GLint filter = GL_NEAREST;
  const char* check = kCheckRgb;  ///< under what GL errors are told
};

/// The members that an image and its framebuffer go to.
struct Slot {
  SEGLImage*& image;
  GLuint& framebuffer;
};

Slot InputSlot(GPUBeautyFace& engine) {
  return {engine.m_pRGBImage, engine.m_hRGBFbo};
}

Slot WorkSlot(GPUBeautyFace& engine, int index) {
  return {engine.m_pWorkImage[index], engine.m_hWorkFbo[index]};
}

/// Makes both. False when something is missing, with what could be made in the slot.
bool MakeTarget(const Slot& slot, const ImagePlan& plan) {
  SEGLImage*& image = slot.image;
  image = new (std::nothrow) SEGLImage(plan.buffered ? 1 : 0);
  const bool created = image != nullptr && image->Create(plan.width, plan.height, 1) == 1;
  if (image == nullptr || image->m_hTexture == kNoName) {
    LOGE("[%s] can't new image", "MakeImageTarget");
    delete image;
    image = nullptr;
    return false;
  }
  lumora::gl::SetWrap(plan.wrap);
  lumora::gl::SetFilter(plan.filter);
  GLuint name = 0;
  glGenFramebuffers(1, &name);
  if (name == 0) {
    // Framebuffer 0 is the pbuffer's: nothing may be drawn to it in this one's place.
    LOGE("[%s] can't make framebuffer", "MakeImageTarget");
    lumora::gl::CheckGlError(plan.check);
    return false;
  }
  slot.framebuffer = name;
  glBindFramebuffer(GL_FRAMEBUFFER, name);
  const bool complete = lumora::gl::AttachColour(GL_TEXTURE_2D, image->m_hTexture);
  lumora::gl::CheckGlError(plan.check);
  return created && complete;
}

bool MakePackedTargets(GPUBeautyFace& engine) {
  ImagePlan luma;
  luma.width = engine.m_nYYYYWidth / 4;
  luma.height = engine.m_nYYYYHeight;
  luma.check = "InitTexture - after YYYY SetColorAttachment";
  ImagePlan chroma;
  chroma.width = engine.m_nUVUVWidth / 4;
  chroma.height = engine.m_nUVUVHeight;
  chroma.check = "InitTexture - after UVUV SetColorAttachment";
  const bool made_luma = MakeTarget({engine.m_pYYYYImage, engine.m_hYYYYFbo}, luma);
  const bool made_chroma = MakeTarget({engine.m_pUVUVImage, engine.m_hUVUVFbo}, chroma);
  return made_luma && made_chroma;
}

/// The store of a whole capture that fits no texture.
bool MakeLargeBuffer(GPUBeautyFace& engine, int width, int height) {
  namespace platform = lumora::platform;
  auto& buffer = engine.m_spLargeBuffer;
  buffer = new (std::nothrow) platform::GraphicBuffer(
      static_cast<uint32_t>(RoundUpTo32(width)), static_cast<uint32_t>(height),
      platform::HAL_PIXEL_FORMAT_RGBA_8888,
      platform::GRALLOC_USAGE_SW_READ_OFTEN | platform::GRALLOC_USAGE_SW_WRITE_OFTEN |
          platform::GRALLOC_USAGE_HW_TEXTURE);
  if (buffer && buffer->handle().base == nullptr) buffer.clear();
  if (!buffer) LOGE("[%s] can't new image", "InitTextureLarge");
  return static_cast<bool>(buffer);
}

}  // namespace

int GPUBeautyFace::InitTexture() {
  ImagePlan work;
  work.width = RoundUpTo32(m_nSrcWidth);
  work.height = m_nSrcHeight;
  work.filter = GL_LINEAR;
  ImagePlan input = work;
  input.wrap = GL_MIRRORED_REPEAT;

  bool made = MakeTarget(InputSlot(*this), input);
  for (int i = 0; i < 3; ++i) made &= MakeTarget(WorkSlot(*this, i), work);
  made &= MakePackedTargets(*this);
  return made ? 1 : 0;
}

int GPUBeautyFace::InitTextureLarge(int width, int height) {
  ImagePlan input;
  input.width = RoundUpTo32(m_nSrcWidth);
  input.height = m_nSrcHeight;
  input.wrap = GL_MIRRORED_REPEAT;
  ImagePlan block;
  block.width = m_nSrcWidth;
  block.height = m_nSrcHeight;
  ImagePlan store;
  store.width = RoundUpTo32(width);
  store.height = height;

  bool made = MakeTarget(InputSlot(*this), input);
  made &= MakeTarget(WorkSlot(*this, 0), block);
  // The store of the whole capture: an image while it fits a texture, else plain shared memory.
  made &= m_bLargeCapture ? MakeLargeBuffer(*this, width, height)
                          : MakeTarget(WorkSlot(*this, 1), store);
  made &= MakeTarget(WorkSlot(*this, 2), block);
  made &= MakePackedTargets(*this);
  return made ? 1 : 0;
}

int GPUBeautyFace::InitTextureLarge(void* pY, void* pCbCr, int width, int height) {
  m_hYTexture = MakePlaneTexture(GL_LUMINANCE, width, height, pY);
  m_hCbCrTexture = MakePlaneTexture(GL_LUMINANCE_ALPHA, width / 2, height / 2, pCbCr);
  ImagePlan work;
  work.buffered = false;
  work.width = m_nProcWidth;
  work.height = m_nProcHeight;
  bool made = MakeTarget(WorkSlot(*this, 0), work);
  made &= m_hYTexture != kNoName && m_hCbCrTexture != kNoName;
  made &= MakePackedTargets(*this);
  return made ? 1 : 0;
}

}  // namespace android
