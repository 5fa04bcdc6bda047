// SPDX-License-Identifier: Apache-2.0
// What a graphic buffer is made of: its memory, and which side of it is newer.
#ifndef LUMORA_PLATFORM_BUFFER_BUFFER_STATE_H_
#define LUMORA_PLATFORM_BUFFER_BUFFER_STATE_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "lumora/platform/buffer/buffer_backing.h"
#include "lumora/platform/buffer/coherence.h"
#include "lumora/platform/graphic_buffer.h"

namespace lumora::platform {

struct GraphicBuffer::State final : CoherentMemory {
  State(const BufferGeometry& layout, uint32_t usage);

  /// What stands in where there is no memory for even this; it never gets a backing, so that
  /// nothing is written to it.
  static State& Missing();
  /// A new one, or Missing.
  static State* Make(const BufferGeometry& layout, uint32_t usage);

  /// So that digests can be remembered at any time. False where memory is short.
  bool ReserveDigests();
  void Adopt(std::unique_ptr<BufferBacking> memory);

  /// What lies of a rectangle in the image.
  Extent Part(const PixelRectangle& rectangle) const;

  bool Reachable() override;
  bool BeginAccess() override;
  bool Publish(const PixelRectangle& part) override;
  bool Fetch(const PixelRectangle& part) override;
  bool PublishFrom(const CpuImage& image, const PixelRectangle& part) override;
  bool FetchInto(const CpuImage& image, const PixelRectangle& part) override;
  void CopyInto(const CpuImage& image, const PixelRectangle& part) override;
  void RememberCpu(const PixelRectangle& part) override;
  bool CpuChanged() override;

  const BufferGeometry geometry;
  PrivateHandle handle;
  std::unique_ptr<BufferBacking> backing;  ///< null when the allocation failed
  Coherence coherence;                     ///< to be asked only where there is a backing

 private:
  bool IsStaged() const { return backing->kind() == BufferKind::Staged; }
  uint64_t RowDigest(size_t row) const;

  std::vector<uint64_t> row_digests_;  ///< of the CPU's rows at the last transfer, if watched
};

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_BUFFER_BUFFER_STATE_H_
