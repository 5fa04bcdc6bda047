// SPDX-License-Identifier: Apache-2.0
// The coherence rule in the engine's orders of calls, against a memory that is always coherent:
// whoever writes, everybody sees it.
#include <gtest/gtest.h>

#include <string>

#include "platform/buffer/two_sided_image.h"

namespace {

using lumora::platform::Coherence;
using lumora::test::TwoSidedImage;

class Coherent : public testing::TestWithParam<bool> {
 protected:
  Coherent() {
    if (!GetParam()) return;
    for (TwoSidedImage* image : {&r, &w0, &w1, &w2, &yy, &uv}) image->coherence.Watch();
  }

  static void Read(TwoSidedImage& image) {
    ASSERT_TRUE(image.Lock());
    EXPECT_EQ(image.cpu, image.truth) << "the CPU reads an old picture";
  }

  void Fill(TwoSidedImage& image) {
    ASSERT_TRUE(image.Lock());
    image.cpu = image.truth = ++last_picture;
  }

  static void Copy(TwoSidedImage& from, TwoSidedImage& to) {
    Read(from);
    ASSERT_TRUE(to.Lock());
    to.cpu = to.truth = from.truth;
  }

  static void Unlock(TwoSidedImage& image) { ASSERT_TRUE(image.Unlock()); }

  void Draw(TwoSidedImage& from, TwoSidedImage& to) {
    to.coherence.Drawn();
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
    Fill(r);
    Unlock(r);
    Draw(r, w0);
    Draw(w0, yy);
    Draw(w0, uv);
    Read(yy);
    Read(uv);
  }
}

TEST_P(Coherent, ColourConversionCleansImagesThatTheGpuDrew) {
  Fill(r);
  Unlock(r);
  for (int frame = 0; frame < 2; ++frame) {
    Draw(r, w0);
    Unlock(w0);
    Draw(w0, w1);
    Unlock(w1);
    Unlock(w1);
    Draw(w1, r);
    Unlock(r);
    Draw(r, yy);
    Draw(r, uv);
    Read(yy);
    Read(uv);
  }
}

TEST_P(Coherent, SamplingFacesWithoutUnlockBetweenPingPongDraws) {
  for (int faces = 1; faces <= 3; ++faces) {
    Fill(r);
    Unlock(r);
    Draw(r, w1);
    Unlock(w1);
    for (int face = 0; face < faces; ++face) {
      for (int sample = 0; sample < 5; ++sample) Read(w1);
      if (face % 2 == 0) {
        Draw(w1, w2);
      } else {
        Draw(w2, w1);
      }
    }
    TwoSidedImage& result = faces % 2 == 1 ? w2 : w1;
    Unlock(result);
    Read(result);
  }
}

TEST_P(Coherent, SamplingManyPixelsFetchesOnce) {
  Draw(r, w1);
  const int before = w1.fetched;
  for (int sample = 0; sample < 3600; ++sample) Read(w1);
  EXPECT_EQ(w1.fetched, before + 1);
}

TEST_P(Coherent, BlocksOfOverlappingFaces) {
  for (int face = 0; face < 2; ++face) {
    for (int block = 0; block < 2; ++block) {
      Fill(w2);  // expanded from the frame
      Unlock(w2);
      Draw(w2, w0);
      Unlock(w0);
      Draw(w0, w1);
      Unlock(w1);
      Copy(w1, r);  // back into the store
      Unlock(r);
    }
  }
  Draw(r, yy);
  Draw(r, uv);
  Read(yy);
  Read(uv);
}

TEST_P(Coherent, BlocksFromAStoreWithoutTexture) {
  for (int block = 0; block < 3; ++block) {
    Fill(w2);
    Unlock(w2);
    Draw(w2, r);
    Draw(r, yy);
    Draw(r, uv);
    Unlock(yy);
    Unlock(uv);
    Read(yy);
    Read(uv);
  }
}

TEST_P(Coherent, UnlockAfterDrawingMovesNothing) {
  Draw(r, w0);
  const int published = w0.published;
  Unlock(w0);
  EXPECT_EQ(w0.published, published);
  EXPECT_EQ(w0.coherence.state(), Coherence::State::Gpu);
}

TEST_P(Coherent, WritesThroughAKeptAddressReachTheGpu) {
  Fill(r);
  Unlock(r);
  r.cpu = r.truth = ++last_picture;
  Unlock(r);
  Draw(r, w0);
}

TEST_P(Coherent, WritesOfSeveralLocksReachTheGpuTogether) {
  Fill(r);
  Fill(r);
  Read(r);
  Unlock(r);
  Draw(r, w0);
}

TEST_P(Coherent, ADrawReplacesWritesThatWereNotUnlocked) {
  Fill(w0);
  Draw(r, w0);
  Unlock(w0);
  Read(w0);
}

TEST_P(Coherent, TheFormerPictureWrittenAgainOverADrawReachesTheGpu) {
  Fill(r);
  Unlock(r);
  const int former = r.cpu;
  Draw(w0, r);
  Read(r);
  r.cpu = r.truth = former;
  Unlock(r);
  Draw(r, w0);
}

TEST_P(Coherent, BytesStayNewerWhileTheyCannotMove) {
  Draw(r, w0);
  w0.reachable = false;
  EXPECT_FALSE(w0.Lock());
  w0.reachable = true;
  Read(w0);
  Fill(w0);
  w0.reachable = false;
  EXPECT_FALSE(w0.Unlock());
  w0.reachable = true;
  Unlock(w0);
  Draw(w0, w1);
}

TEST(Coherence, PreviewFramesMoveOnlyWhatIsNeeded) {
  TwoSidedImage frame, packed;
  for (int i = 0; i < 3; ++i) {
    frame.Lock();
    frame.Unlock();
    packed.coherence.Drawn();
    packed.Unlock();
    packed.Lock();
  }
  EXPECT_EQ(frame.published, 3);
  EXPECT_EQ(frame.fetched, 0);
  EXPECT_EQ(packed.published, 0);
  EXPECT_EQ(packed.fetched, 3);
}

TEST(Coherence, OverwritingFetchesNothingAndIsAlwaysPublished) {
  for (const bool watched : {false, true}) {
    TwoSidedImage image;
    if (watched) image.coherence.Watch();
    const int published = image.published;
    for (int i = 0; i < 3; ++i) {
      image.coherence.Drawn();
      image.gpu = 100 + i;
      ASSERT_TRUE(image.Overwrite());
      image.cpu = 7;  // the same picture again and again
      ASSERT_TRUE(image.Unlock());
      EXPECT_EQ(image.gpu, 7);
    }
    EXPECT_EQ(image.fetched, 0);
    EXPECT_EQ(image.published, published + 3);
    if (!watched) continue;
    image.gpu = 8;  // a draw without notice
    ASSERT_TRUE(image.Lock());
    EXPECT_EQ(image.cpu, 8);
  }
}

TEST(Coherence, OverwritingWaitsUntilTheCpuMayBegin) {
  TwoSidedImage image;
  image.coherence.Drawn();
  image.gpu = 5;
  image.reachable = false;
  EXPECT_FALSE(image.Overwrite());
  image.reachable = true;
  ASSERT_TRUE(image.Lock());
  EXPECT_EQ(image.cpu, 5) << "what was drawn is still the newer side";
}

TEST(Coherence, DrawsWithoutNoticeAreSeenByEveryLock) {
  TwoSidedImage image;
  image.coherence.Watch();
  for (int picture = 1; picture < 5; ++picture) {
    image.gpu = picture;
    if (picture % 2 == 0) image.Unlock();  // a clean after rendering
    image.Lock();
    EXPECT_EQ(image.cpu, picture);
  }
}

TEST(Coherence, WatchingKeepsWritesThatCameBefore) {
  TwoSidedImage image;
  image.Lock();
  image.cpu = 7;
  image.coherence.Watch();
  image.Unlock();
  EXPECT_EQ(image.gpu, 7);
}

}  // namespace
