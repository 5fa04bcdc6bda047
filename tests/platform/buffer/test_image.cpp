// SPDX-License-Identifier: Apache-2.0
#include "platform/buffer/test_image.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace lumora::test {
namespace {

using reference::Image;

GLuint CompileShader(GLenum type, const char* text) {
  const GLuint shader = glCreateShader(type);
  glShaderSource(shader, 1, &text, nullptr);
  glCompileShader(shader);
  return shader;
}

GLuint MakeCopyProgram() {
  const GLuint program = glCreateProgram();
  glAttachShader(program, CompileShader(GL_VERTEX_SHADER, R"(
    attribute vec2 position;
    attribute vec2 coordinate;
    varying vec2 at;
    void main() { at = coordinate; gl_Position = vec4(position, 0.0, 1.0); })"));
  glAttachShader(program, CompileShader(GL_FRAGMENT_SHADER, R"(
    precision highp float;
    varying vec2 at;
    uniform highp sampler2D image;
    void main() { gl_FragColor = texture2D(image, at); })"));
  glBindAttribLocation(program, 0, "position");
  glBindAttribLocation(program, 1, "coordinate");
  glLinkProgram(program);
  return program;
}

size_t RowBytes(int width) {
  return static_cast<size_t>(width) * 4;
}

}  // namespace

TestImage::TestImage(int width, int height)
    : width_(width),
      height_(height),
      buffer_(new platform::GraphicBuffer(static_cast<uint32_t>(width),
                                          static_cast<uint32_t>(height),
                                          platform::HAL_PIXEL_FORMAT_RGBA_8888, 0x130)) {
  constexpr std::array<EGLint, 3> kAttributes = {EGL_IMAGE_PRESERVED_KHR, EGL_TRUE, EGL_NONE};
  image_ = buffer_->createImage(eglGetCurrentDisplay(), kAttributes.data());
  EXPECT_NE(image_, EGL_NO_IMAGE_KHR);
  glGenTextures(1, &texture_);
  glBindTexture(GL_TEXTURE_2D, texture_);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
  gl::Extensions().glEGLImageTargetTexture2DOES(GL_TEXTURE_2D, image_);
  buffer_->attachTexture(texture_);
  glGenFramebuffers(1, &framebuffer_);
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
  glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture_, 0);
  EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), GLenum{GL_FRAMEBUFFER_COMPLETE});
}

TestImage::~TestImage() {
  if (texture_ == 0) return;
  buffer_->detachTexture();
  glDeleteFramebuffers(1, &framebuffer_);
  glDeleteTextures(1, &texture_);
  gl::Extensions().eglDestroyImageKHR(eglGetCurrentDisplay(), image_);
}

void TestImage::write(unsigned char* address, const Image& picture) const {
  for (int row = 0; row < height_; ++row) {
    std::memcpy(address + static_cast<size_t>(row) * RowBytes(static_cast<int>(buffer_->stride())),
                picture.bytes.data() + static_cast<size_t>(row) * RowBytes(width_),
                RowBytes(width_));
  }
}

void TestImage::upload(const Image& picture) {
  write(buffer_->lockPixels(), picture);
  EXPECT_EQ(buffer_->clean(), 0);
}

Image TestImage::read() {
  const unsigned char* const address = buffer_->lockPixels();
  Image picture(width_, height_);
  for (int row = 0; row < height_; ++row) {
    std::memcpy(picture.bytes.data() + static_cast<size_t>(row) * RowBytes(width_),
                address + static_cast<size_t>(row) * RowBytes(static_cast<int>(buffer_->stride())),
                RowBytes(width_));
  }
  return picture;
}

void TestImage::AbandonContext(EGLDisplay display) {
  gl::Extensions().eglDestroyImageKHR(display, image_);
  texture_ = 0;
}

void Clear(const TestImage& image, unsigned char level, Notice notice) {
  glBindFramebuffer(GL_FRAMEBUFFER, image.framebuffer());
  const GLfloat value = static_cast<GLfloat>(level) / 255.0f;
  glClearColor(value, value, value, value);
  if (notice == Notice::Announced) platform::BeforeDraw();
  glClear(GL_COLOR_BUFFER_BIT);
}

void Draw(GLuint texture, const TestImage& image, int width, int height, float first, float last) {
  const std::array<GLfloat, 8> positions = {-1, -1, 1, -1, -1, 1, 1, 1};
  const std::array<GLfloat, 8> coordinates = {first, first, last, first, first, last, last, last};
  glBindFramebuffer(GL_FRAMEBUFFER, image.framebuffer());
  glViewport(0, 0, width, height);
  glBindTexture(GL_TEXTURE_2D, texture);
  const GLuint program = MakeCopyProgram();
  glUseProgram(program);
  glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, 0, positions.data());
  glVertexAttribPointer(1, 2, GL_FLOAT, GL_FALSE, 0, coordinates.data());
  glEnableVertexAttribArray(0);
  glEnableVertexAttribArray(1);
  platform::BeforeDraw();
  glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
  glDeleteProgram(program);
}

Image Shown(const TestImage& image) {
  return ReadTexture(image.texture(), image.width(), image.height());
}

Image Pattern(int width, int height, unsigned seed) {
  Image picture(width, height);
  unsigned state = seed * 2654435761u + 1;
  for (auto& byte : picture.bytes) {
    state = state * 1664525u + 1013904223u;
    byte = static_cast<unsigned char>(state >> 24);
  }
  return picture;
}

Image Plain(int width, int height, unsigned char level) {
  Image picture(width, height);
  picture.fill(level, level, level, level);
  return picture;
}

Image PatternImage(unsigned seed) {
  return Pattern(kWidth, kHeight, seed);
}

Image PlainImage(unsigned char level) {
  return Plain(kWidth, kHeight, level);
}

Image Patched(Image picture, const Image& patch, const platform::PixelRectangle& part) {
  for (int y = part.y; y < part.y + part.height; ++y) {
    std::copy_n(patch.pixel(part.x, y), part.width * 4, picture.pixel(part.x, y));
  }
  return picture;
}

void BufferTest::SetUp() {
  GlTest::SetUp();
  if (platform::PreferredBufferKind() != GetParam()) {
    GTEST_SKIP() << platform::BufferKindName(GetParam()) << " buffers are not available here";
  }
}

}  // namespace lumora::test
