// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/linux/memory_object_rehearsal.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <vector>

#include "lumora/platform/gl_api.h"
#include "lumora/platform/linux/memory_object.h"

namespace lumora::platform {
namespace {

using Pixel = uint32_t;
static_assert(sizeof(Pixel) == kPixelBytes);

// Rows that are no power of two long, so that a wrong row pitch cannot pass.
constexpr std::array<std::array<uint32_t, 2>, 2> kSizes = {{{96, 6}, {288, 160}}};
constexpr Pixel kFrames = 3;
// The same is drawn so many times, to keep a renderer busy: who does not wait for it reads too
// early.
constexpr int kDraws = 8;

// An image as the engine's are: texture and framebuffer over the EGL image of shared memory. The
// names go with the context.
class RehearsedImage {
 public:
  RehearsedImage(const VulkanMemory& device, const BufferGeometry& geometry)
      : geometry_(geometry), backing_(MakeMemoryObjectBacking(device, geometry)) {
    constexpr std::array<EGLint, 3> kAttributes = {EGL_IMAGE_PRESERVED_KHR, EGL_TRUE, EGL_NONE};
    if (backing_ == nullptr) return;
    const EGLDisplay display = eglGetCurrentDisplay();
    const EGLImageKHR image = backing_->CreateImage(display, kAttributes.data());
    if (image == EGL_NO_IMAGE_KHR) return;
    glGenTextures(1, &texture_);
    glBindTexture(GL_TEXTURE_2D, texture_);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    gl::Extensions().glEGLImageTargetTexture2DOES(GL_TEXTURE_2D, image);
    gl::Extensions().eglDestroyImageKHR(display, image);  // the texture keeps the memory
    glGenFramebuffers(1, &framebuffer_);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture_, 0);
  }

  bool complete() const {
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
    return framebuffer_ != 0 && backing_->kind() == BufferKind::MemoryObject &&
           glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
  }
  GLuint texture() const { return texture_; }
  GLuint framebuffer() const { return framebuffer_; }

  // The CPU's side, through what the engine's images use.
  bool Write(const std::vector<Pixel>& picture) {
    if (!backing_->BeginAccess()) return false;
    std::memcpy(backing_->address(), picture.data(), picture.size() * kPixelBytes);
    return backing_->Publish(geometry_.Whole());
  }
  bool WriteFrom(std::vector<Pixel>& picture) {
    return backing_->PublishFrom(Rows(picture), geometry_.Whole());
  }
  bool Holds(const std::vector<Pixel>& picture) {
    return backing_->Fetch(geometry_.Whole()) &&
           std::memcmp(backing_->address(), picture.data(), picture.size() * kPixelBytes) == 0;
  }
  bool ReadsInto(const std::vector<Pixel>& picture) {
    std::vector<Pixel> read(picture.size());
    return backing_->FetchInto(Rows(read), geometry_.Whole()) && read == picture;
  }

 private:
  CpuImage Rows(std::vector<Pixel>& picture) const {
    return {reinterpret_cast<unsigned char*>(picture.data()), static_cast<int>(geometry_.stride)};
  }

  const BufferGeometry geometry_;
  const std::unique_ptr<BufferBacking> backing_;
  GLuint texture_ = 0;
  GLuint framebuffer_ = 0;
};

std::vector<Pixel> Picture(const BufferGeometry& geometry, Pixel seed) {
  std::vector<Pixel> picture(size_t{geometry.stride} * geometry.height);
  Pixel value = seed;
  for (Pixel& pixel : picture) pixel = value = value * 1664525u + 1013904223u;
  return picture;
}

// The four channels the other way round, as the shader writes them: exact at any precision.
Pixel Turned(Pixel pixel) {
  return pixel << 24 | (pixel & 0xff00u) << 8 | (pixel >> 8 & 0xff00u) | pixel >> 24;
}

// What drawing `source` over `target` in `part` leaves there.
void Draw(const std::vector<Pixel>& source, std::vector<Pixel>& target, const PixelRectangle& part,
          const BufferGeometry& geometry) {
  for (int y = part.y; y < part.y + part.height; ++y) {
    const auto first = static_cast<size_t>(y) * geometry.stride + static_cast<size_t>(part.x);
    const auto from = source.begin() + static_cast<ptrdiff_t>(first);
    std::transform(from, from + part.width, target.begin() + static_cast<ptrdiff_t>(first), Turned);
  }
}

void AddShader(GLuint program, GLenum type, const char* text) {
  const GLuint shader = glCreateShader(type);
  glShaderSource(shader, 1, &text, nullptr);
  glCompileShader(shader);
  glAttachShader(program, shader);
}

// Makes the program that draws one image over another current, with its quad.
bool UseTurningProgram() {
  const GLuint program = glCreateProgram();
  AddShader(program, GL_VERTEX_SHADER, R"(
attribute vec2 corner;
varying vec2 at;
void main() {
  at = corner * 0.5 + 0.5;
  gl_Position = vec4(corner, 0.0, 1.0);
})");
  AddShader(program, GL_FRAGMENT_SHADER, R"(
#ifdef GL_FRAGMENT_PRECISION_HIGH
precision highp float;
#else
precision mediump float;
#endif
uniform sampler2D image;
varying vec2 at;
void main() {
  gl_FragColor = texture2D(image, at).abgr;
})");
  glBindAttribLocation(program, 0, "corner");
  glLinkProgram(program);
  GLint linked = GL_FALSE;
  glGetProgramiv(program, GL_LINK_STATUS, &linked);
  if (linked != GL_TRUE) return false;
  glUseProgram(program);
  static constexpr std::array<GLfloat, 8> kCorners = {-1, 1, -1, -1, 1, 1, 1, -1};
  glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, 0, kCorners.data());
  glEnableVertexAttribArray(0);
  return true;
}

void DrawOnGpu(const RehearsedImage& source, const RehearsedImage& target,
               const PixelRectangle& part) {
  glBindTexture(GL_TEXTURE_2D, source.texture());
  glBindFramebuffer(GL_FRAMEBUFFER, target.framebuffer());
  glEnable(GL_SCISSOR_TEST);
  glScissor(part.x, part.y, part.width, part.height);
  glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
  glDisable(GL_SCISSOR_TEST);
}

void CopyOnGpu(const RehearsedImage& source, const RehearsedImage& target,
               const PixelRectangle& part) {
  glBindFramebuffer(GL_FRAMEBUFFER, source.framebuffer());
  glBindTexture(GL_TEXTURE_2D, target.texture());
  glCopyTexSubImage2D(GL_TEXTURE_2D, 0, part.x, part.y, part.x, part.y, part.width, part.height);
}

bool RehearseFrames(const VulkanMemory& device, const BufferGeometry& geometry) {
  RehearsedImage frame(device, geometry);
  RehearsedImage work(device, geometry);
  RehearsedImage packed(device, geometry);
  if (!frame.complete() || !work.complete() || !packed.complete()) return false;
  const PixelRectangle whole = geometry.Whole();
  const PixelRectangle drawn{whole.width / 4, whole.height / 4, whole.width / 2, whole.height / 2};
  const PixelRectangle shown{whole.width / 3, 1, whole.width / 3, whole.height - 2};
  glViewport(0, 0, whole.width, whole.height);

  std::vector<Pixel> picture = Picture(geometry, 1);
  if (!frame.Write(picture)) return false;
  for (Pixel number = 1; number <= kFrames; ++number) {
    std::vector<Pixel> planes = Picture(geometry, 100 + number);
    if (!packed.WriteFrom(planes)) return false;
    CopyOnGpu(frame, work, whole);
    for (int i = 0; i < kDraws; ++i) DrawOnGpu(frame, work, drawn);
    DrawOnGpu(work, packed, shown);
    glFlush();
    glFinish();
    const std::vector<Pixel> next = Picture(geometry, 1 + number);
    if (!frame.Write(next)) return false;  // not before the draws have read the last one
    std::vector<Pixel> expected = picture;
    Draw(picture, expected, drawn, geometry);
    Draw(expected, planes, shown, geometry);
    if (!packed.ReadsInto(planes) || !work.Holds(expected)) return false;
    picture = next;
  }
  return true;
}

}  // namespace

bool RehearseFrames(const VulkanMemory& device) {
  if (!UseTurningProgram()) return false;
  const auto passes = [&](const auto& size) {
    return RehearseFrames(device, LayOut(size[0], size[1]));
  };
  return std::all_of(kSizes.begin(), kSizes.end(), passes) && glGetError() == GL_NO_ERROR;
}

}  // namespace lumora::platform
