// SPDX-License-Identifier: Apache-2.0
#include "proofs/soak/bare_gl.h"

#include <gtest/gtest.h>

#include <vector>

#include "lumora/lumora.h"

namespace lumora::test {
namespace {

GLuint Compile(GLenum type, const std::string& source) {
  const GLuint shader = glCreateShader(type);
  const char* const text = source.c_str();
  glShaderSource(shader, 1, &text, nullptr);
  glCompileShader(shader);
  return shader;
}

/// Draws a triangle into a texture.
void DrawBarely(GLuint program) {
  constexpr int kSide = 64;
  constexpr float kTriangle[] = {-1, 3, -1, -1, 3, -1};
  GLuint texture = 0, framebuffer = 0;
  glGenTextures(1, &texture);
  glBindTexture(GL_TEXTURE_2D, texture);
  glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, kSide, kSide, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
  glGenFramebuffers(1, &framebuffer);
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
  glViewport(0, 0, kSide, kSide);
  glUseProgram(program);
  const auto position = static_cast<GLuint>(glGetAttribLocation(program, "a_vertexCoord"));
  glVertexAttribPointer(position, 2, GL_FLOAT, GL_FALSE, 0, kTriangle);
  glEnableVertexAttribArray(position);
  glDrawArrays(GL_TRIANGLES, 0, 3);
  glFinish();
  glDeleteFramebuffers(1, &framebuffer);
  glDeleteTextures(1, &texture);
}

}  // namespace

ProgramSources SourcesOf(GLuint program) {
  ProgramSources sources;
  GLuint shaders[2] = {};
  GLsizei count = 0;
  glGetAttachedShaders(program, 2, &count, shaders);
  EXPECT_EQ(count, 2) << "a program that was not compiled here";
  for (GLsizei i = 0; i < count; ++i) {
    GLint type = 0, length = 0;
    glGetShaderiv(shaders[i], GL_SHADER_TYPE, &type);
    glGetShaderiv(shaders[i], GL_SHADER_SOURCE_LENGTH, &length);
    std::string text(static_cast<size_t>(length), '\0');
    glGetShaderSource(shaders[i], length, nullptr, text.data());
    (type == GL_VERTEX_SHADER ? sources.vertex : sources.fragment) = text.c_str();
  }
  return sources;
}

GLuint MakeBareProgram(const ProgramSources& sources) {
  const GLuint program = glCreateProgram();
  glAttachShader(program, Compile(GL_VERTEX_SHADER, sources.vertex));
  glAttachShader(program, Compile(GL_FRAGMENT_SHADER, sources.fragment));
  glLinkProgram(program);
  GLint linked = GL_FALSE;
  glGetProgramiv(program, GL_LINK_STATUS, &linked);
  EXPECT_EQ(linked, GL_TRUE);
  return program;
}

BareLives::BareLives() {
  android::GPUBeautyFace engine;
  display_ = engine.m_eglDisplay;
  // A capture of planes has a program that comes from no cache.
  std::vector<unsigned char> planes(64 * 64);
  engine.InitCapture(planes.data(), planes.data(), 64, 64, nullptr, false);
  sources_ = SourcesOf(engine.m_pProgCheekSlimmer->m_hProgram);
  engine.DeInitCapture();
}

void BareLives::live(bool draws) const {
  constexpr EGLint kConfig[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE,
                                EGL_OPENGL_ES2_BIT, EGL_NONE};
  constexpr EGLint kVersion[] = {EGL_CONTEXT_CLIENT_VERSION, 2, EGL_NONE};
  constexpr EGLint kSize[] = {EGL_WIDTH, 1, EGL_HEIGHT, 1, EGL_NONE};
  EGLConfig config = nullptr;
  EGLint count = 0;
  EXPECT_EQ(eglInitialize(display_, nullptr, nullptr), EGL_TRUE);
  eglChooseConfig(display_, kConfig, &config, 1, &count);
  const EGLContext context = eglCreateContext(display_, config, EGL_NO_CONTEXT, kVersion);
  const EGLSurface surface = eglCreatePbufferSurface(display_, config, kSize);
  EXPECT_EQ(eglMakeCurrent(display_, surface, surface, context), EGL_TRUE);
  const GLuint program = MakeBareProgram(sources_);
  if (draws) DrawBarely(program);
  glDeleteProgram(program);
  eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
  eglDestroySurface(display_, surface);
  eglDestroyContext(display_, context);
  eglTerminate(display_);
}

}  // namespace lumora::test
