// SPDX-License-Identifier: Apache-2.0
// Moving frames between formats, strides and the engine's padded frame.
#include "pipeline/frames/frame_copy.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "lumora/geometry/rounding.h"
#include "pipeline/frames/frame_layout.h"
#include "pipeline/frames/frame_memory.h"

namespace lumora::test {
namespace {

constexpr std::pair<int, int> kSizes[] = {{32, 32}, {33, 35}, {64, 48}, {127, 61}, {200, 77}};

std::string Name(PixelFormat from, PixelFormat to, int width, int height) {
  return "format " + std::to_string(static_cast<int>(from)) + " to " +
         std::to_string(static_cast<int>(to)) + ", " + std::to_string(width) + " x " +
         std::to_string(height);
}

TEST(CopyFrame, KeepsEverySampleInEveryFormatAndStride) {
  for (const auto& [width, height] : kSizes) {
    const Samples samples = NoiseSamples(width, height);
    for (const PixelFormat from : kAllFormats) {
      for (const PixelFormat to : kAllFormats) {
        for (const int slack : {0, 1, 29}) {
          FrameMemory in(from, width, height, slack);
          FrameMemory out(to, width, height, 30 - slack);
          in.Fill(samples);
          CopyFrame(in.const_view(), out.view());
          EXPECT_TRUE(out.Read() == samples) << Name(from, to, width, height);
          EXPECT_TRUE(out.GuardsIntact()) << Name(from, to, width, height);
          EXPECT_TRUE(in.Read() == samples) << Name(from, to, width, height);
        }
      }
    }
  }
}

TEST(CopyFrame, OfAFrameToItselfChangesNothing) {
  FrameMemory frame(PixelFormat::NV21, 40, 40, 3);
  frame.Fill(NoiseSamples(40, 40));
  const auto before = frame.Everything();
  CopyFrame(frame.const_view(), frame.view());
  EXPECT_EQ(frame.Everything(), before);
}

TEST(CopyFrame, ConvertsInPlace) {
  const Samples samples = NoiseSamples(101, 41);
  FrameMemory frame(PixelFormat::NV21, 101, 41);
  frame.Fill(samples);
  FrameView as_nv12 = frame.view();
  as_nv12.format = PixelFormat::NV12;
  CopyFrame(frame.const_view(), as_nv12);
  Samples swapped = samples;
  std::swap(swapped.cb, swapped.cr);
  EXPECT_TRUE(frame.Read() == swapped);  // the same bytes read as NV21 have their chroma exchanged
  EXPECT_TRUE(frame.GuardsIntact());
}

TEST(CopyFrame, CopiesBetweenFramesThatOverlap) {
  // The output begins two rows below the input, in the same planes.
  const int width = 48, height = 40;
  FrameMemory tall(PixelFormat::NV21, width, height + 4);
  tall.Fill(NoiseSamples(width, height + 4));
  FrameView in = tall.view();
  in.height = height;
  FrameView out = in;
  out.planes[0] += 4 * out.strides[0];
  out.planes[1] += 2 * out.strides[1];

  FrameMemory expected(PixelFormat::NV21, width, height);
  CopyFrame(AsConst(in), expected.view());
  CopyFrame(AsConst(in), out);
  FrameMemory actual(PixelFormat::NV21, width, height);
  CopyFrame(AsConst(out), actual.view());
  EXPECT_TRUE(actual.Read() == expected.Read());
  EXPECT_TRUE(tall.GuardsIntact());
}

/// A frame in planes that begin where they are told to.
struct PlacedFrame {
  FrameView view;
  std::array<size_t, 3> bytes{};  ///< of each plane, from its first sample to behind its last

  PlacedFrame(PixelFormat format, int width, int height, int slack) {
    view.format = format;
    view.width = width;
    view.height = height;
    for (size_t plane = 0; plane < PlaneCount(format); ++plane) {
      view.strides[plane] = RowBytes(format, plane, width) + slack;
      bytes[plane] = static_cast<size_t>((PlaneRows(plane, height) - 1) * view.strides[plane] +
                                         RowBytes(format, plane, width));
    }
  }
};

TEST(CopyFrame, CopiesBetweenFramesThatShareASingleByte) {
  const int width = 35, height = 33;
  const Samples samples = NoiseSamples(width, height);
  for (const PixelFormat from : kAllFormats) {
    for (const PixelFormat to : kAllFormats) {
      for (const int slack : {0, 7}) {
        for (size_t i = 0; i < PlaneCount(from); ++i) {
          for (size_t o = 0; o < PlaneCount(to); ++o) {
            for (const bool input_first : {true, false}) {
              PlacedFrame in(from, width, height, slack), out(to, width, height, slack);
              constexpr size_t kRoom = 4096;  // holds any two planes
              std::vector<uint8_t> planes(8 * kRoom);
              for (size_t plane = 0; plane < 3; ++plane) {
                in.view.planes[plane] = planes.data() + plane * kRoom;
                out.view.planes[plane] = planes.data() + (4 + plane) * kRoom;
              }
              // The last byte of one plane is the first of the other.
              if (input_first) {
                out.view.planes[o] = in.view.planes[i] + in.bytes[i] - 1;
              } else {
                in.view.planes[i] = out.view.planes[o] + out.bytes[o] - 1;
              }
              FrameMemory whole(from, width, height), result(to, width, height);
              whole.Fill(samples);
              CopyFrame(whole.const_view(), in.view);
              CopyFrame(AsConst(in.view), out.view);
              CopyFrame(AsConst(out.view), result.view());
              EXPECT_TRUE(result.Read() == samples)
                  << Name(from, to, width, height) << ", plane " << i
                  << (input_first ? " < " : " > ") << o << ", slack " << slack;
            }
          }
        }
      }
    }
  }
}

TEST(PaddedFrame, GivesBackWhatItTookInWhateverTheFormats) {
  PaddedFrame padded;  // one for all: sizes change from frame to frame
  for (const auto& [width, height] : kSizes) {
    const Samples samples = NoiseSamples(width, height);
    for (const PixelFormat from : kAllFormats) {
      for (const PixelFormat to : kAllFormats) {
        FrameMemory in(from, width, height, 5);
        FrameMemory out(to, width, height, 7);
        in.Fill(samples);
        padded.Load(in.const_view());
        padded.Store(out.view());
        EXPECT_TRUE(out.Read() == samples) << Name(from, to, width, height);
        EXPECT_TRUE(out.GuardsIntact()) << Name(from, to, width, height);
      }
    }
  }
}

TEST(PaddedFrame, RepeatsTheLastColumnAndRow) {
  for (const auto& [width, height] : kSizes) {
    const Samples samples = NoiseSamples(width, height);
    FrameMemory in(PixelFormat::I420, width, height);
    in.Fill(samples);
    PaddedFrame padded;
    padded.Load(in.const_view());
    ASSERT_EQ(padded.width() % 32, 0);
    ASSERT_EQ(padded.height() % 32, 0);
    ASSERT_GE(padded.width(), width);
    ASSERT_LT(padded.width(), width + 32);
    ASSERT_GE(padded.height(), height);
    ASSERT_LT(padded.height(), height + 32);

    const int chroma_width = in.chroma_width(), chroma_height = in.chroma_height();
    for (int y = 0; y < padded.height(); ++y) {
      for (int x = 0; x < padded.width(); ++x) {
        const int from = std::min(y, height - 1) * width + std::min(x, width - 1);
        ASSERT_EQ(padded.luma()[y * padded.width() + x], samples.y[static_cast<size_t>(from)])
            << x << ", " << y;
      }
    }
    for (int y = 0; y < padded.height() / 2; ++y) {
      for (int x = 0; x < padded.width() / 2; ++x) {
        const auto from = static_cast<size_t>(std::min(y, chroma_height - 1) * chroma_width +
                                              std::min(x, chroma_width - 1));
        const uint8_t* const pair = padded.chroma() + y * padded.width() + 2 * x;
        ASSERT_EQ(pair[0], samples.cr[from]) << x << ", " << y;
        ASSERT_EQ(pair[1], samples.cb[from]) << x << ", " << y;
      }
    }
  }
}

TEST(PaddedFrame, HoldsAFrameAtAnyPlaceAndExtendsItToAllSides) {
  for (const auto& [width, height] : kSizes) {
    const Samples samples = NoiseSamples(width, height);
    FrameMemory in(PixelFormat::NV12, width, height), out(PixelFormat::I420, width, height, 3);
    in.Fill(samples);
    PaddedFrame padded;
    const FramePlace place = {(RoundUpTo32(width) - width) / 4 * 2,
                              (RoundUpTo32(height) - height) / 4 * 2};
    padded.Load(in.const_view(), place);
    padded.Store(out.view());
    EXPECT_TRUE(out.Read() == samples);
    EXPECT_TRUE(out.GuardsIntact());
    for (int y = 0; y < padded.height(); ++y) {
      for (int x = 0; x < padded.width(); ++x) {
        const int from = std::clamp(y - place.top, 0, height - 1) * width +
                         std::clamp(x - place.left, 0, width - 1);
        ASSERT_EQ(padded.luma()[y * padded.width() + x], samples.y[static_cast<size_t>(from)])
            << x << ", " << y;
      }
    }
    const int chroma_width = in.chroma_width(), chroma_height = in.chroma_height();
    for (int y = 0; y < padded.height() / 2; ++y) {
      for (int x = 0; x < padded.width() / 2; ++x) {
        const auto from =
            static_cast<size_t>(std::clamp(y - place.top / 2, 0, chroma_height - 1) * chroma_width +
                                std::clamp(x - place.left / 2, 0, chroma_width - 1));
        ASSERT_EQ(padded.chroma()[y * padded.width() + 2 * x], samples.cr[from]) << x << ", " << y;
      }
    }
  }
}

TEST(PaddedFrame, TakesOtherAlignmentsOfItsRows) {
  FrameMemory in(PixelFormat::NV21, 97, 33);
  PaddedFrame padded(128);
  padded.Load(in.const_view());
  EXPECT_EQ(padded.width(), 128);
  EXPECT_EQ(padded.height(), 64);
}

}  // namespace
}  // namespace lumora::test
