// SPDX-License-Identifier: Apache-2.0
#include "proofs/soak/soak.h"

#include <GLES2/gl2.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "lumora/lumora.h"
#include "proofs/soak/process_use.h"
#include "support/meant_leaks.h"

namespace lumora::test {
namespace {

constexpr int kBriefCycles = 100;
constexpr int kFewestCycles = 10;

int WarmUp(int cycles) {
  return std::clamp(cycles / 10, kFewestCycles, 500);
}

std::string Text(const Census& census) {
  std::string text;
  for (const auto& [kind, count] : census) {
    text += (text.empty() ? "" : ", ") + kind + " " + std::to_string(count);
  }
  return text;
}

// zink: what it compiled for programs that are gone, lavapipe keeps until the context ends; and the
// files of images that are gone may stay open until the next frame has been drawn.
bool ContextsKeepThings() {
  static const bool keep = [] {
    std::string renderer;
    // Elsewhere, so that this thread's context stays what it is.
    std::thread([&renderer] {
      const android::GPUBeautyFace engine;
      renderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    }).join();
    return renderer.rfind("zink", 0) == 0;
  }();
  return keep;
}

}  // namespace

int Cycles(int weight) {
  const char* const asked = std::getenv("LUMORA_SOAK_CYCLES");
  const int cycles = asked != nullptr ? std::atoi(asked) : 0;
  return std::max((cycles > 0 ? cycles : kBriefCycles) / weight, kFewestCycles);
}

void Soak(const std::string& name, int cycles, const std::function<void(int)>& cycle,
          const Kept& kept) {
  const bool keeps_things = !kept.ends_context && ContextsKeepThings();
  const bool judges_memory = !MeantLeaks::CheckerRuns() && !keeps_things;
  const int warm_up = WarmUp(cycles);
  for (int i = 0; i < warm_up; ++i) cycle(i);

  const Census objects_before = LivingObjects();
  const ProcessUse before = CurrentUse();
  const auto start = std::chrono::steady_clock::now();
  for (int i = warm_up; i < warm_up + cycles; ++i) cycle(i);
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
  const ProcessUse after = CurrentUse();
  const Census grown = Growth(objects_before, LivingObjects());

  Census expected;
  for (const auto& [kind, count] : kept.objects) expected[kind] = count * cycles;
  EXPECT_EQ(grown, expected) << name;
  // Those of one set-up: fewer than a single file that every cycle leaves open.
  const int pending = keeps_things ? 6 : 0;
  static_assert(kFewestCycles > 6);
  EXPECT_LE(static_cast<double>(after.descriptors - before.descriptors),
            std::ceil(kept.descriptors * cycles) + pending)
      << name << ": open files";
  EXPECT_EQ(after.threads, before.threads) << name;

  const long memory = after.resident_kb - before.resident_kb;
  const auto allowed = static_cast<long>(1.5 * kept.bytes * cycles / 1024) + kSlackKb;
  if (judges_memory) {
    EXPECT_LE(memory, allowed) << name << ": kB of memory";
  }
  std::printf("soak: %-40s %6d %9.1f %+14ld %14ld  %s\n", name.c_str(), cycles, time.count(),
              memory, allowed, Text(grown).c_str());
  std::fflush(stdout);
}

Kept MeasureKept(int asked, const std::function<void(int)>& cycle) {
  const int cycles = std::max(asked, kFewestCycles);
  const int warm_up = WarmUp(cycles);
  for (int i = 0; i < warm_up; ++i) cycle(i);
  const ProcessUse before = CurrentUse();
  for (int i = warm_up; i < warm_up + cycles; ++i) cycle(i);
  const ProcessUse after = CurrentUse();
  Kept kept;
  kept.bytes =
      std::max(0.0, 1024.0 * static_cast<double>(after.resident_kb - before.resident_kb) / cycles);
  kept.descriptors =
      std::max(0.0, static_cast<double>(after.descriptors - before.descriptors) / cycles);
  return kept;
}

double BytesKept(int asked, const std::function<void(int)>& cycle) {
  return MeasureKept(asked, cycle).bytes;
}

}  // namespace lumora::test
