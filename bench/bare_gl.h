// SPDX-License-Identifier: Apache-2.0
// What a good programmer would write against OpenGL ES directly: the anchor that the engine is
// measured against. Same shader texts and same draws, and nothing around them.
#ifndef LUMORA_BENCH_BARE_GL_H_
#define LUMORA_BENCH_BARE_GL_H_

#include <cstdint>
#include <initializer_list>
#include <string>

#include "lumora/platform/gl_api.h"

namespace lumora::bench {

/// A context of its own on the display that the library would take.
class BareContext {
 public:
  BareContext();
  ~BareContext();
  BareContext(const BareContext&) = delete;
  BareContext& operator=(const BareContext&) = delete;

  void MakeCurrent() const;

 private:
  EGLDisplay display_ = EGL_NO_DISPLAY;
  EGLConfig config_ = nullptr;
  EGLSurface surface_ = EGL_NO_SURFACE;
  EGLContext context_ = EGL_NO_CONTEXT;
  bool referenced_ = false;
};

/// Compiles and links; throws std::runtime_error with the driver's words.
GLuint CompileProgram(const char* vertex, const char* fragment);

/// A program with its two attributes at 0 (position) and 1 (texture coordinates). Uniforms are set
/// once: a name that the program does not use is left out.
class BareProgram {
 public:
  BareProgram(const char* vertex, const char* fragment);

  GLuint name() const { return program_; }
  BareProgram& Sampler(const char* uniform, int unit);
  BareProgram& Floats(const char* uniform, int components, int count, const float* values);
  BareProgram& Matrix3(const char* uniform, const float* values);
  BareProgram& Matrix4(const char* uniform, const float* values);
  int Location(const char* uniform) const;

 private:
  GLuint program_;
};

/// An RGBA texture with the framebuffer that draws into it.
struct BareImage {
  GLuint texture = 0;
  GLuint framebuffer = 0;
  int width = 0;
  int height = 0;
};
BareImage MakeBareImage(int width, int height, GLint filter = GL_NEAREST,
                        GLint wrap = GL_CLAMP_TO_EDGE);

/// A rectangle of texture coordinates.
struct TextureRectangle {
  float s0 = 0, t0 = 0, s1 = 1, t1 = 1;
};

/// Draws a full quad of `source` (unit 0) into all of `target`.
void DrawBare(const BareProgram& program, GLuint source, const BareImage& target,
              const TextureRectangle& from = {});

/// The programs that every chain of frames ends with, for images of that size, and their targets.
class BarePacker {
 public:
  BarePacker(int width, int height);
  void Draw(GLuint source) const;
  /// Both targets' bytes into planes with rows of `stride` bytes, at an even (x, y). Waits for the
  /// GPU.
  void Read(uint8_t* luma, uint8_t* chroma, int stride) const;

 private:
  BareProgram luma_program_, chroma_program_;
  BareImage luma_, chroma_;
};

/// Uploads rows of `stride` texels into the corner of a texture.
void UploadTexels(GLuint texture, int x, int y, int width, int height, const void* texels,
                  int stride);

/// Throws std::runtime_error when GL reports an error.
void CheckBare(const std::string& where);

}  // namespace lumora::bench

#endif  // LUMORA_BENCH_BARE_GL_H_
