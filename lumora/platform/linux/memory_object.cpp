// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/linux/memory_object.h"

#include <sys/stat.h>
#include <unistd.h>

#include <new>
#include <optional>

#include "lumora/platform/gl_api.h"
#include "lumora/platform/linux/owned_texture.h"
#include "lumora/platform/linux/staged.h"
#include "lumora/platform/linux/texture_image.h"

namespace lumora::platform {
namespace {

// A file descriptor that GL takes over when it imports the memory behind it, and only then.
class ImportedDescriptor {
 public:
  explicit ImportedDescriptor(int descriptor) : descriptor_(descriptor) {
    known_ = fstat(descriptor, &file_) == 0;
  }
  int get() const { return descriptor_; }

  // After GL refused the memory and forgot what it had of it. GL does not tell whether it took the
  // descriptor before; if it did, the number may be another file's by now.
  void CloseIfOurs() const {
    struct stat now {};
    if (!known_ || fstat(descriptor_, &now) != 0) return;
    if (now.st_dev == file_.st_dev && now.st_ino == file_.st_ino) close(descriptor_);
  }

 private:
  const int descriptor_;
  struct stat file_ {};
  bool known_ = false;
};

// A texture whose pixels are imported memory, and what it takes to wait for it.
// Context: the one that is current at construction.
class ImportedTexture {
 public:
  // Takes `descriptor` over. Leaves the texture bound.
  ImportedTexture(int descriptor, size_t size, const BufferGeometry& geometry)
      : features_(QueryTransferFeatures()) {
    const ImportedDescriptor imported(descriptor);
    const gl::ExtensionApi& api = gl::Extensions();
    const PixelRectangle whole = geometry.Whole();
    api.glCreateMemoryObjectsEXT(1, &memory_object_);
    api.glImportMemoryFdEXT(memory_object_, size, GL_HANDLE_TYPE_OPAQUE_FD_EXT, imported.get());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_TILING_EXT, GL_LINEAR_TILING_EXT);
    api.glTexStorageMem2DEXT(GL_TEXTURE_2D, 1, GL_RGBA8_OES, whole.width, whole.height,
                             memory_object_, 0);
    complete_ = pixel_.name() != 0 && texture_.name() != 0 && MakeFramebuffer();
    if (complete_) return;
    DeleteMemoryObject();
    imported.CloseIfOurs();
    while (glGetError() != GL_NO_ERROR) continue;  // copies take over: nothing failed
  }
  ~ImportedTexture() {
    if (!texture_.IsHere()) return;
    // Mesa's llvmpipe unmaps imported memory with its texture, also under draws that still sample
    // it.
    if (complete_) WaitForGpu();
    if (framebuffer_ != 0) glDeleteFramebuffers(1, &framebuffer_);
    DeleteMemoryObject();
  }
  ImportedTexture(const ImportedTexture&) = delete;
  ImportedTexture& operator=(const ImportedTexture&) = delete;

  // Whether the memory was imported.
  bool complete() const { return complete_; }
  const OwnedTexture& texture() const { return texture_; }

  // Waits until the GPU has carried out everything that the context was told, whatever image it
  // was about. glFinish alone is not enough: Mesa's zink lets it return at once when nothing was
  // told since the last glFlush, though what was flushed is still running. So there is always one
  // command more to wait for.
  void WaitForGpu() const {
    CopyPixel(framebuffer_, pixel_.name(), features_);
    glFinish();
  }

 private:
  bool MakeFramebuffer() {
    glGenFramebuffers(1, &framebuffer_);
    if (framebuffer_ == 0) return false;
    AttachColor(framebuffer_, texture_.name(), features_);
    return IsReadable(framebuffer_, features_);
  }

  void DeleteMemoryObject() {
    if (memory_object_ != 0) gl::Extensions().glDeleteMemoryObjectsEXT(1, &memory_object_);
    memory_object_ = 0;
  }

  const TransferFeatures features_;
  OwnedTexture pixel_;  ///< where the copy to wait for goes
  OwnedTexture texture_;
  GLuint framebuffer_ = 0;  ///< shows the texture
  GLuint memory_object_ = 0;
  bool complete_ = false;
};

class MemoryObjectBacking final : public BufferBacking {
 public:
  MemoryObjectBacking(const VulkanMemory& device, const VulkanAllocation& allocation,
                      const BufferGeometry& geometry)
      : device_(device), allocation_(allocation), geometry_(geometry) {}

  ~MemoryObjectBacking() override {
    imported_.reset();
    device_.Release(allocation_);
  }

  BufferKind kind() const override {
    return staged_ ? BufferKind::Staged : BufferKind::MemoryObject;
  }
  unsigned char* address() const override { return allocation_.address; }

  EGLImageKHR CreateImage(EGLDisplay display, const EGLint* attributes) override {
    imported_.reset();
    staged_.reset();
    if (eglGetCurrentContext() == EGL_NO_CONTEXT) return EGL_NO_IMAGE_KHR;
    const EGLImageKHR image = ImportImage(display, attributes);
    if (image != EGL_NO_IMAGE_KHR) return image;
    imported_.reset();
    staged_.emplace(address(), geometry_);
    return staged_->CreateImage(display, attributes);
  }

  bool Reachable() override {
    if (staged_) return staged_->Reachable();
    return !imported_ || imported_->texture().IsContextCurrent();
  }

  bool BeginAccess() override { return staged_ || Finish(); }

  bool Publish(const PixelRectangle& part) override { return !staged_ || staged_->Publish(part); }

  bool Fetch(const PixelRectangle& part) override {
    return staged_ ? staged_->Fetch(part) : Finish();
  }

  bool PublishFrom(const CpuImage& image, const PixelRectangle& part) override {
    if (staged_) return staged_->PublishFrom(image, part);
    if (!imported_ || !Finish()) return false;
    CopyPart(image, own(), part);
    return true;
  }

  bool FetchInto(const CpuImage& image, const PixelRectangle& part) override {
    if (staged_) return staged_->FetchInto(image, part);
    if (!imported_ || !Finish()) return false;
    CopyPart(own(), image, part);
    return true;
  }

 private:
  CpuImage own() const { return {address(), static_cast<int>(geometry_.stride)}; }

  bool Finish() {
    if (!Reachable()) return false;
    if (imported_) imported_->WaitForGpu();
    return true;
  }

  EGLImageKHR ImportImage(EGLDisplay display, const EGLint* attributes) {
    if (CurrentMemoryDevice() != &device_ || !FitsTexture(geometry_)) return EGL_NO_IMAGE_KHR;
    const int descriptor = device_.ExportDescriptor(allocation_);
    if (descriptor < 0) return EGL_NO_IMAGE_KHR;
    const TextureBindingScope binding;
    imported_.emplace(descriptor, allocation_.size, geometry_);
    if (!imported_->complete()) return EGL_NO_IMAGE_KHR;
    return CreateTextureImage(display, imported_->texture().name(), attributes);
  }

  const VulkanMemory& device_;
  const VulkanAllocation allocation_;
  const BufferGeometry geometry_;
  std::optional<ImportedTexture> imported_;
  std::optional<StagedTexture> staged_;  ///< in a context that cannot import
};

}  // namespace

const VulkanMemory* CurrentMemoryDevice() {
  if (eglGetCurrentContext() == EGL_NO_CONTEXT) return nullptr;
  if (!gl::ContextHasExtension("GL_EXT_memory_object") ||
      !gl::ContextHasExtension("GL_EXT_memory_object_fd")) {
    return nullptr;
  }
  DeviceIdentity identity{};
  gl::Extensions().glGetUnsignedBytei_vEXT(GL_DEVICE_UUID_EXT, 0, identity.device.data());
  gl::Extensions().glGetUnsignedBytevEXT(GL_DRIVER_UUID_EXT, identity.driver.data());
  return VulkanMemory::Find(identity);
}

std::unique_ptr<BufferBacking> MakeMemoryObjectBacking(const VulkanMemory& device,
                                                       const BufferGeometry& geometry) {
  const std::optional<VulkanAllocation> allocation = device.Allocate(geometry);
  if (!allocation) return nullptr;
  try {
    return std::make_unique<MemoryObjectBacking>(device, *allocation, geometry);
  } catch (const std::bad_alloc&) {
    device.Release(*allocation);
    throw;
  }
}

}  // namespace lumora::platform
