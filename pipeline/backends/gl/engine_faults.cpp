// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/gl/engine_faults.h"

#include <string>

#include "pipeline/support/failure.h"

namespace lumora {
namespace {

/// A program that lacks one of its attributes is linked all the same.
bool Loaded(const GLProgram* program) {
  return program != nullptr && program->m_hProgram != 0 &&
         program->m_hProgram != static_cast<unsigned int>(-1) && program->m_nVerCoordLoc >= 0 &&
         program->m_nTexCoordLoc >= 0;
}

bool HasMemory(const SEGLImage* image) {
  return image != nullptr && image->m_pData != nullptr;
}

bool Drawable(GLuint framebuffer) {
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  return glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
}

}  // namespace

const char* FaultOf(std::initializer_list<const GLProgram*> programs,
                    std::initializer_list<const SEGLImage*> images,
                    std::initializer_list<GLuint> framebuffers) {
  for (const GLProgram* program : programs) {
    if (!Loaded(program)) return kNoProgram;
  }
  for (const SEGLImage* image : images) {
    if (!HasMemory(image)) return kNoMemory;
  }
  for (const GLuint framebuffer : framebuffers) {
    if (!Drawable(framebuffer)) return kNotDrawable;
  }
  return nullptr;
}

Status NotSetUp(const char* fault) {
  return Failure(StatusCode::EngineFailed, std::string("the engine cannot be set up: ") + fault +
                                               "; set LUMORA_LOG=debug to see why");
}

Status EngineRefused() {
  return Failure(StatusCode::EngineFailed,
                 "the engine refused the frame; set LUMORA_LOG=debug to see why");
}

Status NoDisplay() {
  return Failure(StatusCode::NoDisplay,
                 "no EGL display with OpenGL ES 2 was found on this machine; "
                 "a software renderer such as Mesa's is enough");
}

}  // namespace lumora
