// SPDX-License-Identifier: Apache-2.0
#include "proofs/faults/fault_layer.h"

#include <algorithm>
#include <cstdlib>
#include <deque>
#include <mutex>

#include "proofs/faults/fault_switch.h"

namespace lumora::test {
namespace {

struct {
  std::mutex mutex;
  bool counting = false;
  std::vector<Fault> faults;
  CallCounts counts{};
  int failed = 0;
} g_run;

constexpr const char* kNames[kCalls] = {"FindDisplay",
                                        "InitializeDisplay",
                                        "ChooseConfig",
                                        "OfferConfig",
                                        "CreateContext",
                                        "CreatePbuffer",
                                        "MakeCurrent",
                                        "CreateImage",
                                        "GenTexture",
                                        "GenFramebuffer",
                                        "TexImage",
                                        "ShowImage",
                                        "CheckFramebuffer",
                                        "CreateShader",
                                        "CompileShader",
                                        "CompileQuietly",
                                        "CreateProgram",
                                        "LinkProgram",
                                        "FindAttribute",
                                        "FindUniform",
                                        "TakeBinary",
                                        "AcceptBinary",
                                        "ImportMemory",
                                        "VulkanImage",
                                        "VulkanAllocation",
                                        "VulkanMapping",
                                        "VulkanExport",
                                        "NewObject",
                                        "NewArray",
                                        "Malloc",
                                        "Calloc",
                                        "AlignedMalloc",
                                        "Open",
                                        "Stat",
                                        "Read",
                                        "MakeDirectory",
                                        "MakeTemporary",
                                        "Write",
                                        "Close",
                                        "Rename",
                                        "OpenStream",
                                        "ReadStream"};

}  // namespace

bool Fails(Call call) {
  const std::lock_guard<std::mutex> guard(g_run.mutex);
  if (!g_run.counting) return false;
  const int number = ++g_run.counts[static_cast<size_t>(call)];
  const bool fails = std::any_of(g_run.faults.begin(), g_run.faults.end(), [&](const Fault& fault) {
    return fault.call == call && fault.number == number;
  });
  if (fails) ++g_run.failed;
  return fails;
}

const char* NameOf(Call call) {
  return kNames[static_cast<size_t>(call)];
}

std::ostream& operator<<(std::ostream& out, Call call) {
  return out << NameOf(call);
}

std::ostream& operator<<(std::ostream& out, const Fault& fault) {
  return out << fault.call << " " << fault.number;
}

std::ostream& operator<<(std::ostream& out, const LiveNames& names) {
  return out << names.textures << " textures, " << names.framebuffers << " framebuffers";
}

std::array<Call, kCalls> AllCalls() {
  std::array<Call, kCalls> all{};
  for (size_t i = 0; i < kCalls; ++i) all[i] = static_cast<Call>(i);
  return all;
}

std::vector<Fault> FaultsOf(const CallCounts& counts) {
  std::vector<Fault> faults;
  for (const Call call : AllCalls()) {
    for (int n = 1; n <= counts[static_cast<size_t>(call)]; ++n) faults.push_back({call, n});
  }
  return faults;
}

FaultScope::FaultScope(std::initializer_list<Fault> faults) {
  const std::lock_guard<std::mutex> guard(g_run.mutex);
  if (g_run.counting) std::abort();
  g_run.counting = true;
  g_run.faults.assign(faults);
  g_run.counts = {};
  g_run.failed = 0;
}

FaultScope::~FaultScope() {
  const std::lock_guard<std::mutex> guard(g_run.mutex);
  g_run.counting = false;
}

CallCounts FaultScope::counts() const {
  const std::lock_guard<std::mutex> guard(g_run.mutex);
  return g_run.counts;
}

int FaultScope::failed() const {
  const std::lock_guard<std::mutex> guard(g_run.mutex);
  return g_run.failed;
}

}  // namespace lumora::test
