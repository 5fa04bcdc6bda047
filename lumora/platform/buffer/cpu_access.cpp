// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/buffer/cpu_access.h"

#include <utility>

#include "lumora/platform/buffer/buffer_state.h"

namespace lumora::platform {
namespace {

bool Announce(Coherence& coherence, CpuUse use, const Extent& extent) {
  switch (use) {
    case CpuUse::Read:
      return coherence.Read(extent);
    case CpuUse::Write:
      return coherence.Write(extent);
    case CpuUse::Overwrite:
      return coherence.Overwrite(extent);
  }
  return false;
}

}  // namespace

CpuAccess::CpuAccess(GraphicBuffer* buffer, CpuUse use) {
  if (buffer == nullptr) return;
  Begin(*buffer->state_, use, buffer->state_->coherence.whole());
}

CpuAccess::CpuAccess(GraphicBuffer* buffer, CpuUse use, const PixelRectangle& part) {
  if (buffer == nullptr) return;
  Begin(*buffer->state_, use, buffer->state_->Part(part));
}

void CpuAccess::Begin(GraphicBuffer::State& state, CpuUse use, const Extent& extent) {
  if (state.backing == nullptr || !Announce(state.coherence, use, extent)) return;
  pixels_ = state.backing->address();
  if (use != CpuUse::Read) coherence_ = &state.coherence;
  extent_ = extent;
}

bool CpuAccess::End() {
  const bool had = std::exchange(pixels_, nullptr) != nullptr;
  Coherence* const written = std::exchange(coherence_, nullptr);
  return had && (written == nullptr || written->Released(extent_));
}

}  // namespace lumora::platform
