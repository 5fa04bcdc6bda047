// SPDX-License-Identifier: Apache-2.0
// Two engines in one process.
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <vector>

#include "engine/engine_images.h"
#include "engine/engine_thread.h"
#include "reference/face_record.h"
#include "support/caller_memory.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

// What an engine is given: frames of one size with one face, different for each number.
struct Stream {
  explicit Stream(int number)
      : width(number == 0 ? 160 : 208),
        height(number == 0 ? 120 : 90),
        face(reference::SlimmingFace(width / 2, height / 2, 30 + 5 * number, 30, 20 * number)
                 .as<FACE_INFO_t>()) {
    for (uint32_t i = 0; i < 4; ++i) {
      frames.push_back(NoiseFrame(width, height, 10 * static_cast<uint32_t>(number) + i));
    }
  }

  int width, height;
  FACE_INFO_t face;
  std::vector<Frame> frames;
};

void Prepare(GPUBeautyFace& engine, const Stream& stream) {
  engine.Init(stream.width, stream.height, stream.width, stream.height, nullptr, false);
}

Bytes Slimmed(GPUBeautyFace& engine, const Stream& stream, size_t frame) {
  CallerFrame caller(stream.frames[frame]);
  EXPECT_EQ(1, engine.FaceProcess(caller.luma(), caller.chroma(), 8, stream.face, 0));
  return caller.bytes();
}

// The results of an engine that is alone in the process.
std::vector<Bytes> Alone(const Stream& stream) {
  GPUBeautyFace engine;
  Prepare(engine, stream);
  std::vector<Bytes> results;
  for (size_t i = 0; i < stream.frames.size(); ++i) results.push_back(Slimmed(engine, stream, i));
  return results;
}

class TwoThreads : public testing::Test {
 protected:
  void construct(size_t i) {
    next_frame_[i] = 0;
    threads_[i].run([&](std::unique_ptr<GPUBeautyFace>& engine) {
      engine = std::make_unique<GPUBeautyFace>();
      EXPECT_TRUE(engine->m_bEGLReady);
      Prepare(*engine, streams_[i]);
    });
  }

  // Processes the next frame of an engine's stream.
  void expect_frame(size_t i) {
    const size_t frame = next_frame_[i]++;
    Bytes result;
    threads_[i].run([&](std::unique_ptr<GPUBeautyFace>& engine) {
      result = Slimmed(*engine, streams_[i], frame);
    });
    const Stream& stream = streams_[i];
    EXPECT_EQ("", FirstDifference(expected_[i][frame], result, stream.width, stream.height))
        << "engine " << i << ", frame " << frame;
  }

  const Stream streams_[2] = {Stream(0), Stream(1)};
  const std::vector<Bytes> expected_[2] = {Alone(streams_[0]), Alone(streams_[1])};
  size_t next_frame_[2] = {};
  EngineThread threads_[2];
};

TEST_F(TwoThreads, EveryOrderOfConstructionAndDestruction) {
  for (const size_t first : {0u, 1u}) {
    for (const size_t first_gone : {0u, 1u}) {
      SCOPED_TRACE(testing::Message() << first << " comes first, " << first_gone << " goes first");
      construct(first);
      expect_frame(first);
      construct(1 - first);
      expect_frame(1 - first);
      expect_frame(first);
      threads_[first_gone].destroy();
      expect_frame(1 - first_gone);
      construct(first_gone);
      expect_frame(first_gone);
      expect_frame(1 - first_gone);
      threads_[first_gone].destroy();
      threads_[1 - first_gone].destroy();
    }
  }
}

TEST_F(TwoThreads, FramesInTurns) {
  construct(0);
  construct(1);
  for (size_t frame = 0; frame < 4; ++frame) {
    expect_frame(0);
    expect_frame(1);
  }
}

TEST_F(TwoThreads, FramesAtTheSameTime) {
  construct(0);
  construct(1);
  std::vector<Bytes> results[2];
  for (size_t i = 0; i < 2; ++i) {
    threads_[i].start([&, i](std::unique_ptr<GPUBeautyFace>& engine) {
      // The first frame, which is sampled differently, once; then the others again and again.
      results[i].push_back(Slimmed(*engine, streams_[i], 0));
      for (size_t frame = 0; frame < 40; ++frame) {
        results[i].push_back(Slimmed(*engine, streams_[i], 1 + frame % 3));
      }
    });
  }
  for (EngineThread& thread : threads_) thread.wait();
  for (size_t i = 0; i < 2; ++i) {
    ASSERT_EQ(41u, results[i].size());
    EXPECT_EQ(expected_[i][0], results[i][0]);
    for (size_t frame = 0; frame < 40; ++frame) {
      ASSERT_EQ(expected_[i][1 + frame % 3], results[i][1 + frame]) << "engine " << i;
    }
  }
}

TEST_F(TwoThreads, LivesAtTheSameTime) {
  Bytes results[2][5];
  for (size_t i = 0; i < 2; ++i) {
    threads_[i].start([&, i](std::unique_ptr<GPUBeautyFace>& engine) {
      for (Bytes& result : results[i]) {
        engine = std::make_unique<GPUBeautyFace>();
        Prepare(*engine, streams_[i]);
        result = Slimmed(*engine, streams_[i], 0);
        engine.reset();
      }
    });
  }
  for (EngineThread& thread : threads_) thread.wait();
  for (size_t i = 0; i < 2; ++i) {
    for (const Bytes& result : results[i]) EXPECT_EQ(expected_[i][0], result) << "engine " << i;
  }
}

TEST_F(TwoThreads, ACaptureBesideAPreview) {
  construct(0);
  threads_[1].run([](std::unique_ptr<GPUBeautyFace>& engine) {
    engine = std::make_unique<GPUBeautyFace>();
    engine->InitCapture(nullptr, nullptr, 1400, 900, nullptr, true);
  });
  expect_frame(0);
  threads_[1].run([](std::unique_ptr<GPUBeautyFace>& engine) { engine->DeInitCapture(); });
  threads_[1].destroy();
  expect_frame(0);
}

// Capture blocks are drawn at texture coordinates of their own, previews at the whole texture's.
TEST_F(TwoThreads, CaptureBlocksWhileAPreviewDraws) {
  constexpr int kWidth = 1400;
  constexpr int kHeight = 900;
  constexpr int kRounds = 30;
  const auto blocks = [](GPUBeautyFace& engine) {
    CallerPlanes planes(kWidth, kHeight);
    EXPECT_EQ(1, engine.CopyMemYUVfromSrcTextureLarge(planes.luma(), planes.chroma(), 0, 1));
    return planes.bytes();
  };
  construct(0);
  Bytes expected;
  threads_[1].run([&](std::unique_ptr<GPUBeautyFace>& engine) {
    engine = std::make_unique<GPUBeautyFace>();
    engine->InitCapture(nullptr, nullptr, kWidth, kHeight, nullptr, true);
    SetPixels(*engine->m_pWorkImage[1], NoiseImage(1408, kHeight, 3));
    engine->m_rcFaceProcess[0] = {200, 100, 700, 600, 0};
    expected = blocks(*engine);
  });
  std::atomic<bool> ended = false;
  int different = 0;
  threads_[1].start([&](std::unique_ptr<GPUBeautyFace>& engine) {
    for (int i = 0; i < kRounds; ++i) different += blocks(*engine) != expected;
    engine->DeInitCapture();
    ended = true;
  });
  int different_frames = 0;
  threads_[0].run([&](std::unique_ptr<GPUBeautyFace>& engine) {
    for (size_t i = 0; !ended; ++i) {
      const size_t frame = i == 0 ? 0 : 1 + i % 3;
      different_frames += Slimmed(*engine, streams_[0], frame) != expected_[0][frame];
    }
  });
  threads_[1].wait();
  EXPECT_EQ(0, different);
  EXPECT_EQ(0, different_frames);
}

// On one thread the rule is one live engine. Breaking it must not crash, the newest engine works,
// and once all are gone the next one works.
TEST(OneThread, TheNewestOfNestedEnginesWorks) {
  const Stream stream(0);
  const std::vector<Bytes> expected = Alone(stream);
  auto outer = std::make_unique<GPUBeautyFace>();
  Prepare(*outer, stream);
  EXPECT_EQ(expected[0], Slimmed(*outer, stream, 0));
  auto inner = std::make_unique<GPUBeautyFace>();
  Prepare(*inner, stream);
  EXPECT_EQ(expected[0], Slimmed(*inner, stream, 0));
  EXPECT_EQ(inner->m_eglContext, eglGetCurrentContext()) << "it took the thread's context";
  inner.reset();

  // The survivor's context is not current; with it made current the engine is as it was.
  EXPECT_EQ(EGL_NO_CONTEXT, eglGetCurrentContext());
  ASSERT_EQ(EGL_TRUE, eglMakeCurrent(outer->m_eglDisplay, outer->m_eglSurface, outer->m_eglSurface,
                                     outer->m_eglContext));
  EXPECT_EQ(expected[1], Slimmed(*outer, stream, 1));
  outer.reset();
  EXPECT_EQ(expected, Alone(stream));
}

TEST(OneThread, NoOrderOfDestructionCrashes) {
  const Stream stream(1);
  const std::vector<Bytes> expected = Alone(stream);
  for (const bool outer_first : {false, true}) {
    for (const bool set_up : {false, true}) {
      auto outer = std::make_unique<GPUBeautyFace>();
      if (set_up) Prepare(*outer, stream);
      auto inner = std::make_unique<GPUBeautyFace>();
      if (set_up) Prepare(*inner, stream);
      (outer_first ? outer : inner).reset();
      CallerFrame caller(stream.frames[0]);
      GPUBeautyFace& survivor = outer_first ? *inner : *outer;
      survivor.FaceProcess(caller.luma(), caller.chroma(), 8, stream.face, 0);
      EXPECT_TRUE(caller.intact());
      outer.reset();
      inner.reset();
      EXPECT_EQ(expected, Alone(stream)) << "the next engine works";
    }
  }
}

}  // namespace
}  // namespace lumora::test
