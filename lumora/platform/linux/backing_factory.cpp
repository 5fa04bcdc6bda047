// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/buffer/buffer_backing.h"

#include <array>
#include <atomic>
#include <cstdlib>
#include <string_view>

#include "lumora/platform/linux/memory_object.h"
#include "lumora/platform/linux/memory_object_proof.h"
#include "lumora/platform/linux/staged.h"
#include "lumora/platform/log.h"
#include "lumora/platform/out_of_memory.h"

namespace lumora::platform {
namespace {

// A way to share an image's memory between CPU and GPU.
struct Candidate {
  BufferKind kind;
  /// Whether the current context can share memory in this way.
  bool (*offered)();
  /// Null where an image of this geometry cannot have it.
  std::unique_ptr<BufferBacking> (*make)(const BufferGeometry& geometry);
};

// In the order of preference; the last one works everywhere.
constexpr std::array<Candidate, 2> kCandidates = {{
    {BufferKind::MemoryObject, [] { return ProvenMemoryDevice() != nullptr; },
     [](const BufferGeometry& geometry) {
       return MakeMemoryObjectBacking(*ProvenMemoryDevice(), geometry);
     }},
    {BufferKind::Staged, [] { return true; }, MakeStagedBacking},
}};

constexpr const Candidate& kFallback = kCandidates.back();

// Once a process: a forced kind that is missing is missing for every buffer.
void ReportMissingKind(const char* name) {
  static std::atomic<bool> reported{false};
  if (reported.exchange(true)) return;
  LogChannel channel{"LumoraPlatform"};
  if (!channel.Enables(kLogError)) return;
  PrinterFor(kLogError, channel.tag)(
      kLogError, channel.tag, "LUMORA_BUFFER=%s is not available here, using staged buffers", name);
}

const Candidate& ForcedCandidate(const char* name) {
  for (const Candidate& candidate : kCandidates) {
    if (std::string_view(name) == BufferKindName(candidate.kind) && candidate.offered()) {
      return candidate;
    }
  }
  ReportMissingKind(name);
  return kFallback;
}

const Candidate& PreferredCandidate() {
  const char* const forced = std::getenv("LUMORA_BUFFER");
  if (forced != nullptr && forced[0] != '\0') return ForcedCandidate(forced);
  for (const Candidate& candidate : kCandidates) {
    if (candidate.offered()) return candidate;
  }
  return kFallback;
}

}  // namespace

BufferKind PreferredBufferKind() {
  return PreferredCandidate().kind;
}

std::unique_ptr<BufferBacking> MakeBacking(const BufferGeometry& geometry) {
  const auto make = [&geometry](const Candidate& candidate) {
    return UnlessOutOfMemory(std::unique_ptr<BufferBacking>(),
                             [&] { return candidate.make(geometry); });
  };
  const Candidate& preferred = PreferredCandidate();
  std::unique_ptr<BufferBacking> backing = make(preferred);
  if (backing != nullptr || &preferred == &kFallback) return backing;
  return make(kFallback);
}

}  // namespace lumora::platform
