#include "lumora/platform/buffer/coherence.h"

namespace lumora::platform {

bool Coherence::lock() {
  if (state_ == State::Gpu) {
    if (!memory_.fetch()) return false;
    draws_announced_ = true;
  } else if (watched_ && !draws_announced_ && !memory_.cpuChanged()) {
    if (!exchange(&CoherentMemory::fetch)) return false;
  } else if (state_ == State::Synced) {
    if (!memory_.beginAccess()) return false;
  }
  state_ = State::Cpu;
  return true;
}

bool Coherence::lockForOverwrite() {
  if (!memory_.beginAccess()) return false;
  state_ = State::Cpu;
  draws_announced_ = true;
  return true;
}

bool Coherence::unlock() {
  if (state_ == State::Gpu) return true;
  if (!watched_ || draws_announced_ || memory_.cpuChanged()) {
    if (!exchange(&CoherentMemory::publish)) return false;
  }
  state_ = State::Synced;
  draws_announced_ = false;
  return true;
}

void Coherence::drawnInto() {
  state_ = State::Gpu;
}

void Coherence::watch() {
  if (watched_) return;
  watched_ = true;
  // From here on "unchanged" means "already with the GPU", so what the CPU wrote so far goes there.
  if (state_ != State::Gpu) exchange(&CoherentMemory::publish);
}

bool Coherence::exchange(bool (CoherentMemory::*transfer)()) {
  if (!(memory_.*transfer)()) return false;
  if (watched_) memory_.rememberCpu();
  return true;
}

}  // namespace lumora::platform
