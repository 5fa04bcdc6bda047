// SPDX-License-Identifier: Apache-2.0
// A graphic buffer with its EGL image, texture and framebuffer, as the library's images have them.
#ifndef LUMORA_TESTS_PLATFORM_TEST_IMAGE_H_
#define LUMORA_TESTS_PLATFORM_TEST_IMAGE_H_

#include <GLES2/gl2.h>

#include <cstdint>
#include <string>

#include "lumora/platform/gl_api.h"
#include "lumora/platform/graphic_buffer.h"
#include "reference/image.h"
#include "support/gl_test.h"
#include "support/scoped.h"

namespace lumora::test {

/// The size of most tests' images, whose rows are as long as the buffer's; all of such an image,
/// and a part.
constexpr int kWidth = 64;
constexpr int kHeight = 8;
constexpr platform::PixelRectangle kWhole{0, 0, kWidth, kHeight};
constexpr platform::PixelRectangle kPart{5, 2, 20, 3};

/// Needs a current context; leaves its texture and framebuffer bound.
class TestImage {
 public:
  TestImage(int width, int height);
  ~TestImage();
  TestImage(const TestImage&) = delete;
  TestImage& operator=(const TestImage&) = delete;

  int width() const { return width_; }
  int height() const { return height_; }
  platform::GraphicBuffer& buffer() { return *buffer_; }
  GLuint texture() const { return texture_; }
  GLuint framebuffer() const { return framebuffer_; }

  /// Writes the picture through `address`, which has the buffer's rows.
  void write(unsigned char* address, const reference::Image& picture) const;
  /// Locks, writes, unlocks.
  void upload(const reference::Image& picture);
  /// Locks and reads.
  reference::Image read();

  /// Ends the EGL image and forgets texture and framebuffer, as when their context has gone.
  void AbandonContext(EGLDisplay display);
  /// The buffer's last reference goes.
  void DropBuffer() { buffer_.clear(); }

 private:
  const int width_;
  const int height_;
  platform::sp<platform::GraphicBuffer> buffer_;
  EGLImageKHR image_ = EGL_NO_IMAGE_KHR;
  GLuint texture_ = 0;
  GLuint framebuffer_ = 0;
};

/// Whether a draw is announced by BeforeDraw.
enum class Notice { Announced, Silent };

/// Fills the image's framebuffer with one colour.
void Clear(const TestImage& image, unsigned char level, Notice notice = Notice::Announced);

/// Draws `texture` over the whole image; texture coordinates run from `first` to `last`.
void Draw(GLuint texture, const TestImage& image, int width, int height, float first = 0.0f,
          float last = 1.0f);

/// What the GPU samples of the image.
reference::Image Shown(const TestImage& image);

/// A picture whose every pixel is different from its neighbours; `seed` gives another one.
reference::Image Pattern(int width, int height, unsigned seed);
/// A picture of one level in all four channels.
reference::Image Plain(int width, int height, unsigned char level);
/// The same of kWidth x kHeight pixels.
reference::Image PatternImage(unsigned seed);
reference::Image PlainImage(unsigned char level);
/// The picture with `part` of another one.
reference::Image Patched(reference::Image picture, const reference::Image& patch,
                         const platform::PixelRectangle& part);

/// A context, with one kind of buffers forced. Skipped where the kind is not available.
class BufferTest : public GlTest, public testing::WithParamInterface<platform::BufferKind> {
 protected:
  void SetUp() override;

 private:
  const ScopedEnvironment forced_{"LUMORA_BUFFER", platform::BufferKindName(GetParam())};
};

inline const auto kBufferKinds =
    testing::Values(platform::BufferKind::Staged, platform::BufferKind::MemoryObject);

inline std::string KindName(const testing::TestParamInfo<platform::BufferKind>& info) {
  return platform::BufferKindName(info.param);
}

}  // namespace lumora::test

#endif  // LUMORA_TESTS_PLATFORM_TEST_IMAGE_H_
