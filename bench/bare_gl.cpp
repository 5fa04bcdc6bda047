// SPDX-License-Identifier: Apache-2.0
#include "bench/bare_gl.h"

#include "bench/counters.h"
#include "lumora/platform/offscreen_context.h"
#include "lumora/programs/shader_texts.h"

namespace lumora::bench {
namespace {

constexpr GLuint kPosition = 0;
constexpr GLuint kTextureCoordinates = 1;
// ES 3 names of what contexts of ES 2 have as EXT_unpack_subimage and NV_pack_subimage.
constexpr GLenum kUnpackRowLength = 0x0CF2;

void Ignore(const char* /*step*/) {}

GLuint CompileShader(GLenum kind, const char* text) {
  const GLuint shader = glCreateShader(kind);
  glShaderSource(shader, 1, &text, nullptr);
  glCompileShader(shader);
  GLint compiled = GL_FALSE;
  glGetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
  char words[1024] = "";
  if (compiled == GL_FALSE) glGetShaderInfoLog(shader, sizeof(words), nullptr, words);
  Require(compiled == GL_TRUE, std::string("a shader does not compile: ") + words);
  return shader;
}

}  // namespace

BareContext::BareContext() {
  const bool made = platform::CreateOffscreenContext({display_, config_, surface_, context_},
                                                     referenced_, Ignore);
  Require(made, "no usable display");
}

BareContext::~BareContext() {
  platform::DestroyOffscreenContext({display_, config_, surface_, context_}, referenced_, Ignore);
}

void BareContext::MakeCurrent() const {
  Require(eglMakeCurrent(display_, surface_, surface_, context_) == EGL_TRUE,
          "the bare context cannot be made current");
}

GLuint CompileProgram(const char* vertex, const char* fragment) {
  const GLuint program = glCreateProgram();
  for (const auto& [kind, text] :
       {std::pair{GL_VERTEX_SHADER, vertex}, std::pair{GL_FRAGMENT_SHADER, fragment}}) {
    const GLuint shader = CompileShader(static_cast<GLenum>(kind), text);
    glAttachShader(program, shader);
    glDeleteShader(shader);
  }
  glBindAttribLocation(program, kPosition, "a_vertexCoord");
  glBindAttribLocation(program, kTextureCoordinates, "a_textureCoord");
  glLinkProgram(program);
  GLint linked = GL_FALSE;
  glGetProgramiv(program, GL_LINK_STATUS, &linked);
  Require(linked == GL_TRUE, "a program does not link");
  return program;
}

BareProgram::BareProgram(const char* vertex, const char* fragment)
    : program_(CompileProgram(vertex, fragment)) {
  Sampler("s_texture0", 0);
}

int BareProgram::Location(const char* uniform) const {
  glUseProgram(program_);
  return glGetUniformLocation(program_, uniform);
}

BareProgram& BareProgram::Sampler(const char* uniform, int unit) {
  glUniform1i(Location(uniform), unit);
  return *this;
}

BareProgram& BareProgram::Floats(const char* uniform, int components, int count,
                                 const float* values) {
  const int location = Location(uniform);
  if (components == 1) glUniform1fv(location, count, values);
  if (components == 2) glUniform2fv(location, count, values);
  if (components == 3) glUniform3fv(location, count, values);
  if (components == 4) glUniform4fv(location, count, values);
  return *this;
}

BareProgram& BareProgram::Matrix3(const char* uniform, const float* values) {
  glUniformMatrix3fv(Location(uniform), 1, GL_FALSE, values);
  return *this;
}

BareProgram& BareProgram::Matrix4(const char* uniform, const float* values) {
  glUniformMatrix4fv(Location(uniform), 1, GL_FALSE, values);
  return *this;
}

BareImage MakeBareImage(int width, int height, GLint filter, GLint wrap) {
  BareImage image{0, 0, width, height};
  glGenTextures(1, &image.texture);
  glBindTexture(GL_TEXTURE_2D, image.texture);
  glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, wrap);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, wrap);
  glGenFramebuffers(1, &image.framebuffer);
  glBindFramebuffer(GL_FRAMEBUFFER, image.framebuffer);
  glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, image.texture, 0);
  Require(glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE,
          "a framebuffer is not complete");
  return image;
}

void DrawBare(const BareProgram& program, GLuint source, const BareImage& target,
              const TextureRectangle& from) {
  static constexpr float kCorners[8] = {-1, 1, -1, -1, 1, -1, 1, 1};
  static constexpr GLushort kTriangles[6] = {0, 1, 2, 0, 2, 3};
  const float coordinates[8] = {from.s0, from.t1, from.s0, from.t0,
                                from.s1, from.t0, from.s1, from.t1};
  glUseProgram(program.name());
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_2D, source);
  glBindFramebuffer(GL_FRAMEBUFFER, target.framebuffer);
  glViewport(0, 0, target.width, target.height);
  glVertexAttribPointer(kPosition, 2, GL_FLOAT, GL_FALSE, 0, kCorners);
  glVertexAttribPointer(kTextureCoordinates, 2, GL_FLOAT, GL_FALSE, 0, coordinates);
  glEnableVertexAttribArray(kPosition);
  glEnableVertexAttribArray(kTextureCoordinates);
  glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, kTriangles);
}

BarePacker::BarePacker(int width, int height)
    : luma_program_(shaders::kPassThroughVert, shaders::kRgbToYFrag),
      chroma_program_(shaders::kPassThroughVert, shaders::kRgbToUvFrag),
      luma_(MakeBareImage(width / 4, height)),
      chroma_(MakeBareImage(width / 4, height / 2)) {
  const auto w = static_cast<float>(width);
  const float pixels[8] = {-1.5f / w, 0, -0.5f / w, 0, 0.5f / w, 0, 1.5f / w, 0};
  const float pairs[4] = {-1.0f / w, 0, 1.0f / w, 0};
  luma_program_.Floats("u_shift", 2, 4, pixels);
  chroma_program_.Floats("u_shift", 2, 2, pairs);
}

void BarePacker::Draw(GLuint source) const {
  DrawBare(luma_program_, source, luma_);
  DrawBare(chroma_program_, source, chroma_);
}

void BarePacker::Read(uint8_t* luma, uint8_t* chroma, int stride) const {
  glPixelStorei(GL_PACK_ROW_LENGTH_NV, stride / 4);
  for (const auto& [image, plane] : {std::pair{&luma_, luma}, std::pair{&chroma_, chroma}}) {
    glBindFramebuffer(GL_FRAMEBUFFER, image->framebuffer);
    glReadPixels(0, 0, image->width, image->height, GL_RGBA, GL_UNSIGNED_BYTE, plane);
  }
  glPixelStorei(GL_PACK_ROW_LENGTH_NV, 0);
}

void UploadTexels(GLuint texture, int x, int y, int width, int height, const void* texels,
                  int stride) {
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_2D, texture);
  glPixelStorei(kUnpackRowLength, stride);
  glTexSubImage2D(GL_TEXTURE_2D, 0, x, y, width, height, GL_RGBA, GL_UNSIGNED_BYTE, texels);
  glPixelStorei(kUnpackRowLength, 0);
}

void CheckBare(const std::string& where) {
  const GLenum error = glGetError();
  Require(error == GL_NO_ERROR, where + ": GL error " + std::to_string(error));
}

}  // namespace lumora::bench
