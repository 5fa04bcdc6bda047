// Which side of a shared image is newer, the CPU's or the GPU's, and when bytes have to move.
//
// Pure logic without GL. One Coherence accompanies one image; the image's kind only decides what
// the actions of CoherentMemory do.
//
//   Synced  both sides equal
//   Cpu     handed out for CPU access; the CPU side may be newer
//   Gpu     drawn into since the last fetch; the GPU side is newer
//
//   event            Synced          Cpu               Gpu
//   lock             begin, -> Cpu   nothing           fetch, -> Cpu
//   lock, overwrite  begin, -> Cpu   begin             begin, -> Cpu
//   unlock           publish         publish, Synced   nothing
//   drawn into       -> Gpu          -> Gpu            nothing
//
// Unlock after rendering must not publish: it would overwrite what was drawn. Unlock without a lock
// publishes, for callers that keep the address and write through it.
//
// A watched image may also be drawn into without notice. As long as nothing else tells which side
// is newer, it is the CPU side's bytes that decide: while they are what the last transfer left, a
// lock fetches (there is nothing to lose) and an unlock does not publish (there is nothing to
// tell); once they differ, the CPU wrote, and its bytes stand. After an announced draw the image's
// draws are taken to be announced until the next unlock, so that repeated locks cost nothing.
#ifndef LUMORA_PLATFORM_BUFFER_COHERENCE_H_
#define LUMORA_PLATFORM_BUFFER_COHERENCE_H_

namespace lumora::platform {

/// What Coherence asks of an image's memory.
class CoherentMemory {
 public:
  /// The CPU begins to use bytes that are already its own: waits until the GPU has finished with
  /// them, where both use one memory. False when not possible now.
  virtual bool beginAccess() = 0;
  /// Makes the CPU's bytes visible to the GPU. False when that is not possible now.
  virtual bool publish() = 0;
  /// Makes the GPU's results visible to the CPU, waiting for them. False when not possible now.
  virtual bool fetch() = 0;
  /// Remembers the CPU's bytes as they are now.
  virtual void rememberCpu() = 0;
  /// Whether the CPU's bytes differ from the remembered ones. Always false where CPU and GPU use
  /// one memory, because there nothing can be lost.
  virtual bool cpuChanged() = 0;

 protected:
  ~CoherentMemory() = default;
};

/// The state machine above. Not thread-safe: it belongs to the image's thread.
class Coherence {
 public:
  enum class State { Synced, Cpu, Gpu };

  /// `memory` must outlive this object. Both sides start equal.
  explicit Coherence(CoherentMemory& memory) : memory_(memory) {}

  /// The CPU is about to use the bytes. False when the GPU's newer bytes could not be fetched; they
  /// stay the newer ones.
  bool lock();

  /// The CPU is about to replace all bytes: what the GPU has drawn need not be fetched, and the
  /// next unlock publishes without a look at what changed. False when the CPU cannot begin now.
  bool lockForOverwrite();

  /// The CPU has finished. False when its bytes could not be published; they stay the newer ones.
  bool unlock();

  /// A draw into the image is about to be issued.
  void drawnInto();

  /// From now on draws may come without notice.
  void watch();

  State state() const { return state_; }

 private:
  bool exchange(bool (CoherentMemory::*transfer)());

  CoherentMemory& memory_;
  State state_ = State::Synced;
  bool watched_ = false;
  bool draws_announced_ = false;  ///< watched, but the last draw came with notice
};

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_BUFFER_COHERENCE_H_
