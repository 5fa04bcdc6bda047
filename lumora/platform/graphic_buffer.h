// SPDX-License-Identifier: Apache-2.0
// Image memory that is at once CPU-addressable and a GL texture.
#ifndef LUMORA_PLATFORM_GRAPHIC_BUFFER_H_
#define LUMORA_PLATFORM_GRAPHIC_BUFFER_H_

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GLES2/gl2.h>

#include <cstdint>
#include <memory>

#include "lumora/export.h"
#include "lumora/geometry/rectangle.h"
#include "lumora/platform/buffer_kind.h"
#include "lumora/platform/ref_base.h"

namespace lumora::platform {

/// Pixel format: 8-bit R, G, B, A, in that byte order.
constexpr int HAL_PIXEL_FORMAT_RGBA_8888 = 1;

/// Usage bits, as the allocator knows them.
constexpr uint32_t GRALLOC_USAGE_SW_READ_OFTEN = 0x03;
constexpr uint32_t GRALLOC_USAGE_SW_WRITE_OFTEN = 0x30;
constexpr uint32_t GRALLOC_USAGE_HW_TEXTURE = 0x100;

/// What the allocator tells about a buffer. `base` never changes while the buffer lives.
struct PrivateHandle {
  int fd = -1;           ///< file descriptor of the memory, -1 where it has none
  int flags = 0;         ///< allocation flags (the usage bits the buffer was made with)
  int size = 0;          ///< bytes, slack included
  int offset = 0;        ///< bytes from the start of the memory to the first pixel
  void* base = nullptr;  ///< CPU address of the first pixel
};

/// An RGBA image in shared memory.
///
/// Rows are the width rounded up to 32 pixels (`stride()`), 4 bytes a pixel. Behind the rows lies
/// slack: enough for rows of up to the width rounded up to 128 pixels and two rows more, so that
/// the expansion of a frame may overrun its rows by its own arithmetic without leaving the
/// allocation.
///
/// Coherence: `lockPixels` makes the GPU's results visible to the CPU, `clean` makes the CPU's
/// writes visible to the GPU; drawing announces itself through BeforeDraw. The address never
/// changes.
///
/// Thread-safety: one thread, the one whose context draws with the buffer. A buffer may die after
/// its context, or on a thread without one: GL names are then left to the context's own end.
/// Whoever ends a context calls glFinish first: Mesa's software renderer lets go of imported memory
/// with the context, also under draws that are still running.
/// One EGL image at a time shows the memory: that of the latest `createImage`.
class LUMORA_API GraphicBuffer : public RefBase {
 public:
  /// Allocates width x height pixels. `format` must be HAL_PIXEL_FORMAT_RGBA_8888. The memory
  /// starts zeroed. No GL object is made before `createImage`. Allocation failure leaves `base`
  /// null.
  GraphicBuffer(uint32_t width, uint32_t height, int format, uint32_t usage);
  ~GraphicBuffer() override;

  uint32_t width() const;
  uint32_t height() const;
  uint32_t stride() const;  ///< pixels from one row to the next
  BufferKind kind() const;

  /// The native window buffer of the memory: an opaque, stable address that identifies the buffer.
  void* getNativeBuffer();

  /// The allocator's private handle.
  const PrivateHandle& handle() const;

  /// Locks for CPU access as `lockPixels`: stores the address of the first pixel, null on failure.
  /// Returns 0, or a negative error.
  int lock(uint32_t usage, void** address);
  /// Ends CPU access: what the CPU wrote reaches the GPU. Returns 0, or a negative error.
  int unlock();

  /// The address of the first pixel, with everything the GPU has drawn visible there (waits for the
  /// GPU when it has drawn since). Null when the allocation failed, or when the GPU has drawn and
  /// the image's context is not current.
  unsigned char* lockPixels();

  /// Writes back what the CPU wrote, through a freshly locked or a kept address alike, so that the
  /// GPU sees it. Nothing happens when the GPU has drawn since the last lock. Returns 0, or a
  /// negative error: the allocation failed, or the image's context is not current.
  int clean();

  /// As `lockPixels`, for a caller that is going to write every pixel and then calls `clean`: what
  /// the GPU has drawn is not fetched. Null also when the GPU may be using this memory and the
  /// image's context is not current.
  unsigned char* lockForOverwrite();

  /// Copies a rectangle of what the GPU sees to memory of the caller's, or the other way round,
  /// without a stop at the image's own CPU memory where that is apart: later locks show the GPU's
  /// pixels as after a draw. `pixels` is the place of the image's first pixel there, `stride` the
  /// pixels from one row to the next; the rectangle is cut at the image's borders. CPU writes that
  /// were not yet cleaned are read, and lost by a write, as by a draw. Returns 0, or a negative
  /// error with nothing copied: there is no texture, or its context is not current.
  int readInto(const PixelRectangle& part, unsigned char* pixels, int stride);
  int writeFrom(const PixelRectangle& part, const unsigned char* pixels, int stride);

  /// The first two for callers that use only a rectangle, in pixels, and vouch that nothing else is
  /// written and that every draw into the image was announced: `lockPart` makes the GPU's results
  /// in the rectangle visible, `cleanPart` writes the rectangle back. Other pixels keep their side.
  /// Where bytes are copied at all, only the rectangle's are.
  unsigned char* lockPart(int x, int y, int width, int height);
  int cleanPart(int x, int y, int width, int height);

  /// Makes an EGL image over the memory, as eglCreateImageKHR would: EGL_NO_IMAGE_KHR on failure,
  /// with the reason in eglGetError. The caller destroys it. Bindings of the context are restored.
  EGLImageKHR createImage(EGLDisplay display, const EGLint* attributes);

  /// Tells which texture of the current context the image was bound to, so that draws into and from
  /// that texture are noticed. `detachTexture` forgets it, before the texture is deleted.
  void attachTexture(GLuint texture);
  void detachTexture();

 private:
  friend class CpuAccess;
  struct LUMORA_LOCAL State;
  std::unique_ptr<State> state_;
};

/// To be called before every draw: buffers whose texture is attached to the bound framebuffer are
/// from now on newer on the GPU. The shader programs and the converter do this by themselves;
/// applications that draw into the library's images with GL calls of their own call it too.
/// Thread and context: the drawing thread, its context current. Without a context nothing happens.
LUMORA_API void BeforeDraw();

/// Remembers that `texture` was attached to a framebuffer, so that GL draws that were not announced
/// by BeforeDraw are not missed: locking its buffer reads back even when it looks unchanged, unless
/// the CPU wrote since, and cleaning it writes back only what the CPU really wrote. Between the
/// lock that follows an announced draw and the next clean, draws are taken to be announced. Thread
/// and context: as for BeforeDraw.
void NoteColorAttachment(GLuint texture);

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_GRAPHIC_BUFFER_H_
