// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/buffer/coherence.h"

namespace lumora::platform {

bool Coherence::Read(const Extent& extent) {
  if (state_ != State::Gpu) return !extent.whole || !MayBeDrawnInSilence() || FetchWhole();
  if (!memory_.Fetch(extent.part)) return false;
  if (!extent.whole) return true;
  state_ = State::Synced;
  draws_announced_ = true;
  return true;
}

bool Coherence::Write(const Extent& extent) {
  if (!extent.whole) {
    return state_ == State::Gpu ? memory_.Fetch(extent.part) : memory_.BeginAccess();
  }
  if (state_ == State::Gpu) {
    if (!memory_.Fetch(extent.part)) return false;
    draws_announced_ = true;
  } else if (MayBeDrawnInSilence()) {
    if (!FetchWhole()) return false;
  } else if (state_ == State::Synced) {
    if (!memory_.BeginAccess()) return false;
  }
  state_ = State::Cpu;
  return true;
}

bool Coherence::Overwrite(const Extent& extent) {
  // What is drawn need not come here, but what is written must be able to go there.
  if (state_ == State::Gpu && !memory_.Reachable()) return false;
  if (!memory_.BeginAccess()) return false;
  if (!extent.whole) return true;
  state_ = State::Cpu;
  draws_announced_ = true;
  return true;
}

bool Coherence::Released(const Extent& extent) {
  if (!extent.whole) {
    if (IsEmpty(extent.part)) return true;
    if (!memory_.Publish(extent.part)) return false;
    // Bytes that were handed out whole and not yet released stay to be noticed.
    if (watched_ && state_ != State::Cpu) memory_.RememberCpu(extent.part);
    return true;
  }
  if (state_ == State::Gpu) return true;
  if (!MayBeDrawnInSilence() && !PublishWhole()) return false;
  state_ = State::Synced;
  draws_announced_ = false;
  return true;
}

bool Coherence::ReadInto(const CpuImage& image, const PixelRectangle& part) {
  if (state_ == State::Gpu) return memory_.FetchInto(image, part);
  if (!Read(whole_)) return false;
  memory_.CopyInto(image, part);
  return true;
}

bool Coherence::WriteFrom(const CpuImage& image, const PixelRectangle& part) {
  if (!memory_.PublishFrom(image, part)) return false;
  Drawn();
  return true;
}

void Coherence::Watch() {
  if (watched_) return;
  watched_ = true;
  // From here on "unchanged" means "already with the GPU", so what the CPU wrote so far goes there.
  // Where it cannot go now, nothing is remembered either: it stays changed.
  if (state_ != State::Gpu) static_cast<void>(PublishWhole());
}

// With no draw known, whether there may be one: the CPU's bytes are not to be taken for the newer
// ones.
bool Coherence::MayBeDrawnInSilence() {
  return watched_ && !draws_announced_ && !memory_.CpuChanged();
}

bool Coherence::FetchWhole() {
  if (!memory_.Fetch(whole_.part)) return false;
  if (watched_) memory_.RememberCpu(whole_.part);
  return true;
}

bool Coherence::PublishWhole() {
  if (!memory_.Publish(whole_.part)) return false;
  if (watched_) memory_.RememberCpu(whole_.part);
  return true;
}

}  // namespace lumora::platform
