// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/buffer/buffer_state.h"

#include <utility>

#include "lumora/platform/buffer/pixel_digest.h"
#include "lumora/platform/immortal.h"
#include "lumora/platform/out_of_memory.h"

namespace lumora::platform {

GraphicBuffer::State::State(const BufferGeometry& layout, uint32_t usage)
    : geometry(layout), coherence(*this, layout.Whole()) {
  handle.flags = static_cast<int>(usage);
}

GraphicBuffer::State& GraphicBuffer::State::Missing() {
  static Immortal<State> state(LayOut(0, 0), 0U);
  return *state;
}

GraphicBuffer::State* GraphicBuffer::State::Make(const BufferGeometry& layout, uint32_t usage) {
  return UnlessOutOfMemory(&Missing(), [&] { return new State(layout, usage); });
}

bool GraphicBuffer::State::ReserveDigests() {
  return UnlessOutOfMemory(false, [this] {
    row_digests_.reserve(geometry.height);
    return true;
  });
}

void GraphicBuffer::State::Adopt(std::unique_ptr<BufferBacking> memory) {
  backing = std::move(memory);
  handle.size = static_cast<int>(geometry.size);
  handle.base = backing->address();
}

Extent GraphicBuffer::State::Part(const PixelRectangle& rectangle) const {
  const PixelRectangle whole = geometry.Whole();
  return {CutToImage(rectangle, whole.width, whole.height), false};
}

bool GraphicBuffer::State::Reachable() {
  return backing->Reachable();
}

bool GraphicBuffer::State::BeginAccess() {
  return backing->BeginAccess();
}

bool GraphicBuffer::State::Publish(const PixelRectangle& part) {
  return backing->Publish(part);
}

bool GraphicBuffer::State::Fetch(const PixelRectangle& part) {
  return backing->Fetch(part);
}

bool GraphicBuffer::State::PublishFrom(const CpuImage& image, const PixelRectangle& part) {
  return backing->PublishFrom(image, part);
}

bool GraphicBuffer::State::FetchInto(const CpuImage& image, const PixelRectangle& part) {
  return backing->FetchInto(image, part);
}

void GraphicBuffer::State::CopyInto(const CpuImage& image, const PixelRectangle& part) {
  CopyPart({backing->address(), static_cast<int>(geometry.stride)}, image, part);
}

void GraphicBuffer::State::RememberCpu(const PixelRectangle& part) {
  const PixelRectangle whole = geometry.Whole();
  const bool all = part.width == whole.width && part.height == whole.height;
  // Beside rows that nobody remembers, some that somebody does would tell nothing.
  if (!IsStaged() || (row_digests_.empty() && !all)) return;
  row_digests_.resize(geometry.height);
  const auto first = static_cast<size_t>(part.y);
  const auto end = first + static_cast<size_t>(part.height);
  for (size_t row = first; row < end; ++row) row_digests_[row] = RowDigest(row);
}

bool GraphicBuffer::State::CpuChanged() {
  if (!IsStaged()) return false;
  for (size_t row = 0; row < geometry.height; ++row) {
    if (row_digests_.size() <= row || row_digests_[row] != RowDigest(row)) return true;
  }
  return false;
}

uint64_t GraphicBuffer::State::RowDigest(size_t row) const {
  const unsigned char* pixels = backing->address() + row * geometry.RowBytes();
  return PixelDigest(pixels, size_t{geometry.width} * kPixelBytes, 1, geometry.RowBytes());
}

}  // namespace lumora::platform
