// SPDX-License-Identifier: Apache-2.0
// What is refused before any work, and with which words.
#include "pipeline/frames/frame_check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <vector>

#include "pipeline/faces/random_faces.h"
#include "pipeline/frames/frame_layout.h"
#include "pipeline/frames/frame_memory.h"
#include "pipeline/request_check.h"

namespace lumora::test {
namespace {

struct Arguments {
  ConstFrameView in;
  FrameView out;
  std::vector<Face> faces;
  Look look;
};

struct RefusedCase {
  const char* name;
  std::function<void(Arguments&)> spoil;
  StatusCode code;
  const char* words;  ///< part of the message
};

class CheckArgumentsTest : public ::testing::Test {
 protected:
  Arguments Good() {
    return {in_.const_view(), out_.view(), {FaceFromEyes({20, 20}, {40, 20})}, Look{50}};
  }
  static Status Check(const Arguments& a) { return CheckArguments(a.in, a.out, a.faces, a.look); }

  FrameMemory in_{PixelFormat::NV21, 64, 48};
  FrameMemory out_{PixelFormat::I420, 64, 48};
};

TEST_F(CheckArgumentsTest, TakesWhatIsRight) {
  const Status status = Check(Good());
  EXPECT_TRUE(status.ok()) << status.message;
  EXPECT_TRUE(status.message.empty());
}

TEST_F(CheckArgumentsTest, TakesEveryEndOfTheRanges) {
  for (const int slim : {0, 100}) {
    Arguments arguments = Good();
    arguments.look.slim = slim;
    EXPECT_TRUE(Check(arguments).ok()) << slim;
  }
  FrameMemory smallest(PixelFormat::NV12, 32, 32);
  EXPECT_TRUE(CheckArguments(smallest.const_view(), smallest.view(), {}, Look{}).ok());
}

TEST_F(CheckArgumentsTest, BoundsEveryNumberOfAFace) {
  Arguments arguments = Good();
  const size_t count = NumbersOf(arguments.faces[0]).size();
  for (size_t i = 0; i < count; ++i) {
    for (const float sign : {1.f, -1.f}) {
      arguments = Good();
      float& number = *NumbersOf(arguments.faces[0])[i];
      const Face& face = arguments.faces[0];
      const bool length = &number == &face.box.width || &number == &face.box.height;
      const float most = &number == &face.roll_degrees ? kLargestRoll : length ? 2048 : 1024;
      number = sign * most;
      EXPECT_TRUE(Check(arguments).ok()) << i;
      for (const float more : {std::nextafter(most, 1e38f), 1e6f, 1e38f}) {
        number = sign * more;
        EXPECT_EQ(Check(arguments).code, StatusCode::InvalidArgument) << i << ", " << number;
      }
    }
  }
}

TEST_F(CheckArgumentsTest, TakesAnAdaptersFaceWithLandmarksAtBothEnds) {
  PointF points[68] = {};
  points[0] = {-1024, -1024};
  points[16] = {1024, 1024};
  Arguments arguments = Good();
  arguments.faces = {FaceFromIbug68(points)};
  EXPECT_TRUE(Check(arguments).ok());
}

TEST_F(CheckArgumentsTest, BoundsTheCoefficientsOfALens) {
  const auto check = [](size_t i, float value) {
    LensCoefficients lens;
    float* const numbers[] = {&lens.k0, &lens.k1, &lens.k2, &lens.k3};
    *numbers[i] = value;
    return CheckLens(lens);
  };
  EXPECT_TRUE(CheckLens({}).ok());
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_TRUE(check(i, kLargestCoefficient).ok());
    EXPECT_TRUE(check(i, -kLargestCoefficient).ok());
    for (const float more : {1000.1f, -1000.1f, 1e38f, -1e38f}) {
      const Status status = check(i, more);
      EXPECT_EQ(status.code, StatusCode::InvalidArgument);
      EXPECT_THAT(status.message, testing::HasSubstr("its range, which is -1000 to 1000"));
    }
    EXPECT_THAT(check(i, std::numeric_limits<float>::quiet_NaN()).message,
                testing::HasSubstr("not finite"));
  }
}

TEST_F(CheckArgumentsTest, RefusesWhatIsWrongWithASentence) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float infinity = std::numeric_limits<float>::infinity();
  const auto invalid = StatusCode::InvalidArgument;
  const std::vector<RefusedCase> cases = {
      {"no luma", [](Arguments& a) { a.in.planes[0] = nullptr; }, invalid,
       "plane 0 of the input frame is null"},
      {"no chroma", [](Arguments& a) { a.in.planes[1] = nullptr; }, invalid,
       "plane 1 of the input frame is null"},
      {"no third plane", [](Arguments& a) { a.out.planes[2] = nullptr; }, invalid,
       "plane 2 of the output frame is null"},
      {"luma stride too short", [](Arguments& a) { a.in.strides[0] = 63; }, invalid,
       "plane 0 of the input frame has a stride of 63 bytes, but its rows hold 64"},
      {"chroma stride too short", [](Arguments& a) { a.out.strides[1] = 31; }, invalid,
       "plane 1 of the output frame has a stride of 31 bytes, but its rows hold 32"},
      {"stride of a plane turned upside down", [](Arguments& a) { a.in.strides[1] = -64; }, invalid,
       "stride of -64"},
      {"stride without end",
       [](Arguments& a) { a.in.strides[0] = std::numeric_limits<std::ptrdiff_t>::max(); }, invalid,
       "more than can be addressed"},
      {"unknown format", [](Arguments& a) { a.in.format = static_cast<PixelFormat>(7); }, invalid,
       "unknown pixel format (7)"},
      {"whiten below its scale", [](Arguments& a) { a.look.whiten = -1; }, invalid,
       "whiten is -1, but its range is 0 to 100"},
      {"saturate above its scale", [](Arguments& a) { a.look.saturate = 101; }, invalid,
       "saturate is 101, but its range is 0 to 100"},
      {"unknown effect", [](Arguments& a) { a.look.effect = static_cast<Effect>(9); }, invalid,
       "there is no effect 9"},
      {"too narrow", [](Arguments& a) { a.in.width = a.out.width = 31; }, invalid,
       "31 x 48 pixels, but at least 32 x 32"},
      {"too low", [](Arguments& a) { a.in.height = a.out.height = 31; }, invalid,
       "64 x 31 pixels, but at least 32 x 32"},
      {"negative", [](Arguments& a) { a.in.width = a.out.width = -64; }, invalid, "at least"},
      {"too wide", [](Arguments& a) { a.in.width = a.out.width = kLargestSide + 1; },
       StatusCode::TooLarge, "at most 32768"},
      {"sizes differ", [](Arguments& a) { a.out.height = 46; }, invalid,
       "the input frame is 64 x 48 pixels, but the output frame is 64 x 46"},
      {"slim negative", [](Arguments& a) { a.look.slim = -1; }, invalid, "slim is -1"},
      {"slim too large", [](Arguments& a) { a.look.slim = 101; }, invalid, "slim is 101"},
      {"roll not a number", [=](Arguments& a) { a.faces[0].roll_degrees = nan; }, invalid,
       "face 0 holds a number that is not finite"},
      {"box infinite", [=](Arguments& a) { a.faces[0].box.width = infinity; }, invalid, "face 0"},
      {"landmark not a number", [=](Arguments& a) { a.faces[0].landmarks.mouth.top.y = nan; },
       invalid, "face 0"},
      {"landmark far away", [](Arguments& a) { a.faces[0].landmarks.mouth.top.y = 1e38f; }, invalid,
       "face 0 holds a number beyond 1024, 16 times the longer side of the frame"},
      {"box far away", [](Arguments& a) { a.faces[0].box.y = -1025; }, invalid,
       "face 0 holds a number beyond 1024"},
      {"roll of too many turns", [](Arguments& a) { a.faces[0].roll_degrees = 36001; }, invalid,
       "face 0 holds a roll of more than 36000 degrees"},
      {"second face infinite",
       [=](Arguments& a) {
         a.faces.push_back(a.faces[0]);
         a.faces[1].landmarks.right_jaw.x = -infinity;
       },
       invalid, "face 1"},
  };
  for (const RefusedCase& refused : cases) {
    Arguments arguments = Good();
    refused.spoil(arguments);
    const Status status = Check(arguments);
    EXPECT_EQ(status.code, refused.code) << refused.name;
    EXPECT_THAT(status.message, testing::HasSubstr(refused.words)) << refused.name;
    EXPECT_THAT(status.message, testing::Not(testing::HasSubstr("\n"))) << refused.name;
  }
}

TEST(CheckConversion, TakesImagesOfTheFramesSizeOnly) {
  FrameMemory in(PixelFormat::NV21, 64, 48);
  uint8_t byte = 0;
  const ImageView right = {&byte, 64, 48, 3, 192};
  EXPECT_TRUE(CheckConversion(in.const_view(), right, {}).ok());
  EXPECT_TRUE(CheckConversion(in.const_view(), {}, right).ok());
  EXPECT_TRUE(CheckConversion(in.const_view(), right, {&byte, 64, 48, 4, 256}).ok());
  const ImageView wrong[] = {
      {&byte, 63, 48, 3, 192}, {&byte, 65, 48, 3, 195}, {&byte, 64, 47, 3, 192},
      {&byte, 64, 49, 3, 192}, {&byte, 64, 48, 2, 192}, {&byte, 64, 48, 5, 320},
      {&byte, 64, 48, 3, 191}, {&byte, 64, 48, 4, 255}, {&byte, 64, 48, 3, -192}};
  for (const ImageView& image : wrong) {
    const auto refused = [&](const ImageView& rgb, const ImageView& hsi, const char* which) {
      const Status status = CheckConversion(in.const_view(), rgb, hsi);
      EXPECT_EQ(status.code, StatusCode::InvalidArgument)
          << image.width << " x " << image.height << ", " << image.channels << ", " << image.stride;
      EXPECT_THAT(status.message, testing::HasSubstr(which));
    };
    refused(image, {}, "the RGB image");
    refused({}, image, "the HSI image");
    refused(right, image, "the HSI image");
  }
}

TEST_F(CheckArgumentsTest, TakesTheLargestSides) {
  // Only the numbers are looked at.
  FrameMemory in(PixelFormat::NV21, 64, 48);
  ConstFrameView wide = in.const_view();
  wide.width = kLargestSide;
  wide.strides = {kLargestSide, kLargestSide, 0};
  FrameView wide_out = in.view();
  wide_out.width = kLargestSide;
  wide_out.strides = wide.strides;
  EXPECT_TRUE(CheckFrames(wide, wide_out).ok());
  ConstFrameView high = in.const_view();
  FrameView high_out = in.view();
  high.height = high_out.height = kLargestSide;
  EXPECT_TRUE(CheckFrames(high, high_out).ok());
  high.height = high_out.height = kLargestSide + 1;
  EXPECT_EQ(CheckFrames(high, high_out).code, StatusCode::TooLarge);
}

}  // namespace
}  // namespace lumora::test
