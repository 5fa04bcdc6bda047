// SPDX-License-Identifier: Apache-2.0
// The kinds of memory behind a graphic buffer, as each platform body provides them.
#ifndef LUMORA_PLATFORM_BUFFER_BUFFER_BACKING_H_
#define LUMORA_PLATFORM_BUFFER_BUFFER_BACKING_H_

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <memory>

#include "lumora/platform/buffer/buffer_geometry.h"
#include "lumora/platform/buffer_kind.h"

namespace lumora::platform {

/// Memory of one image and its GL side, which exists from CreateImage on.
/// Thread and context: GL work happens only while the context of CreateImage is current.
class BufferBacking {
 public:
  virtual ~BufferBacking() = default;

  /// How CPU and GPU share the memory; may turn to Staged in CreateImage.
  virtual BufferKind kind() const = 0;

  /// CPU address of the first pixel; fixed.
  virtual unsigned char* address() const = 0;

  /// Makes an EGL image over the memory; EGL_NO_IMAGE_KHR on failure, reason in eglGetError. A
  /// further call makes a new GL side. The context's bindings are as before afterwards.
  virtual EGLImageKHR CreateImage(EGLDisplay display, const EGLint* attributes) = 0;

  /// As CoherentMemory's. True also while there is no GL side; false when its context is not
  /// current, but that staged memory begins anywhere. The context's bindings, pixel-store state and
  /// pending errors are left as they are.
  virtual bool Reachable() = 0;
  virtual bool BeginAccess() = 0;
  virtual bool Publish(const PixelRectangle& part) = 0;
  virtual bool Fetch(const PixelRectangle& part) = 0;

  /// The same between the GPU's side and another image's rows in CPU memory: `part` lies at the
  /// same place in both. Where the sides are apart, the CPU's side keeps its bytes. False, with
  /// nothing copied, also while there is no GL side.
  virtual bool PublishFrom(const CpuImage& image, const PixelRectangle& part) = 0;
  virtual bool FetchInto(const CpuImage& image, const PixelRectangle& part) = 0;
};

/// The platform body's choice among its kinds: zeroed memory for `geometry`, of the best kind for
/// the current context; null when there is none.
std::unique_ptr<BufferBacking> MakeBacking(const BufferGeometry& geometry);

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_BUFFER_BUFFER_BACKING_H_
