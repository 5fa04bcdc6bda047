// SPDX-License-Identifier: Apache-2.0
// The coherence rule, event by event: what is asked of the memory, what comes of its failures.
#include "lumora/platform/buffer/coherence.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

using lumora::platform::Coherence;
using lumora::platform::CoherentMemory;
using lumora::platform::CpuImage;
using lumora::platform::Extent;
using lumora::platform::PixelRectangle;
using State = Coherence::State;
using Names = std::vector<std::string>;

constexpr PixelRectangle kWhole{0, 0, 40, 30};
constexpr PixelRectangle kPart{5, 6, 7, 8};
constexpr PixelRectangle kEmpty{5, 6, 0, 8};

// ---- The table ------------------------------------------------------------------------------

constexpr State kSynced = State::Synced, kCpu = State::Cpu, kGpu = State::Gpu;

// Whether there may be a draw that nobody told of: the image is watched, its last draw was not
// announced, and the CPU's bytes are those of the last transfer.
enum Silence { kNo, kYes, kAny };

// What becomes of the trust that draws are announced.
enum Trust { kSame, kGained, kLost };

struct Row {
  const char* event;
  State state;
  Silence silence;
  const char* actions;  // in order; "note" only where the image is watched
  State next;
  Trust trust;
};

// clang-format off
constexpr Row kTable[] = {
    // The whole image.
    {"read",              kSynced, kNo,  "",                           kSynced, kSame},
    {"read",              kSynced, kYes, "fetch:all note:all",         kSynced, kSame},
    {"read",              kCpu,    kNo,  "",                           kCpu,    kSame},
    {"read",              kCpu,    kYes, "fetch:all note:all",         kCpu,    kSame},
    {"read",              kGpu,    kAny, "fetch:all",                  kSynced, kGained},
    {"write",             kSynced, kNo,  "begin",                      kCpu,    kSame},
    {"write",             kSynced, kYes, "fetch:all note:all",         kCpu,    kSame},
    {"write",             kCpu,    kNo,  "",                           kCpu,    kSame},
    {"write",             kCpu,    kYes, "fetch:all note:all",         kCpu,    kSame},
    {"write",             kGpu,    kAny, "fetch:all",                  kCpu,    kGained},
    {"overwrite",         kSynced, kAny, "begin",                      kCpu,    kGained},
    {"overwrite",         kCpu,    kAny, "begin",                      kCpu,    kGained},
    {"overwrite",         kGpu,    kAny, "reach begin",                kCpu,    kGained},
    {"released",          kSynced, kNo,  "publish:all note:all",       kSynced, kLost},
    {"released",          kSynced, kYes, "",                           kSynced, kLost},
    {"released",          kCpu,    kNo,  "publish:all note:all",       kSynced, kLost},
    {"released",          kCpu,    kYes, "",                           kSynced, kLost},
    {"released",          kGpu,    kAny, "",                           kGpu,    kSame},
    // A part of it.
    {"read part",         kSynced, kAny, "",                           kSynced, kSame},
    {"read part",         kCpu,    kAny, "",                           kCpu,    kSame},
    {"read part",         kGpu,    kAny, "fetch:part",                 kGpu,    kSame},
    {"write part",        kSynced, kAny, "begin",                      kSynced, kSame},
    {"write part",        kCpu,    kAny, "begin",                      kCpu,    kSame},
    {"write part",        kGpu,    kAny, "fetch:part",                 kGpu,    kSame},
    {"overwrite part",    kSynced, kAny, "begin",                      kSynced, kSame},
    {"overwrite part",    kCpu,    kAny, "begin",                      kCpu,    kSame},
    {"overwrite part",    kGpu,    kAny, "reach begin",                kGpu,    kSame},
    {"released part",     kSynced, kAny, "publish:part note:part",     kSynced, kSame},
    {"released part",     kCpu,    kAny, "publish:part",               kCpu,    kSame},
    {"released part",     kGpu,    kAny, "publish:part note:part",     kGpu,    kSame},
    {"released nothing",  kSynced, kAny, "",                           kSynced, kSame},
    {"released nothing",  kCpu,    kAny, "",                           kCpu,    kSame},
    {"released nothing",  kGpu,    kAny, "",                           kGpu,    kSame},
    // Between the newer side and other memory.
    {"read elsewhere",    kSynced, kNo,  "copy:part",                  kSynced, kSame},
    {"read elsewhere",    kSynced, kYes, "fetch:all note:all copy:part", kSynced, kSame},
    {"read elsewhere",    kCpu,    kNo,  "copy:part",                  kCpu,    kSame},
    {"read elsewhere",    kCpu,    kYes, "fetch:all note:all copy:part", kCpu,  kSame},
    {"read elsewhere",    kGpu,    kAny, "fetch-into:part",            kGpu,    kSame},
    {"written elsewhere", kSynced, kAny, "publish-from:part",          kGpu,    kSame},
    {"written elsewhere", kCpu,    kAny, "publish-from:part",          kGpu,    kSame},
    {"written elsewhere", kGpu,    kAny, "publish-from:part",          kGpu,    kSame},
    // Draws.
    {"drawn",             kSynced, kAny, "",                           kGpu,    kSame},
    {"drawn",             kCpu,    kAny, "",                           kGpu,    kSame},
    {"drawn",             kGpu,    kAny, "",                           kGpu,    kSame},
    {"watched",           kSynced, kAny, "publish:all note:all",       kSynced, kSame},
    {"watched",           kCpu,    kAny, "publish:all note:all",       kCpu,    kSame},
    {"watched",           kGpu,    kAny, "",                           kGpu,    kSame},
    {"watched again",     kSynced, kAny, "",                           kSynced, kSame},
    {"watched again",     kCpu,    kAny, "",                           kCpu,    kSame},
    {"watched again",     kGpu,    kAny, "",                           kGpu,    kSame},
};
// clang-format on

// ---- The image ------------------------------------------------------------------------------

std::string NameOf(const PixelRectangle& part) {
  const auto is = [&part](const PixelRectangle& other) {
    return part.x == other.x && part.y == other.y && part.width == other.width &&
           part.height == other.height;
  };
  return is(kWhole) ? ":all" : is(kPart) ? ":part" : ":something else";
}

// Writes down what it is asked to do; some actions fail.
struct Memory final : CoherentMemory {
  bool Reachable() override { return Do("reach"); }
  bool BeginAccess() override { return Do("begin"); }
  bool Publish(const PixelRectangle& part) override { return Do("publish" + NameOf(part)); }
  bool Fetch(const PixelRectangle& part) override { return Do("fetch" + NameOf(part)); }
  bool PublishFrom(const CpuImage&, const PixelRectangle& part) override {
    return Do("publish-from" + NameOf(part));
  }
  bool FetchInto(const CpuImage&, const PixelRectangle& part) override {
    return Do("fetch-into" + NameOf(part));
  }
  void CopyInto(const CpuImage&, const PixelRectangle& part) override { Do("copy" + NameOf(part)); }
  void RememberCpu(const PixelRectangle& part) override { Do("note" + NameOf(part)); }
  bool CpuChanged() override { return changed; }

  bool Do(const std::string& action) {
    done.push_back(action);
    return failing.count(action.substr(0, action.find(':'))) == 0;
  }

  Names done;
  std::set<std::string> failing;
  bool changed = false;  ///< the CPU wrote since the last transfer
};

// The actions that can fail.
constexpr const char* kFallible[] = {"reach", "begin",        "publish",
                                     "fetch", "publish-from", "fetch-into"};

// Everything that an event may depend on.
struct Circumstances {
  State state;
  bool watched;
  bool trusted;  ///< draws are taken to be announced
  bool changed;
  std::set<std::string> failing;

  Silence silence() const { return watched && !trusted && !changed ? kYes : kNo; }
};

std::ostream& operator<<(std::ostream& out, const Circumstances& given) {
  out << (given.state == kSynced ? "synced"
          : given.state == kCpu  ? "cpu"
                                 : "gpu")
      << (given.watched ? ", watched" : "") << (given.trusted ? ", draws announced" : "")
      << (given.changed ? ", changed by the CPU" : "");
  for (const std::string& action : given.failing) out << ", no " << action;
  return out;
}

// Brings an image into a state by the shortest way.
void Prepare(Coherence& coherence, Memory& memory, const Circumstances& given) {
  if (given.watched) coherence.Watch();
  memory.changed = true;
  if (given.trusted) {
    ASSERT_TRUE(coherence.Overwrite(coherence.whole()));
  }
  if (given.trusted && given.state == kSynced) {
    coherence.Drawn();
    ASSERT_TRUE(coherence.Read(coherence.whole()));
  }
  if (given.state == kCpu) {
    ASSERT_TRUE(coherence.Write(coherence.whole()));
  }
  if (given.state == kGpu) coherence.Drawn();
  ASSERT_EQ(coherence.state(), given.state);
  memory.changed = given.changed;
  memory.done.clear();
  memory.failing = given.failing;
}

bool Happen(const std::string& event, Coherence& coherence) {
  const Extent& all = coherence.whole();
  const CpuImage elsewhere{nullptr, 50};
  if (event == "read") return coherence.Read(all);
  if (event == "write") return coherence.Write(all);
  if (event == "overwrite") return coherence.Overwrite(all);
  if (event == "released") return coherence.Released(all);
  if (event == "read part") return coherence.Read({kPart, false});
  if (event == "write part") return coherence.Write({kPart, false});
  if (event == "overwrite part") return coherence.Overwrite({kPart, false});
  if (event == "released part") return coherence.Released({kPart, false});
  if (event == "released nothing") return coherence.Released({kEmpty, false});
  if (event == "read elsewhere") return coherence.ReadInto(elsewhere, kPart);
  if (event == "written elsewhere") return coherence.WriteFrom(elsewhere, kPart);
  if (event == "drawn") coherence.Drawn();
  if (event == "watched" || event == "watched again") coherence.Watch();
  return true;
}

// Whether draws are taken to be announced: a watched image's reads fetch otherwise, as long as
// nothing tells that the CPU wrote.
bool Trusts(Coherence coherence, Memory& memory) {
  memory.failing.clear();
  memory.changed = false;
  coherence.Watch();
  memory.done.clear();
  coherence.Read(coherence.whole());
  return memory.done.empty();
}

std::vector<const Row*> RowsFor(const std::string& event, const Circumstances& given) {
  std::vector<const Row*> rows;
  for (const Row& row : kTable) {
    const bool silence = row.silence == kAny || row.silence == given.silence();
    if (event == row.event && row.state == given.state && silence) rows.push_back(&row);
  }
  return rows;
}

// What the table says is done, and whether all of it is.
bool Follow(const Row& row, const Circumstances& given, bool watched, Names* done) {
  std::istringstream actions(row.actions);
  for (std::string action; actions >> action;) {
    const std::string name = action.substr(0, action.find(':'));
    if (name == "note" && !watched) continue;
    done->push_back(action);
    if (given.failing.count(name) != 0) return false;
  }
  return true;
}

void Check(const std::string& event, const Circumstances& given) {
  SCOPED_TRACE(testing::Message() << event << ": " << given);
  const bool watch = event.rfind("watched", 0) == 0;
  if (watch && (event == "watched") == given.watched) return;  // the other one's row
  const std::vector<const Row*> rows = RowsFor(event, given);
  ASSERT_EQ(rows.size(), 1u);
  const Row& row = *rows.front();

  Memory memory;
  Coherence coherence(memory, kWhole);
  ASSERT_NO_FATAL_FAILURE(Prepare(coherence, memory, given));
  const bool succeeded = Happen(event, coherence);

  Names expected;
  const bool followed = Follow(row, given, given.watched || watch, &expected);
  EXPECT_EQ(memory.done, expected);
  EXPECT_EQ(succeeded, followed || watch) << "watching itself cannot fail";
  const State next = followed ? row.next : given.state;
  EXPECT_EQ(coherence.state(), next);
  if (next == kGpu) return;  // where nobody asks
  const bool trusts = followed && row.trust != kSame ? row.trust == kGained : given.trusted;
  EXPECT_EQ(Trusts(coherence, memory), trusts);
}

TEST(Coherence, FollowsItsTable) {
  std::set<std::string> events;
  for (const Row& row : kTable) events.insert(row.event);
  EXPECT_EQ(events.size(), 14u);
  constexpr unsigned kFailures = 1u << std::size(kFallible);
  for (unsigned bits = 0; bits < 8 * kFailures; ++bits) {
    Circumstances given{kSynced, (bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0, {}};
    for (unsigned i = 0; i < std::size(kFallible); ++i) {
      if ((bits >> (3 + i) & 1) != 0) given.failing.insert(kFallible[i]);
    }
    for (const State state : {kSynced, kCpu, kGpu}) {
      given.state = state;
      for (const std::string& event : events) ASSERT_NO_FATAL_FAILURE(Check(event, given));
    }
  }
}

}  // namespace
