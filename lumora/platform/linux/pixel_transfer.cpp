// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/linux/pixel_transfer.h"

#include <cstring>

#include "lumora/platform/gl_api.h"
#include "lumora/platform/linux/owned_texture.h"

namespace lumora::platform {
namespace {

// A pixel-store parameter, set for the life of the object.
class PixelStoreScope {
 public:
  PixelStoreScope(bool exists, GLenum name, GLint value) : exists_(exists), name_(name) {
    if (!exists_) return;
    glGetIntegerv(name_, &before_);
    glPixelStorei(name_, value);
  }
  ~PixelStoreScope() {
    if (exists_) glPixelStorei(name_, before_);
  }
  PixelStoreScope(const PixelStoreScope&) = delete;
  PixelStoreScope& operator=(const PixelStoreScope&) = delete;

 private:
  const bool exists_;
  const GLenum name_;
  GLint before_ = 0;
};

// No buffer object at a pixel transfer target, for the life of the object.
class NoPixelBufferScope {
 public:
  NoPixelBufferScope(bool exists, GLenum target, GLenum query) : target_(target) {
    if (exists) glGetIntegerv(query, &before_);
    if (before_ != 0) glBindBuffer(target_, 0);
  }
  ~NoPixelBufferScope() {
    if (before_ != 0) glBindBuffer(target_, static_cast<GLuint>(before_));
  }
  NoPixelBufferScope(const NoPixelBufferScope&) = delete;
  NoPixelBufferScope& operator=(const NoPixelBufferScope&) = delete;

 private:
  const GLenum target_;
  GLint before_ = 0;
};

// Uploads come from rows of `stride` pixels.
class UnpackScope {
 public:
  UnpackScope(int stride, const TransferFeatures& features)
      : buffer_(features.pixel_buffers, GL_PIXEL_UNPACK_BUFFER_NV,
                GL_PIXEL_UNPACK_BUFFER_BINDING_NV),
        alignment_(true, GL_UNPACK_ALIGNMENT, 4),
        row_length_(features.unpack_subimage, GL_UNPACK_ROW_LENGTH_EXT, stride),
        skip_rows_(features.unpack_subimage, GL_UNPACK_SKIP_ROWS_EXT, 0),
        skip_pixels_(features.unpack_subimage, GL_UNPACK_SKIP_PIXELS_EXT, 0) {}

 private:
  const NoPixelBufferScope buffer_;
  const PixelStoreScope alignment_;
  const PixelStoreScope row_length_;
  const PixelStoreScope skip_rows_;
  const PixelStoreScope skip_pixels_;
};

// Read-backs go to rows of `stride` pixels.
class PackScope {
 public:
  PackScope(int stride, const TransferFeatures& features)
      : buffer_(features.pixel_buffers, GL_PIXEL_PACK_BUFFER_NV, GL_PIXEL_PACK_BUFFER_BINDING_NV),
        alignment_(true, GL_PACK_ALIGNMENT, 4),
        row_length_(features.pack_subimage, GL_PACK_ROW_LENGTH_NV, stride),
        skip_rows_(features.pack_subimage, GL_PACK_SKIP_ROWS_NV, 0),
        skip_pixels_(features.pack_subimage, GL_PACK_SKIP_PIXELS_NV, 0) {}

 private:
  const NoPixelBufferScope buffer_;
  const PixelStoreScope alignment_;
  const PixelStoreScope row_length_;
  const PixelStoreScope skip_rows_;
  const PixelStoreScope skip_pixels_;
};

// Binds a framebuffer for reading, leaving the one that is drawn to where the context has two.
class ReadFramebufferScope {
 public:
  ReadFramebufferScope(GLuint framebuffer, const TransferFeatures& features)
      : target_(features.read_framebuffer ? GL_READ_FRAMEBUFFER_NV : GL_FRAMEBUFFER) {
    glGetIntegerv(
        features.read_framebuffer ? GL_READ_FRAMEBUFFER_BINDING_NV : GL_FRAMEBUFFER_BINDING,
        &before_);
    glBindFramebuffer(target_, framebuffer);
  }
  ~ReadFramebufferScope() { glBindFramebuffer(target_, static_cast<GLuint>(before_)); }
  ReadFramebufferScope(const ReadFramebufferScope&) = delete;
  ReadFramebufferScope& operator=(const ReadFramebufferScope&) = delete;

  GLenum target() const { return target_; }

 private:
  const GLenum target_;
  GLint before_ = 0;
};

// Calls `copy(address, rectangle)` for the whole part at once where the context can step over row
// ends or there are none, else row by row.
template <typename Copy>
void ForEachRun(const CpuImage& image, const PixelRectangle& part, bool steps, const Copy& copy) {
  const int run = steps || part.width == image.stride ? part.height : 1;
  for (int row = 0; run > 0 && row < part.height; row += run) {
    const int y = part.y + row;
    const size_t offset =
        static_cast<size_t>(y) * static_cast<size_t>(image.stride) + static_cast<size_t>(part.x);
    copy(image.pixels + offset * kPixelBytes, PixelRectangle{part.x, y, part.width, run});
  }
}

}  // namespace

TransferFeatures QueryTransferFeatures() {
  const char* const version = reinterpret_cast<const char*>(glGetString(GL_VERSION));
  constexpr char kPrefix[] = "OpenGL ES ";
  const bool es3 = version != nullptr && std::strncmp(version, kPrefix, sizeof(kPrefix) - 1) == 0 &&
                   version[sizeof(kPrefix) - 1] >= '3';
  return {es3 || gl::ContextHasExtension("GL_EXT_unpack_subimage"),
          es3 || gl::ContextHasExtension("GL_NV_pack_subimage"),
          es3 || gl::ContextHasExtension("GL_NV_pixel_buffer_object"),
          es3 || gl::ContextHasExtension("GL_NV_framebuffer_blit")};
}

void AllocatePixels(int width, int height, const TransferFeatures& features) {
  const UnpackScope unpack(width, features);
  glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
}

void Upload(GLuint texture, const CpuImage& image, const PixelRectangle& part,
            const TransferFeatures& features) {
  const UnpackScope unpack(image.stride, features);
  const TextureBindingScope binding;
  glBindTexture(GL_TEXTURE_2D, texture);
  ForEachRun(image, part, features.unpack_subimage,
             [](const unsigned char* pixels, const PixelRectangle& run) {
               glTexSubImage2D(GL_TEXTURE_2D, 0, run.x, run.y, run.width, run.height, GL_RGBA,
                               GL_UNSIGNED_BYTE, pixels);
             });
}

void ReadBack(GLuint framebuffer, const CpuImage& image, const PixelRectangle& part,
              const TransferFeatures& features) {
  const PackScope pack(image.stride, features);
  const ReadFramebufferScope binding(framebuffer, features);
  ForEachRun(image, part, features.pack_subimage,
             [](unsigned char* pixels, const PixelRectangle& run) {
               glReadPixels(run.x, run.y, run.width, run.height, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
             });
}

void AttachColor(GLuint framebuffer, GLuint texture, const TransferFeatures& features) {
  const ReadFramebufferScope binding(framebuffer, features);
  glFramebufferTexture2D(binding.target(), GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
}

bool IsReadable(GLuint framebuffer, const TransferFeatures& features) {
  const ReadFramebufferScope binding(framebuffer, features);
  return glCheckFramebufferStatus(binding.target()) == GL_FRAMEBUFFER_COMPLETE;
}

void CopyPixel(GLuint framebuffer, GLuint texture, const TransferFeatures& features) {
  const ReadFramebufferScope source(framebuffer, features);
  const TextureBindingScope target;
  glBindTexture(GL_TEXTURE_2D, texture);
  glCopyTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 0, 0, 1, 1, 0);
}

}  // namespace lumora::platform
