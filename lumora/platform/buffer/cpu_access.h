// SPDX-License-Identifier: Apache-2.0
// The CPU's way to a graphic buffer's pixels.
#ifndef LUMORA_PLATFORM_BUFFER_CPU_ACCESS_H_
#define LUMORA_PLATFORM_BUFFER_CPU_ACCESS_H_

#include "lumora/platform/buffer/coherence.h"
#include "lumora/platform/graphic_buffer.h"

namespace lumora::platform {

/// What the CPU is going to do with pixels: read them; read or write them; write all of them, so
/// that what the GPU has drawn there need not be fetched.
enum class CpuUse { Read, Write, Overwrite };

/// One use of pixels by the CPU, from construction to End:
///
///     CpuAccess access(buffer, CpuUse::Write, part);
///     if (access.pixels() == nullptr) return false;
///     ...
///     return access.End();
///
/// Nothing may be drawn into the image meanwhile, and `buffer` (which may be null) must stay.
/// Thread and context: the buffer's thread, and where bytes move or are waited for, its context.
class CpuAccess {
 public:
  /// To the whole image, whoever has drawn into it.
  CpuAccess(GraphicBuffer* buffer, CpuUse use);

  /// To a rectangle, cut at the image's borders. The caller vouches that nothing else is written
  /// and that every draw into the image was announced. Where bytes are copied at all, only the
  /// rectangle's are.
  CpuAccess(GraphicBuffer* buffer, CpuUse use, const PixelRectangle& part);

  /// An access that was not ended ends here and publishes nothing: what it wrote to a part is given
  /// up unless cleanPart follows, what it wrote to the whole stays with the CPU until the next
  /// release.
  ~CpuAccess() = default;
  CpuAccess(const CpuAccess&) = delete;
  CpuAccess& operator=(const CpuAccess&) = delete;

  /// The address of the image's first pixel. Null where the pixels are not to be had: there is no
  /// memory, or the GPU has newer ones or may be using these, and the image's context is not
  /// current.
  unsigned char* pixels() const { return pixels_; }

  /// Ends the access. False where what was written could not reach the GPU, or nothing was to be
  /// had.
  [[nodiscard]] bool End();

 private:
  void Begin(GraphicBuffer::State& state, CpuUse use, const Extent& extent);

  Coherence* coherence_ = nullptr;  ///< while there is something to publish
  Extent extent_{};
  unsigned char* pixels_ = nullptr;
};

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_BUFFER_CPU_ACCESS_H_
