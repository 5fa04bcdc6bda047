// SPDX-License-Identifier: Apache-2.0
// Two engines and a converter in one process, each on a thread of its own, a frame of each in turn:
// every frame comes out as from an engine that is alone.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

#include "engine/engine_thread.h"
#include "proofs/soak/soak.h"
#include "proofs/soak/soak_scene.h"

namespace lumora::test {
namespace {

using android::GPUColorConverter;
using Results = std::vector<Bytes>;

constexpr int kFrames = 5;

/// Frames of one size, processed one after another and over again.
class Player {
 public:
  using Process = std::function<Bytes(const Frame& frame)>;

  Player(Size size, Process process) : process_(std::move(process)) {
    for (int i = 0; i < kFrames; ++i) frames_.push_back(SkinFrame(size, i));
  }

  Bytes next() { return process_(frames_[turn_++ % kFrames]); }

 private:
  Process process_;
  std::vector<Frame> frames_;
  size_t turn_ = 0;
};

/// Something that processes frames, made and used on a thread of its own.
struct Actor {
  const char* name;
  std::function<std::unique_ptr<Player>()> make;
};

/// A player with whatever it needs alive as long as it lives.
template <typename Engine>
std::unique_ptr<Player> PlayerWith(std::shared_ptr<Engine> engine, Size size,
                                   Bytes (*process)(Engine&, const Frame&)) {
  return std::make_unique<Player>(
      size, [engine, process](const Frame& frame) { return process(*engine, frame); });
}

std::unique_ptr<Player> MakePreview(Size size, bool colour) {
  auto engine = std::make_shared<GPUBeautyFace>();
  engine->Init(size.width, size.height, size.width, size.height, nullptr, colour);
  return PlayerWith(engine, size, colour ? Whitened : Slimmed);
}

std::unique_ptr<Player> MakeConverter(Size size) {
  auto converter = std::make_shared<GPUColorConverter>();
  converter->Init(size.width, size.height, nullptr);
  return PlayerWith(converter, size, Converted);
}

const Actor kActors[] = {
    {"slimming engine",
     [] {
       return MakePreview({96, 64}, false);
     }},
    {"whitening engine",
     [] {
       return MakePreview({64, 96}, true);
     }},
    {"converter",
     [] {
       return MakeConverter({128, 48});
     }},
};

/// What an actor makes of its first frames, and of the same frames ever after: the first of all is
/// sampled by the filters that the set-up chose, the others by those that packing left.
struct Expected {
  Results first, later;

  const Bytes& at(int turn) const {
    return (turn < kFrames ? first : later)[static_cast<size_t>(turn % kFrames)];
  }
};

Results OneRound(Player& player) {
  Results results;
  for (int i = 0; i < kFrames; ++i) results.push_back(player.next());
  return results;
}

Expected Alone(const Actor& actor) {
  const std::unique_ptr<Player> player = actor.make();
  Expected expected = {OneRound(*player), OneRound(*player)};
  EXPECT_EQ(expected.later, OneRound(*player)) << actor.name;
  EXPECT_NE(expected.later[0], expected.later[1]) << actor.name;
  return expected;
}

TEST(InTurnSoak, TwoEnginesAndAConverter) {
  constexpr size_t kCount = std::size(kActors);
  struct {
    Expected expected;
    std::unique_ptr<Player> player;
    EngineThread thread;
    int wrong = 0;
  } stages[kCount];
  for (size_t i = 0; i < kCount; ++i) {
    stages[i].expected = Alone(kActors[i]);
    stages[i].thread.run([&, i](auto&) { stages[i].player = kActors[i].make(); });
  }
  Soak("two engines, a converter in turn", Cycles(kCount), [&](int turn) {
    for (auto& stage : stages) {
      stage.thread.run(
          [&](auto&) { stage.wrong += stage.player->next() != stage.expected.at(turn) ? 1 : 0; });
    }
  });
  for (size_t i = 0; i < kCount; ++i) {
    EXPECT_EQ(stages[i].wrong, 0) << kActors[i].name;
    stages[i].thread.run([&, i](auto&) { stages[i].player.reset(); });
  }
}

}  // namespace
}  // namespace lumora::test
