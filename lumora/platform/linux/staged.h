// SPDX-License-Identifier: Apache-2.0
// Staged images: private CPU memory and a texture, kept equal by copies.
#ifndef LUMORA_PLATFORM_LINUX_STAGED_H_
#define LUMORA_PLATFORM_LINUX_STAGED_H_

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <memory>
#include <optional>

#include "lumora/platform/buffer/buffer_backing.h"
#include "lumora/platform/buffer/buffer_geometry.h"
#include "lumora/platform/linux/owned_texture.h"
#include "lumora/platform/linux/pixel_transfer.h"

namespace lumora::platform {

/// The texture side of a staged image, over CPU memory that somebody else owns.
/// Context: the one that is current at construction; operations elsewhere return false.
class StagedTexture {
 public:
  /// Takes the CPU memory's pixels over. Bindings of the context are restored.
  StagedTexture(unsigned char* pixels, const BufferGeometry& geometry);
  ~StagedTexture();
  StagedTexture(const StagedTexture&) = delete;
  StagedTexture& operator=(const StagedTexture&) = delete;

  /// All as BufferBacking's. Without an image there is nothing to copy, and the first two copies
  /// succeed.
  EGLImageKHR CreateImage(EGLDisplay display, const EGLint* attributes);

  bool Reachable() const;
  bool Publish(const PixelRectangle& part);
  bool Fetch(const PixelRectangle& part);
  bool PublishFrom(const CpuImage& image, const PixelRectangle& part);
  bool FetchInto(const CpuImage& image, const PixelRectangle& part);

 private:
  // Made with the image: a read-back has no way to tell that it could not be.
  bool MakeFramebuffer();

  const CpuImage image_;
  TransferFeatures features_;
  std::optional<OwnedTexture> texture_;
  GLuint framebuffer_ = 0;  ///< for reading back
  bool shown_ = false;      ///< by an EGL image
};

/// Null when there is not enough memory for the pixels; throws std::bad_alloc when not for itself.
std::unique_ptr<BufferBacking> MakeStagedBacking(const BufferGeometry& geometry);

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_LINUX_STAGED_H_
