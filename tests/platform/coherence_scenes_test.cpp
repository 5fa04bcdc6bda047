// The coherence rule against a memory that is always coherent: whoever writes, everybody sees it.
#include "lumora/platform/buffer/coherence.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>

namespace {

using lumora::platform::Coherence;
using lumora::platform::CoherentMemory;

// An image with two sides. Its content is one number; equal numbers are equal pictures.
struct TwoSidedImage final : CoherentMemory {
  bool beginAccess() override { return reachable; }
  bool publish() override {
    ++published;
    gpu = cpu;
    return reachable;
  }
  bool fetch() override {
    if (!reachable) return false;
    ++fetched;
    cpu = gpu;
    return true;
  }
  void rememberCpu() override { remembered = cpu; }
  bool cpuChanged() override { return cpu != remembered; }

  int cpu = 0;
  int gpu = 0;
  int remembered = -1;
  int published = 0;
  int fetched = 0;
  bool reachable = true;  ///< false: the image's context is not current
  Coherence coherence{*this};
  int truth = 0;  ///< content in an always-coherent memory
};

class Coherent : public testing::TestWithParam<bool> {
 protected:
  Coherent() {
    if (!GetParam()) return;
    for (TwoSidedImage* image : {&r, &w0, &w1, &w2, &yy, &uv}) image->coherence.watch();
  }

  static void read(TwoSidedImage& image) {
    ASSERT_TRUE(image.coherence.lock());
    EXPECT_EQ(image.cpu, image.truth) << "the CPU reads an old picture";
  }

  void fill(TwoSidedImage& image) {
    ASSERT_TRUE(image.coherence.lock());
    image.cpu = image.truth = ++last_picture;
  }

  static void copy(TwoSidedImage& from, TwoSidedImage& to) {
    read(from);
    ASSERT_TRUE(to.coherence.lock());
    to.cpu = to.truth = from.truth;
  }

  static void unlock(TwoSidedImage& image) { ASSERT_TRUE(image.coherence.unlock()); }

  void draw(TwoSidedImage& from, TwoSidedImage& to) {
    to.coherence.drawnInto();
    EXPECT_EQ(from.gpu, from.truth) << "the GPU samples an old picture";
    to.gpu = to.truth = ++last_picture;
  }

  TwoSidedImage r, w0, w1, w2, yy, uv;
  int last_picture = 0;
};

INSTANTIATE_TEST_SUITE_P(Images, Coherent, testing::Values(false, true), [](const auto& watched) {
  return std::string(watched.param ? "Watched" : "Unwatched");
});

TEST_P(Coherent, PreviewFrames) {
  for (int frame = 0; frame < 3; ++frame) {
    fill(r);
    unlock(r);
    draw(r, w0);
    draw(w0, yy);
    draw(w0, uv);
    read(yy);
    read(uv);
  }
}

TEST_P(Coherent, ColourConversionCleansImagesThatTheGpuDrew) {
  fill(r);
  unlock(r);
  for (int frame = 0; frame < 2; ++frame) {
    draw(r, w0);
    unlock(w0);
    draw(w0, w1);
    unlock(w1);
    unlock(w1);
    draw(w1, r);
    unlock(r);
    draw(r, yy);
    draw(r, uv);
    read(yy);
    read(uv);
  }
}

TEST_P(Coherent, SamplingFacesWithoutUnlockBetweenPingPongDraws) {
  for (int faces = 1; faces <= 3; ++faces) {
    fill(r);
    unlock(r);
    draw(r, w1);
    unlock(w1);
    for (int face = 0; face < faces; ++face) {
      for (int sample = 0; sample < 5; ++sample) read(w1);
      if (face % 2 == 0) {
        draw(w1, w2);
      } else {
        draw(w2, w1);
      }
    }
    TwoSidedImage& result = faces % 2 == 1 ? w2 : w1;
    unlock(result);
    read(result);
  }
}

TEST_P(Coherent, SamplingManyPixelsFetchesOnce) {
  draw(r, w1);
  const int before = w1.fetched;
  for (int sample = 0; sample < 3600; ++sample) read(w1);
  EXPECT_EQ(w1.fetched, before + 1);
}

TEST_P(Coherent, BlocksOfOverlappingFaces) {
  for (int face = 0; face < 2; ++face) {
    for (int block = 0; block < 2; ++block) {
      fill(w2);  // expanded from the frame
      unlock(w2);
      draw(w2, w0);
      unlock(w0);
      draw(w0, w1);
      unlock(w1);
      copy(w1, r);  // back into the store
      unlock(r);
    }
  }
  draw(r, yy);
  draw(r, uv);
  read(yy);
  read(uv);
}

TEST_P(Coherent, BlocksFromAStoreWithoutTexture) {
  for (int block = 0; block < 3; ++block) {
    fill(w2);
    unlock(w2);
    draw(w2, r);
    draw(r, yy);
    draw(r, uv);
    unlock(yy);
    unlock(uv);
    read(yy);
    read(uv);
  }
}

TEST_P(Coherent, UnlockAfterDrawingMovesNothing) {
  draw(r, w0);
  const int published = w0.published;
  unlock(w0);
  EXPECT_EQ(w0.published, published);
  EXPECT_EQ(w0.coherence.state(), Coherence::State::Gpu);
}

TEST_P(Coherent, WritesThroughAKeptAddressReachTheGpu) {
  fill(r);
  unlock(r);
  r.cpu = r.truth = ++last_picture;
  unlock(r);
  draw(r, w0);
}

TEST_P(Coherent, WritesOfSeveralLocksReachTheGpuTogether) {
  fill(r);
  fill(r);
  read(r);
  unlock(r);
  draw(r, w0);
}

TEST_P(Coherent, ADrawReplacesWritesThatWereNotUnlocked) {
  fill(w0);
  draw(r, w0);
  unlock(w0);
  read(w0);
}

TEST_P(Coherent, TheFormerPictureWrittenAgainOverADrawReachesTheGpu) {
  fill(r);
  unlock(r);
  const int former = r.cpu;
  draw(w0, r);
  read(r);
  r.cpu = r.truth = former;
  unlock(r);
  draw(r, w0);
}

TEST_P(Coherent, BytesStayNewerWhileTheyCannotMove) {
  draw(r, w0);
  w0.reachable = false;
  EXPECT_FALSE(w0.coherence.lock());
  w0.reachable = true;
  read(w0);
  fill(w0);
  w0.reachable = false;
  EXPECT_FALSE(w0.coherence.unlock());
  w0.reachable = true;
  unlock(w0);
  draw(w0, w1);
}

TEST(Coherence, PreviewFramesMoveOnlyWhatIsNeeded) {
  TwoSidedImage frame, packed;
  for (int i = 0; i < 3; ++i) {
    frame.coherence.lock();
    frame.coherence.unlock();
    packed.coherence.drawnInto();
    packed.coherence.unlock();
    packed.coherence.lock();
  }
  EXPECT_EQ(frame.published, 3);
  EXPECT_EQ(frame.fetched, 0);
  EXPECT_EQ(packed.published, 0);
  EXPECT_EQ(packed.fetched, 3);
}

TEST(Coherence, OverwritingFetchesNothingAndIsAlwaysPublished) {
  for (const bool watched : {false, true}) {
    TwoSidedImage image;
    if (watched) image.coherence.watch();
    const int published = image.published;
    for (int i = 0; i < 3; ++i) {
      image.coherence.drawnInto();
      image.gpu = 100 + i;
      ASSERT_TRUE(image.coherence.lockForOverwrite());
      image.cpu = 7;  // the same picture again and again
      ASSERT_TRUE(image.coherence.unlock());
      EXPECT_EQ(image.gpu, 7);
    }
    EXPECT_EQ(image.fetched, 0);
    EXPECT_EQ(image.published, published + 3);
    if (!watched) continue;
    image.gpu = 8;  // a draw without notice
    ASSERT_TRUE(image.coherence.lock());
    EXPECT_EQ(image.cpu, 8);
  }
}

TEST(Coherence, OverwritingWaitsUntilTheCpuMayBegin) {
  TwoSidedImage image;
  image.coherence.drawnInto();
  image.gpu = 5;
  image.reachable = false;
  EXPECT_FALSE(image.coherence.lockForOverwrite());
  image.reachable = true;
  ASSERT_TRUE(image.coherence.lock());
  EXPECT_EQ(image.cpu, 5) << "what was drawn is still the newer side";
}

TEST(Coherence, DrawsWithoutNoticeAreSeenByEveryLock) {
  TwoSidedImage image;
  image.coherence.watch();
  for (int picture = 1; picture < 5; ++picture) {
    image.gpu = picture;
    if (picture % 2 == 0) image.coherence.unlock();  // a clean after rendering
    image.coherence.lock();
    EXPECT_EQ(image.cpu, picture);
  }
}

TEST(Coherence, WatchingKeepsWritesThatCameBefore) {
  TwoSidedImage image;
  image.coherence.lock();
  image.cpu = 7;
  image.coherence.watch();
  image.coherence.unlock();
  EXPECT_EQ(image.gpu, 7);
}

// Any order of operations that callers may use. A step is left out where it would break the rules:
// sampling what was written and not unlocked, writing through a kept address over a draw, and, for
// draws without notice, drawing over writes or between the lock after an announced draw and unlock.
class RandomOrder {
 public:
  explicit RandomOrder(unsigned seed, bool watched) : random_(seed), watched_(watched) {
    for (Slot& slot : slots_) {
      if (watched) slot.image.coherence.watch();
    }
  }

  void step() {
    Slot& slot = slots_[pick(slots_.size())];
    TwoSidedImage& image = slot.image;
    switch (pick(6)) {
      case 0:
        lock(slot);
        ASSERT_EQ(image.cpu, image.truth) << "the CPU reads an old picture";
        break;
      case 1:
        lock(slot);
        write(slot);
        break;
      case 2:
        if (slot.locked_since_draw) write(slot);
        break;
      case 3:
        ASSERT_TRUE(image.coherence.unlock());
        if (slot.locked_since_draw) slot.announced = false;
        slot.pending = false;
        break;
      case 4:
        drawInto(slot, slots_[pick(slots_.size())]);
        break;
      default:
        drawSilentlyInto(slot);
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

  size_t pick(size_t count) { return std::uniform_int_distribution<size_t>(0, count - 1)(random_); }

  static void lock(Slot& slot) {
    ASSERT_TRUE(slot.image.coherence.lock());
    slot.locked_since_draw = true;
  }

  void write(Slot& slot) {
    slot.image.cpu = slot.image.truth = ++last_picture_;
    slot.pending = true;
  }

  void drawInto(Slot& to, Slot& from) {
    if (from.pending || &to == &from) return;
    to.image.coherence.drawnInto();
    ASSERT_EQ(from.image.gpu, from.image.truth) << "the GPU samples an old picture";
    to.image.gpu = to.image.truth = ++last_picture_;
    to.pending = false;
    to.locked_since_draw = false;
    to.announced = true;
  }

  void drawSilentlyInto(Slot& to) {
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

TEST_P(Coherent, AnyOrderOfOperations) {
  for (unsigned seed = 0; seed < 300; ++seed) {
    RandomOrder order(seed, GetParam());
    for (int step = 0; step < 300; ++step) {
      order.step();
      ASSERT_FALSE(HasFatalFailure()) << "seed " << seed << ", step " << step;
    }
  }
}

}  // namespace
