// SPDX-License-Identifier: Apache-2.0
// Set-up and release, thousands of times with changing sizes: nothing adds up.
#include <gtest/gtest.h>

#include <algorithm>

#include "proofs/soak/bare_gl.h"
#include "proofs/soak/soak.h"
#include "proofs/soak/soak_scene.h"

namespace lumora::test {
namespace {

using android::GPUColorConverter;

/// Every so many set-ups a frame is drawn as well: drawing costs several times as much.
bool DrawsFrame(int number) {
  return number % 8 == 0;
}

void Preview(GPUBeautyFace& engine, int number, bool colour) {
  const Size size = SizeOf(number);
  int stride = 0;
  engine.Init(size.width, size.height, size.width, size.height, &stride, colour);
  if (!DrawsFrame(number)) return;
  const Frame frame = SkinFrame(size, number);
  EXPECT_NE(frame.bytes, colour ? Whitened(engine, frame) : Slimmed(engine, frame)) << number;
}

TEST(SetUpSoak, Preview) {
  GPUBeautyFace engine;
  Soak("Init, DeInit", Cycles(), [&](int i) {
    Preview(engine, i, false);
    engine.DeInit();
  });
}

TEST(SetUpSoak, PreviewInColour) {
  GPUBeautyFace engine;
  Soak("Init in colour, DeInit", Cycles(), [&](int i) {
    Preview(engine, i, true);
    engine.DeInit();
  });
}

TEST(SetUpSoak, PreviewOverPreview) {
  GPUBeautyFace engine;
  Soak("Init over Init", Cycles(4), [&](int i) {
    Preview(engine, 2 * i, true);
    Preview(engine, 2 * i + 1, false);
  });
}

TEST(SetUpSoak, BlockCapture) {
  GPUBeautyFace engine;
  Soak("InitCapture in blocks, DeInitCapture", Cycles(), [&](int i) {
    const Size size = SizeOf(i);
    int stride = 0;
    engine.InitCapture(nullptr, nullptr, size.width, size.height, &stride, true);
    if (DrawsFrame(i)) WhitenedCapture(engine, SkinFrame(size, i));
    engine.DeInitCapture();
  });
}

void CapturePlanes(GPUBeautyFace& engine, int number) {
  Frame frame = SkinFrame(SizeOf(number), number);
  engine.InitCapture(frame.luma(), frame.chroma(), frame.width, frame.height, nullptr, false);
  if (DrawsFrame(number)) SlimmedCapture(engine, frame);
}

// The warp of plane captures has no cache file; the shaders that it is compiled from stay with the
// context.
TEST(SetUpSoak, PlaneCapture) {
  GPUBeautyFace engine;
  CapturePlanes(engine, 1);
  const ProgramSources warp = SourcesOf(engine.m_pProgCheekSlimmer->m_hProgram);
  engine.DeInitCapture();
  Kept kept = {{{"shader", 2}}};
  kept.bytes = BytesKept(200, [&](int) { glDeleteProgram(MakeBareProgram(warp)); });
  Soak(
      "InitCapture of planes, DeInitCapture", Cycles(),
      [&](int i) {
        CapturePlanes(engine, i);
        engine.DeInitCapture();
      },
      kept);
}

// The store of a large capture is kept until the next one replaces it.
TEST(SetUpSoak, LargeCapture) {
  GPUBeautyFace engine;
  Soak("InitCapture above 4096 pixels", Cycles(20), [&](int i) {
    engine.InitCapture(nullptr, nullptr, 4100 + 2 * i % 64, 64 + i % 64, nullptr, true);
    engine.DeInitCapture();
  });
}

TEST(SetUpSoak, PreviewAndCaptureInTurn) {
  GPUBeautyFace engine;
  Soak("preview, capture, preview", Cycles(4), [&](int i) {
    Preview(engine, i, i % 2 == 0);
    engine.DeInit();
    const Size size = SizeOf(i + 1);
    engine.InitCapture(nullptr, nullptr, size.width, size.height, nullptr, true);
    if (DrawsFrame(i)) WhitenedCapture(engine, SkinFrame(size, i));
    engine.DeInitCapture();
  });
}

// The driver keeps something of every display that it ended and of every program that it drew with.
TEST(SetUpSoak, EngineLife) {
  const int cycles = Cycles(4);
  const BareLives bare;
  Kept driver = MeasureKept(std::max(cycles / 4, 24), [&](int i) { bare.live(DrawsFrame(i)); });
  driver.ends_context = true;
  Soak(
      "engine: life with a preview", cycles,
      [](int i) {
        GPUBeautyFace engine;
        Preview(engine, i, i % 2 == 0);
      },
      driver);
}

void Convert(GPUColorConverter& converter, int number) {
  const Size size = SizeOf(number);
  int stride = 0;
  converter.Init(size.width & ~15, size.height, &stride);
  if (!DrawsFrame(number)) return;
  const Frame frame = SkinFrame({size.width & ~15, size.height}, number);
  Converted(converter, frame);
}

// The converter deletes its first program and leaves the second, and neither program's shaders;
// all of them go with the converter.
TEST(SetUpSoak, ConverterKeepsItsSecondProgramForLife) {
  Kept kept = {{{"program", 1}, {"shader", 4}}};
  {
    GPUColorConverter converter;
    converter.Init(64, 64, nullptr);
    const ProgramSources first = SourcesOf(converter.m_hYUV2RGBProgram);
    const ProgramSources second = SourcesOf(converter.m_hRGB2HSIProgram);
    kept.bytes = BytesKept(100, [&](int) {
      glDeleteProgram(MakeBareProgram(first));
      MakeBareProgram(second);
    });
  }
  GPUColorConverter converter;
  Soak(
      "converter: Init, DeInit in one life", 100,
      [&](int i) {
        Convert(converter, i);
        converter.DeInit();
      },
      kept);
}

TEST(SetUpSoak, Converter) {
  constexpr int kCyclesPerLife = 20;
  const BareLives bare;
  Kept driver = MeasureKept(50, [&](int) { bare.live(true); });
  driver.ends_context = true;
  Soak(
      "converter: lives of 20 Init, DeInit", Cycles(kCyclesPerLife),
      [&](int life) {
        GPUColorConverter converter;
        for (int i = 0; i < kCyclesPerLife; ++i) {
          Convert(converter, life * kCyclesPerLife + i);
          converter.DeInit();
        }
      },
      driver);
}

}  // namespace
}  // namespace lumora::test
