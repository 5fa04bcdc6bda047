// SPDX-License-Identifier: Apache-2.0
// The coherence rule in any order of operations, against a memory that is always coherent.
#include <gtest/gtest.h>

#include <array>
#include <random>

#include "platform/buffer/two_sided_image.h"

namespace {

using lumora::test::TwoSidedImage;

// Any order of operations that callers may use. A step is left out where it would break the rules:
// sampling what was written and not unlocked, writing through a kept address over a draw, and, for
// draws without notice, drawing over writes or between the lock after an announced draw and unlock.
class RandomOrder {
 public:
  explicit RandomOrder(unsigned seed, bool watched) : random_(seed), watched_(watched) {
    for (Slot& slot : slots_) {
      if (watched) slot.image.coherence.Watch();
    }
  }

  void Step() {
    Slot& slot = slots_[Pick(slots_.size())];
    TwoSidedImage& image = slot.image;
    switch (Pick(6)) {
      case 0:
        Lock(slot);
        ASSERT_EQ(image.cpu, image.truth) << "the CPU reads an old picture";
        break;
      case 1:
        Lock(slot);
        Write(slot);
        break;
      case 2:
        if (slot.locked_since_draw) Write(slot);
        break;
      case 3:
        ASSERT_TRUE(image.Unlock());
        if (slot.locked_since_draw) slot.announced = false;
        slot.pending = false;
        break;
      case 4:
        DrawInto(slot, slots_[Pick(slots_.size())]);
        break;
      default:
        DrawSilentlyInto(slot);
        break;
    }
  }

 private:
  struct Slot {
    TwoSidedImage image;
    bool pending = false;  ///< written and not unlocked
    bool locked_since_draw = true;
    bool announced = false;  ///< drawn into with notice and not unlocked since the following lock
  };

  size_t Pick(size_t count) { return std::uniform_int_distribution<size_t>(0, count - 1)(random_); }

  static void Lock(Slot& slot) {
    ASSERT_TRUE(slot.image.Lock());
    slot.locked_since_draw = true;
  }

  void Write(Slot& slot) {
    slot.image.cpu = slot.image.truth = ++last_picture_;
    slot.pending = true;
  }

  void DrawInto(Slot& to, Slot& from) {
    if (from.pending || &to == &from) return;
    to.image.coherence.Drawn();
    ASSERT_EQ(from.image.gpu, from.image.truth) << "the GPU samples an old picture";
    to.image.gpu = to.image.truth = ++last_picture_;
    to.pending = false;
    to.locked_since_draw = false;
    to.announced = true;
  }

  void DrawSilentlyInto(Slot& to) {
    const bool unseen = to.announced && to.locked_since_draw;
    if (!watched_ || to.pending || unseen) return;
    to.image.gpu = to.image.truth = ++last_picture_;
    to.locked_since_draw = false;
  }

  std::mt19937 random_;
  const bool watched_;
  std::array<Slot, 3> slots_;
  int last_picture_ = 0;
};

TEST(CoherenceInAnyOrder, ShowsEverybodyTheNewestPicture) {
  for (unsigned seed = 0; seed < 600; ++seed) {
    RandomOrder order(seed, seed % 2 == 0);
    for (int step = 0; step < 300; ++step) {
      order.Step();
      ASSERT_FALSE(HasFatalFailure()) << "seed " << seed << ", step " << step;
    }
  }
}

}  // namespace
