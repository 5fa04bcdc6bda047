// SPDX-License-Identifier: Apache-2.0
// Pictures without the command around them: what a round trip keeps.
#include "tools/lumora/picture/picture.h"
#include "tools/lumora/picture/decode_picture.h"

#include <gtest/gtest.h>

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "tests/tools/pictures.h"
#include "tools/lumora/modules/opencv.h"
#include "tools/lumora/picture/jpeg_codec.h"
#include "tools/lumora/picture/jpeg_pixels.h"
#include "tools/lumora/picture/jpeg_planes.h"
#include "tools/lumora/picture/png_chunks.h"
#include "tools/lumora/support/failure.h"

namespace lumora::test {
namespace {

using tools::ChromaTo420;
using tools::DecodedPicture;
using tools::DecodePicture;
using tools::FileFormat;
using tools::Frame420;
using tools::Image;
using tools::ImageOf;
using tools::MatOf;
using tools::MergeChroma;
using tools::SampleArea;

const SampleArea kAreas[] = {{1, 1}, {2, 1}, {2, 2}, {1, 2}, {4, 1}, {4, 2}};

Image Noise(int columns, int rows) {
  Image plane({columns, rows});
  cv::Mat samples = MatOf(plane);
  cv::RNG(7).fill(samples, cv::RNG::UNIFORM, 0, 256);
  return plane;
}

int DivideUp(int value, int by) {
  return (value + by - 1) / by;
}

TEST(Planes, ChromaOfAnySamplingHasTheSizeOf420) {
  for (const tools::Size size : {tools::Size{64, 48}, tools::Size{65, 49}, tools::Size{35, 34}}) {
    for (const SampleArea area : kAreas) {
      const Image plane =
          Noise(DivideUp(size.width, area.across), DivideUp(size.height, area.down));
      const Image chroma = ChromaTo420(plane, area, size);
      EXPECT_EQ(chroma.width(), DivideUp(size.width, 2)) << area.across << "x" << area.down;
      EXPECT_EQ(chroma.height(), DivideUp(size.height, 2)) << area.across << "x" << area.down;
    }
  }
}

TEST(Planes, ChromaOf444IsTheMeanOfItsFourSamples) {
  const Image plane = Noise(16, 12);
  const Image chroma = ChromaTo420(plane, {1, 1}, {16, 12});
  for (int y = 0; y < 6; ++y) {
    for (int x = 0; x < 8; ++x) {
      const double mean = cv::mean(MatOf(plane)(cv::Rect(2 * x, 2 * y, 2, 2)))[0];
      EXPECT_NEAR(chroma.Row(y)[x], mean, 0.51);
    }
  }
}

TEST(Planes, MergingLeavesUnchangedSamplesAlone) {
  constexpr tools::Size size = {65, 49};
  for (const SampleArea area : kAreas) {
    SCOPED_TRACE(std::to_string(area.across) + "x" + std::to_string(area.down));
    const Image original =
        Noise(DivideUp(size.width, area.across), DivideUp(size.height, area.down));
    const Image before = ChromaTo420(original, area, size);
    Image after = before;
    const cv::Rect changed(8, 6, 12, 10);  // in samples of 4:2:0: pixels (16, 12) to (40, 32)
    cv::Mat part = MatOf(after)(changed);
    part = part + cv::Scalar(1);
    after.Row(6)[8] = static_cast<uint8_t>(before.Row(6)[8] ^ 0x80);
    Image merged = original;
    MergeChroma(before, after, area, merged);
    for (int y = 0; y < merged.height(); ++y) {
      for (int x = 0; x < merged.width(); ++x) {
        const int left = x * area.across, top = y * area.down;
        const bool outside =
            left + area.across <= 16 || left >= 40 || top + area.down <= 12 || top >= 32;
        if (outside) {
          ASSERT_EQ(merged.Row(y)[x], original.Row(y)[x]);
        }
      }
    }
    EXPECT_NE(merged.bytes(), original.bytes());
  }
}

TEST(JpegPlanes, BlocksWithoutAChangeKeepTheirCoefficients) {
  const Bytes file = JpegOf(PortraitOf(200, 152).picture, {2, 2, 75, false, false});
  std::vector<Image> planes = tools::ReadJpegPlanes(file);
  std::vector<Image> changed;
  for (const Image& plane : planes) changed.emplace_back(plane.size());
  // A spot of luma, in the block from (80, 64) to (88, 72).
  const cv::Rect spot(82, 66, 4, 4);
  cv::Mat inverted = MatOf(planes[0])(spot);
  inverted = 255 - inverted;
  MatOf(changed[0])(spot).setTo(255);
  const Bytes result =
      tools::ReplaceJpegBlocks(file, tools::WriteJpegPlanes(planes, file, false), changed);
  const std::vector<Image> before = tools::ReadJpegPlanes(file);
  std::vector<Image> after = tools::ReadJpegPlanes(result);
  EXPECT_GT(cv::norm(MatOf(before[0]), MatOf(after[0]), cv::NORM_INF), 30);
  const cv::Rect block(80, 64, 8, 8);
  MatOf(before[0])(block).copyTo(MatOf(after[0])(block));
  for (size_t i = 0; i < before.size(); ++i) {
    EXPECT_EQ(before[i].bytes(), after[i].bytes()) << "plane " << i;
  }
}

TEST(JpegPlanes, AQuantisationStepOfZeroIsRefused) {
  Bytes file = JpegOf(PortraitOf(64, 48).picture, {2, 2});
  const Bytes marker = {0xFF, 0xDB};
  const auto table = std::search(file.begin(), file.end(), marker.begin(), marker.end());
  ASSERT_NE(table, file.end());
  *(table + 5) = 0;  // behind the marker, its length and the table's number
  EXPECT_THROW(tools::ReadJpegLayout(file), tools::JpegError);
}

TEST(JpegPlanes, FilesOfAnyColourSpaceAreReadAsBgr) {
  const cv::Mat portrait = PortraitOf(203, 151).picture;
  JpegKind kind;
  for (const bool rgb : {false, true}) {
    kind.rgb = rgb;
    const Bytes file = JpegOf(portrait, kind);
    EXPECT_EQ(cv::norm(MatOf(tools::ReadJpegBgr(file)), Decode(file), cv::NORM_INF), 0);
  }
  kind.rgb = false;
  kind.cmyk = true;
  const Bytes file = JpegOf(portrait, kind);
  // Another decoder rounds differently on the way from inks to light.
  EXPECT_LE(
      cv::norm(MatOf(tools::ReadJpegBgr(file)), cv::imdecode(file, cv::IMREAD_COLOR), cv::NORM_INF),
      2);
  for (const double share : {0.3, 0.6, 0.95}) {
    const auto size = static_cast<std::ptrdiff_t>(static_cast<double>(file.size()) * share);
    EXPECT_THROW(tools::ReadJpegBgr(Bytes(file.begin(), file.begin() + size)), tools::JpegError);
  }
}

TEST(Picture, NewFilesHoldWhatWasGivenAndAreCodedAsEver) {
  const cv::Mat portrait = PortraitOf(203, 151).picture;
  cv::Mat gray, bgra;
  cv::cvtColor(portrait, gray, cv::COLOR_BGR2GRAY);
  cv::cvtColor(portrait, bgra, cv::COLOR_BGR2BGRA);
  cv::Mat alpha(bgra.size(), CV_8U);
  cv::RNG(11).fill(alpha, cv::RNG::UNIFORM, 0, 256);
  cv::insertChannel(alpha, bgra, 3);
  const cv::Mat part = portrait(cv::Rect(3, 5, 101, 67));  // whose rows do not follow each other
  for (const cv::Mat& picture : {portrait, gray, bgra, part, portrait(cv::Rect(0, 0, 1, 1))}) {
    SCOPED_TRACE(testing::Message() << picture.size() << ", " << picture.channels());
    const Bytes png = tools::EncodePng(ImageOf(picture)),
                jpeg = tools::EncodeJpeg(ImageOf(picture));
    const cv::Mat decoded = Decode(png);
    ASSERT_EQ(decoded.type(), picture.type());
    ASSERT_EQ(decoded.size(), picture.size());
    EXPECT_EQ(cv::norm(decoded, picture, cv::NORM_INF), 0);
    // Another program's encoders, which call the same libraries with the same settings.
    Bytes other;
    cv::imencode(".png", picture, other);
    EXPECT_EQ(png, other);
    cv::imencode(".jpg", picture, other, {cv::IMWRITE_JPEG_QUALITY, 95});
    EXPECT_EQ(jpeg, other);
  }
}

TEST(Picture, ASideThatAFormatCannotHaveIsAFailure) {
  const Image too_wide({65501, 1}, 3);
  EXPECT_THROW(tools::EncodeJpeg(too_wide), tools::Failure);
  EXPECT_EQ(Decode(tools::EncodePng(too_wide)).cols, too_wide.width());
  EXPECT_THROW(tools::EncodePng(Image({1'000'001, 1})), tools::Failure);
}

TEST(Picture, MergingAnUnchangedFrameChangesNothing) {
  const cv::Mat portrait = PortraitOf(203, 151).picture;
  cv::Mat gray, rgba;
  cv::cvtColor(portrait, gray, cv::COLOR_BGR2GRAY);
  cv::cvtColor(portrait, rgba, cv::COLOR_BGR2BGRA);
  for (const Bytes& file : {PngOf(portrait), PngOf(gray), PngOf(rgba), JpegOf(portrait, {1, 1}),
                            JpegOf(portrait, {2, 2}), JpegOf(portrait, {1, 2, 90, true})}) {
    DecodedPicture loaded = DecodePicture(file, "test");
    const Frame420 frame = loaded.picture->Frame();
    EXPECT_EQ(frame.y.size(), (tools::Size{204, 152}));
    EXPECT_EQ(frame.cb.size(), (tools::Size{102, 76}));
    EXPECT_EQ(frame.cr.size(), (tools::Size{102, 76}));
    loaded.picture->Merge(frame, frame);
    const cv::Mat after = Decode(loaded.picture->Encode(loaded.format));
    const cv::Mat before = Decode(file);
    ASSERT_EQ(after.size(), before.size());
    ASSERT_EQ(after.type(), before.type());
    EXPECT_EQ(cv::norm(before, after, cv::NORM_INF), 0);
  }
}

TEST(Picture, TheFrameIsFullRange) {
  // White, black and pure colours, by the equations of JFIF.
  const struct {
    cv::Scalar bgr;
    double y, cb, cr;
  } kColours[] = {{{255, 255, 255}, 255, 128, 128},
                  {{0, 0, 0}, 0, 128, 128},
                  {{0, 0, 255}, 76.2, 85, 255},
                  {{255, 0, 0}, 29.1, 255, 107.3}};
  for (const auto& colour : kColours) {
    const cv::Mat picture(40, 40, CV_8UC3, colour.bgr);
    const Frame420 frame = DecodePicture(PngOf(picture), "test").picture->Frame();
    EXPECT_NEAR(frame.y.Row(20)[20], colour.y, 1);
    EXPECT_NEAR(frame.cb.Row(10)[10], colour.cb, 1);
    EXPECT_NEAR(frame.cr.Row(10)[10], colour.cr, 1);
  }
}

TEST(Picture, JpegAndPngAgreeOnTheFrame) {
  const cv::Mat portrait = PortraitOf(256, 256).picture;
  const Frame420 png = DecodePicture(PngOf(portrait), "png").picture->Frame();
  const Frame420 jpeg = DecodePicture(JpegOf(portrait, {2, 2, 98}), "jpeg").picture->Frame();
  EXPECT_LT(MeanDifference(png.y, jpeg.y), 1.5);
  EXPECT_LT(MeanDifference(png.cb, jpeg.cb), 1.5);
  EXPECT_LT(MeanDifference(png.cr, jpeg.cr), 1.5);
}

TEST(PngChunks, TextCanBeLeftOutAndCopiedAndTheEndIsNeeded) {
  const Bytes file = PngOf(Landscape(50, 40));
  EXPECT_EQ(tools::PngSize(file), (tools::Size{50, 40}));
  // An empty tEXt chunk with its checksum, right behind the header.
  Bytes with_text = file;
  const Bytes chunk = {0, 0, 0, 0, 't', 'E', 'X', 't', 0x96, 0x42, 0xc5, 0x85};
  with_text.insert(with_text.begin() + 33, chunk.begin(), chunk.end());
  EXPECT_EQ(tools::EssentialPng(with_text).value_or(Bytes{}), file);
  // ... and it finds its way into another file, at the same place.
  EXPECT_EQ(tools::WithChunksOf(with_text, file), with_text);
  EXPECT_EQ(tools::EssentialPng(file).value_or(Bytes{}), file);
  // What lies behind the end is nothing, even if it looks like a chunk.
  Bytes with_tail = file;
  const Bytes tail = {0x7F, 0xFF, 0xFF, 0xFF, 't', 'E', 'X', 't', 1, 2, 3, 4};
  with_tail.insert(with_tail.end(), tail.begin(), tail.end());
  EXPECT_EQ(tools::EssentialPng(with_tail).value_or(Bytes{}), file);
  EXPECT_EQ(tools::WithChunksOf(with_tail, file), file);
  for (size_t size = 8; size < file.size(); size += 7) {
    EXPECT_FALSE(tools::EssentialPng(Bytes(file.begin(), file.begin() + static_cast<long>(size))));
  }
}

}  // namespace
}  // namespace lumora::test
