// SPDX-License-Identifier: Apache-2.0
// Which side of a shared image is newer, the CPU's or the GPU's, and when bytes have to move.
//
// Pure logic without GL, and the only way to an image's pixels. One Coherence accompanies one
// image; the image's kind only decides what the actions of CoherentMemory do.
// Synced: both sides equal. Cpu: handed out for writing, the CPU side may be newer. Gpu: drawn into
// since the last fetch, the GPU side is newer.
//
// An event is about the whole image, or about a part of it, whose user vouches that nothing else is
// written and that every draw into the image was announced. Parts leave the state as it is: other
// pixels keep their side.
//
// clang-format off
//   event               Synced              Cpu                 Gpu
//   read                                                        fetch, -> Synced
//   write               begin, -> Cpu                           fetch, -> Cpu
//   overwrite           begin, -> Cpu       begin               if reachable: begin, -> Cpu
//   released            publish             publish, -> Synced
//   drawn               -> Gpu              -> Gpu
//   read a part                                                 fetch it
//   write a part        begin               begin               fetch it
//   overwrite a part    begin               begin               if reachable: begin
//   released a part     publish it          publish it          publish it
//   read elsewhere      copy it             copy it             fetch it elsewhere
//   written elsewhere   publish, -> Gpu     publish, -> Gpu     publish
// clang-format on
//
// An event fails with the action that it needs, and the state stays: what was newer is the newer
// side still. The one exception are draws, which cannot fail.
//
// Released after rendering must not publish: it would overwrite what was drawn. Released without a
// write publishes, for callers that keep the address and write through it.
//
// A watched image may also be drawn into without notice. As long as nothing else tells which side
// is newer, it is the CPU side's bytes that decide: while they are what the last transfer left, a
// read or write of the whole fetches (there is nothing to lose) and a release does not publish
// (there is nothing to tell); once they differ, the CPU wrote, and its bytes stand. After an
// announced draw the image's draws are taken to be announced until the next release, so that
// repeated accesses cost nothing.
#ifndef LUMORA_PLATFORM_BUFFER_COHERENCE_H_
#define LUMORA_PLATFORM_BUFFER_COHERENCE_H_

#include "lumora/platform/buffer/buffer_geometry.h"

namespace lumora::platform {

/// What Coherence asks of an image's memory. An answer of false is a failure, with nothing done.
class CoherentMemory {
 public:
  /// Whether bytes can go between the two sides now.
  virtual bool Reachable() = 0;
  /// The CPU begins to write over bytes that are already its own: waits until the GPU has finished
  /// with them, where both use one memory.
  virtual bool BeginAccess() = 0;
  /// Makes the CPU's bytes of `part` visible to the GPU.
  virtual bool Publish(const PixelRectangle& part) = 0;
  /// Makes the GPU's results in `part` visible to the CPU, waiting for them.
  virtual bool Fetch(const PixelRectangle& part) = 0;

  /// The same between the GPU's side and another image's rows in CPU memory: `part` lies at the
  /// same place in both.
  virtual bool PublishFrom(const CpuImage& image, const PixelRectangle& part) = 0;
  virtual bool FetchInto(const CpuImage& image, const PixelRectangle& part) = 0;
  /// Copies the CPU's bytes of `part` to another image.
  virtual void CopyInto(const CpuImage& image, const PixelRectangle& part) = 0;

  /// Remembers the CPU's bytes of `part` as they are now.
  virtual void RememberCpu(const PixelRectangle& part) = 0;
  /// Whether the CPU's bytes differ from the remembered ones, or none are remembered. Always false
  /// where CPU and GPU use one memory, because there nothing can be lost.
  virtual bool CpuChanged() = 0;

 protected:
  ~CoherentMemory() = default;
};

/// What an event is about.
struct Extent {
  PixelRectangle part;
  bool whole;  ///< it is all of the image, and nobody vouches for anything
};

/// The state machine above. Not thread-safe: it belongs to the image's thread.
class Coherence {
 public:
  enum class State { Synced, Cpu, Gpu };

  /// `memory` must outlive this object; `whole` is all of the image. Both sides start equal.
  Coherence(CoherentMemory& memory, const PixelRectangle& whole)
      : memory_(memory), whole_{whole, true} {}

  /// The CPU is about to use bytes: to read them; to read or write them; to write all of them, so
  /// that what the GPU has drawn need not be fetched and is published whatever has changed.
  bool Read(const Extent& extent);
  bool Write(const Extent& extent);
  bool Overwrite(const Extent& extent);

  /// The CPU has finished: what it wrote is to reach the GPU.
  bool Released(const Extent& extent);

  /// Copies `part` of the newer side to another image, or from another image to the GPU's side,
  /// which is the newer one afterwards.
  bool ReadInto(const CpuImage& image, const PixelRectangle& part);
  bool WriteFrom(const CpuImage& image, const PixelRectangle& part);

  /// A draw into the image is about to be issued.
  void Drawn() { state_ = State::Gpu; }

  /// From now on draws may come without notice.
  void Watch();

  State state() const { return state_; }
  /// All of the image.
  const Extent& whole() const { return whole_; }

 private:
  bool MayBeDrawnInSilence();
  bool FetchWhole();
  bool PublishWhole();

  CoherentMemory& memory_;
  const Extent whole_;
  State state_ = State::Synced;
  bool watched_ = false;
  bool draws_announced_ = false;  ///< watched, but the last draw came with notice
};

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_BUFFER_COHERENCE_H_
