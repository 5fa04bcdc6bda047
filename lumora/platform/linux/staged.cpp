// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/linux/staged.h"

#include <cstdlib>
#include <cstring>
#include <utility>

#include "lumora/platform/gl_api.h"
#include "lumora/platform/linux/texture_image.h"

namespace lumora::platform {
namespace {

struct FreeMemory {
  void operator()(unsigned char* memory) const { std::free(memory); }
};
using HeapMemory = std::unique_ptr<unsigned char, FreeMemory>;

// Zeroed and aligned to a cache line, for the vector stores of the frame expansion.
HeapMemory AllocateZeroed(size_t size) {
  void* memory = nullptr;
  constexpr size_t kCacheLine = 64;
  if (posix_memalign(&memory, kCacheLine, size) != 0) return nullptr;
  std::memset(memory, 0, size);
  return HeapMemory(static_cast<unsigned char*>(memory));
}

class StagedBacking final : public BufferBacking {
 public:
  StagedBacking(HeapMemory memory, const BufferGeometry& geometry)
      : memory_(std::move(memory)), geometry_(geometry) {}

  BufferKind kind() const override { return BufferKind::Staged; }
  unsigned char* address() const override { return memory_.get(); }

  EGLImageKHR CreateImage(EGLDisplay display, const EGLint* attributes) override {
    if (eglGetCurrentContext() == EGL_NO_CONTEXT) return EGL_NO_IMAGE_KHR;
    texture_.emplace(address(), geometry_);
    return texture_->CreateImage(display, attributes);
  }

  bool Reachable() override { return !texture_ || texture_->Reachable(); }
  bool BeginAccess() override { return true; }  // GL has its own copy of what it uses
  bool Publish(const PixelRectangle& part) override { return !texture_ || texture_->Publish(part); }
  bool Fetch(const PixelRectangle& part) override { return !texture_ || texture_->Fetch(part); }
  bool PublishFrom(const CpuImage& image, const PixelRectangle& part) override {
    return texture_ && texture_->PublishFrom(image, part);
  }
  bool FetchInto(const CpuImage& image, const PixelRectangle& part) override {
    return texture_ && texture_->FetchInto(image, part);
  }

 private:
  const HeapMemory memory_;
  const BufferGeometry geometry_;
  std::optional<StagedTexture> texture_;
};

}  // namespace

StagedTexture::StagedTexture(unsigned char* pixels, const BufferGeometry& geometry)
    : image_{pixels, static_cast<int>(geometry.stride)}, features_(QueryTransferFeatures()) {
  const TextureBindingScope binding;
  texture_.emplace();
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);  // one level is complete
  // A texture without storage makes the EGL image fail with a reason of EGL's own.
  if (!FitsTexture(geometry)) return;
  const PixelRectangle whole = geometry.Whole();
  AllocatePixels(whole.width, whole.height, features_);
  Upload(texture_->name(), image_, whole, features_);
}

StagedTexture::~StagedTexture() {
  if (framebuffer_ != 0 && texture_->IsHere()) glDeleteFramebuffers(1, &framebuffer_);
}

EGLImageKHR StagedTexture::CreateImage(EGLDisplay display, const EGLint* attributes) {
  EGLImageKHR image = CreateTextureImage(display, texture_->name(), attributes);
  if (image != EGL_NO_IMAGE_KHR && !MakeFramebuffer()) {
    gl::Extensions().eglDestroyImageKHR(display, image);
    image = EGL_NO_IMAGE_KHR;
  }
  shown_ = image != EGL_NO_IMAGE_KHR;
  return image;
}

bool StagedTexture::MakeFramebuffer() {
  if (framebuffer_ != 0) return true;
  glGenFramebuffers(1, &framebuffer_);
  if (framebuffer_ == 0) return false;
  AttachColor(framebuffer_, texture_->name(), features_);
  return true;
}

bool StagedTexture::Reachable() const {
  return !shown_ || texture_->IsContextCurrent();
}

bool StagedTexture::Publish(const PixelRectangle& part) {
  return !shown_ || PublishFrom(image_, part);
}

bool StagedTexture::Fetch(const PixelRectangle& part) {
  return !shown_ || FetchInto(image_, part);
}

bool StagedTexture::PublishFrom(const CpuImage& image, const PixelRectangle& part) {
  if (!shown_ || !texture_->IsContextCurrent()) return false;
  Upload(texture_->name(), image, part, features_);
  return true;
}

bool StagedTexture::FetchInto(const CpuImage& image, const PixelRectangle& part) {
  if (!shown_ || !texture_->IsContextCurrent()) return false;
  ReadBack(framebuffer_, image, part, features_);
  return true;
}

std::unique_ptr<BufferBacking> MakeStagedBacking(const BufferGeometry& geometry) {
  HeapMemory memory = AllocateZeroed(geometry.size);
  if (memory == nullptr) return nullptr;
  return std::make_unique<StagedBacking>(std::move(memory), geometry);
}

}  // namespace lumora::platform
