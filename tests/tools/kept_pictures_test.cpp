// SPDX-License-Identifier: Apache-2.0
// What a picture keeps on its way through the command, whichever kind of file it comes in.
#include <gtest/gtest.h>
#include <zlib.h>

#include <cmath>
#include <opencv2/imgproc.hpp>
#include <string>

#include "tests/tools/pictures.h"
#include "tests/tools/png_files.h"
#include "tests/tools/stored_pictures.h"
#include "tools/lumora/modules/opencv.h"
#include "tools/lumora/picture/decode_picture.h"
#include "tools/lumora/picture/metadata.h"
#include "tools/lumora/picture/picture.h"
#include "tools/lumora/picture/png_chunks.h"
#include "tools/lumora/picture/raw_frame.h"

namespace lumora::test {
namespace {

using tools::DecodedPicture;
using tools::DecodePicture;
using tools::FileFormat;
using tools::Frame420;

bool HaveOneSize(const tools::Picture& a, const cv::Mat& b) {
  return a.size() == tools::Size{b.cols, b.rows};
}

/// A picture without edges, different at every side, so that sampling hardly matters and turning
/// does.
cv::Mat Gradients(int width, int height) {
  cv::Mat picture(height, width, CV_8UC3);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      picture.at<cv::Vec3b>(y, x) = cv::Vec3b(
          static_cast<uint8_t>(40 + 160 * x / width), static_cast<uint8_t>(60 + 120 * y / height),
          static_cast<uint8_t>(220 - 80 * x / width - 90 * y / height));
    }
  }
  return picture;
}

TEST(TurnedJpeg, EverySamplingComesOutUprightWithItsTablesTurned) {
  const cv::Mat upright = Gradients(91, 75);  // half-filled blocks and chroma samples
  for (const auto& [across, down] :
       {std::pair(2, 1), std::pair(1, 2), std::pair(4, 1), std::pair(2, 2), std::pair(1, 1)}) {
    for (int orientation = 2; orientation <= 8; ++orientation) {
      SCOPED_TRACE(std::to_string(across) + "x" + std::to_string(down) + ", orientation " +
                   std::to_string(orientation));
      const Bytes file =
          WithOrientation(JpegOf(Stored(upright, orientation), {across, down, 75}), orientation);
      const DecodedPicture loaded = DecodePicture(file, "test");
      EXPECT_LT(MeanDifference(loaded.picture->Bgr(), upright), 2);
      const Bytes written = loaded.picture->Encode(FileFormat::Jpeg);
      const cv::Mat after = Decode(written);
      ASSERT_EQ(after.size(), upright.size());
      EXPECT_LT(MeanDifference(after, upright), 2.5);

      const bool swaps = orientation >= 5;
      const JpegFacts had = FactsOf(file), has = FactsOf(written);
      ASSERT_EQ(has.sampling.size(), had.sampling.size());
      for (size_t plane = 0; plane < had.sampling.size(); ++plane) {
        const auto [factor_across, factor_down] = had.sampling[plane];
        EXPECT_EQ(has.sampling[plane], swaps ? std::pair(factor_down, factor_across)
                                             : std::pair(factor_across, factor_down));
        for (size_t row = 0; row < 8; ++row) {
          for (size_t column = 0; column < 8; ++column) {
            const size_t from = swaps ? column * 8 + row : row * 8 + column;
            ASSERT_EQ(has.quantisation[plane][row * 8 + column], had.quantisation[plane][from])
                << "plane " << plane << ", row " << row << ", column " << column;
          }
        }
      }
    }
  }
}

TEST(TurnedJpeg, AFrameAndItsMergedResultAreThoseOfTheUprightPicture) {
  const cv::Mat upright = Gradients(90, 74);
  const Frame420 expected = DecodePicture(PngOf(upright), "png").picture->Frame();
  for (const auto& [across, down] : {std::pair(2, 1), std::pair(1, 2), std::pair(4, 1)}) {
    for (const int orientation : {1, 3, 6, 7}) {
      SCOPED_TRACE(std::to_string(across) + "x" + std::to_string(down) + ", orientation " +
                   std::to_string(orientation));
      const DecodedPicture loaded = DecodePicture(
          WithOrientation(JpegOf(Stored(upright, orientation), {across, down, 95}), orientation),
          "jpeg");
      const Frame420 before = loaded.picture->Frame();
      ASSERT_EQ(before.cb.size(), expected.cb.size());
      EXPECT_LT(MeanDifference(before.y, expected.y), 1.5);
      EXPECT_LT(MeanDifference(before.cb, expected.cb), 1.5);
      EXPECT_LT(MeanDifference(before.cr, expected.cr), 1.5);
      // Another colour in a part of the picture, in whole samples and blocks of every plane.
      const cv::Rect part(16, 32, 32, 32), half(8, 16, 16, 16);
      Frame420 after = before;
      tools::MatOf(after.y)(part).setTo(140);
      tools::MatOf(after.cb)(half).setTo(90);
      tools::MatOf(after.cr)(half).setTo(170);
      loaded.picture->Merge(before, after);
      const cv::Mat result = Decode(loaded.picture->Encode(FileFormat::Jpeg));
      // By the equations of JFIF.
      const cv::Scalar colour(140 + 1.772 * (90 - 128),
                              140 - 0.344136 * (90 - 128) - 0.714136 * (170 - 128),
                              140 + 1.402 * (170 - 128));
      const cv::Scalar inside = cv::mean(result(cv::Rect(22, 38, 20, 20)));
      for (int c = 0; c < 3; ++c) EXPECT_NEAR(inside[c], colour[c], 3) << c;
      const cv::Rect away(56, 0, 34, 74);
      EXPECT_LT(MeanDifference(result(away), upright(away)), 2);
    }
  }
}

TEST(TurnedPicture, PngsAndJpegsWithoutLumaComeOutUpright) {
  const cv::Mat upright = Gradients(70, 50);
  JpegKind rgb;
  rgb.rgb = true;
  rgb.quality = 98;
  for (int orientation = 1; orientation <= 8; ++orientation) {
    SCOPED_TRACE(orientation);
    const cv::Mat stored = Stored(upright, orientation);
    const DecodedPicture png = DecodePicture(WithOrientation(PngOf(stored), orientation), "png");
    EXPECT_EQ(png.orientation, orientation);
    ASSERT_TRUE(HaveOneSize(*png.picture, upright));
    EXPECT_EQ(cv::norm(tools::MatOf(png.picture->Bgr()), upright, cv::NORM_INF), 0);
    const DecodedPicture jpeg =
        DecodePicture(WithOrientation(JpegOf(stored, rgb), orientation), "jpeg");
    ASSERT_TRUE(HaveOneSize(*jpeg.picture, upright));
    EXPECT_LT(MeanDifference(jpeg.picture->Bgr(), upright), 2);
  }
}

TEST(TurnedPicture, TheMetadataTellTheSizeOfTheUprightPicture) {
  const cv::Mat upright = Gradients(80, 48);
  for (const int orientation : {3, 6, 8}) {
    SCOPED_TRACE(orientation);
    const cv::Mat stored = Stored(upright, orientation);
    const Bytes file = WithMetadata(JpegOf(stored, {}), [&](Exiv2::Image& image) {
      image.exifData()["Exif.Image.Orientation"] = static_cast<uint16_t>(orientation);
      image.exifData()["Exif.Photo.PixelXDimension"] = static_cast<uint32_t>(stored.cols);
      image.exifData()["Exif.Photo.PixelYDimension"] = static_cast<uint32_t>(stored.rows);
      image.xmpData()["Xmp.tiff.Orientation"] = std::to_string(orientation);
    });
    for (Bytes result : {JpegOf(upright, {}), PngOf(upright)}) {
      ASSERT_EQ(tools::CopyMetadata(tools::ReadMetadata(file), file, {upright.cols, upright.rows},
                                    result),
                "");
      const auto has = MetadataOf(result);
      EXPECT_EQ(has->exifData()["Exif.Image.Orientation"].toLong(), 1);
      EXPECT_EQ(has->exifData()["Exif.Photo.PixelXDimension"].toLong(), 80);
      EXPECT_EQ(has->exifData()["Exif.Photo.PixelYDimension"].toLong(), 48);
      EXPECT_EQ(has->xmpData()["Xmp.tiff.Orientation"].toString(), "1");
    }
  }
}

void Append(const Bytes& bytes, Bytes* to) {
  for (const uint8_t byte : bytes) to->push_back(byte);
}

void AppendBigEndian(uint32_t value, Bytes* to) {
  for (int shift = 24; shift >= 0; shift -= 8) to->push_back(static_cast<uint8_t>(value >> shift));
}

/// A PNG of side x side pixels that are numbers in a palette, in rows of the same number; the
/// colours get transparent from the last to the first.
Bytes PalettePng(uint32_t side) {
  Bytes palette, transparency, rows;
  for (int i = 0; i < 256; ++i) {
    palette.insert(palette.end(), {static_cast<uint8_t>(i), static_cast<uint8_t>(255 - i), 77});
    transparency.push_back(static_cast<uint8_t>(i));
  }
  for (uint32_t y = 0; y < side; ++y) {
    rows.push_back(0);  // no filter
    rows.insert(rows.end(), side, static_cast<uint8_t>(3 * y));
  }
  uLongf packed = compressBound(static_cast<uLong>(rows.size()));
  Bytes data(packed);
  compress(data.data(), &packed, rows.data(), static_cast<uLong>(rows.size()));
  data.resize(packed);
  Bytes header, file = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
  AppendBigEndian(side, &header);
  AppendBigEndian(side, &header);
  Append({8, 3, 0, 0, 0}, &header);  // 8 bits, numbers in a palette
  for (const Bytes& chunk :
       {PngChunk("IHDR", header), PngChunk("PLTE", palette), PngChunk("tRNS", transparency),
        PngChunk("IDAT", data), PngChunk("IEND", {})}) {
    Append(chunk, &file);
  }
  return file;
}

TEST(PngOfAnyKind, ThePaletteAndItsTransparencyBecomePixels) {
  constexpr int kSide = 80;
  const DecodedPicture loaded = DecodePicture(PalettePng(kSide), "test");
  const cv::Mat after = Decode(loaded.picture->Encode(FileFormat::Png));
  ASSERT_EQ(after.type(), CV_8UC4);
  ASSERT_EQ(after.size(), cv::Size(kSide, kSide));
  for (int y = 0; y < kSide; ++y) {
    const auto i = static_cast<uint8_t>(3 * y);
    EXPECT_EQ(after.at<cv::Vec4b>(y, y), cv::Vec4b(77, static_cast<uint8_t>(255 - i), i, i)) << y;
  }
}

TEST(PngOfAnyKind, SixteenBitsAreRoundedAlphaIncluded) {
  cv::Mat deep(40, 64, CV_16UC4);
  cv::RNG(3).fill(deep, cv::RNG::UNIFORM, 0, 65536);
  const DecodedPicture loaded = DecodePicture(PngOf(deep), "test");
  EXPECT_EQ(loaded.notes.size(), 1u);
  const cv::Mat after = Decode(loaded.picture->Encode(FileFormat::Png));
  ASSERT_EQ(after.type(), CV_8UC4);
  for (int y = 0; y < deep.rows; ++y) {
    for (int x = 0; x < deep.cols; ++x) {
      for (int c = 0; c < 4; ++c) {
        ASSERT_NEAR(after.at<cv::Vec4b>(y, x)[c], deep.at<cv::Vec4w>(y, x)[c] / 257.0, 0.5);
      }
    }
  }
}

TEST(PngOfAnyKind, EveryChunkAboutColourResolutionAndOriginIsKept) {
  const Bytes plain = PngOf(Gradients(40, 40));
  const Bytes changed = PngOf(Gradients(48, 40));
  constexpr std::ptrdiff_t kBehindHeader = 33;
  for (const char* type :
       {"cHRM", "gAMA", "iCCP", "sRGB", "pHYs", "tEXt", "zTXt", "iTXt", "eXIf"}) {
    SCOPED_TRACE(type);
    const Bytes chunk = PngChunk(type, {1, 2, 3, 4});
    Bytes from = plain, expected = changed;
    from.insert(from.begin() + kBehindHeader, chunk.begin(), chunk.end());
    expected.insert(expected.begin() + kBehindHeader, chunk.begin(), chunk.end());
    EXPECT_EQ(tools::WithChunksOf(from, changed), expected);
  }
  // What belongs to the samples of the old picture would be wrong in the new one.
  for (const char* type : {"tRNS", "bKGD", "sBIT", "hIST", "acTL"}) {
    SCOPED_TRACE(type);
    const Bytes chunk = PngChunk(type, {1, 2, 3, 4});
    Bytes from = plain;
    from.insert(from.begin() + kBehindHeader, chunk.begin(), chunk.end());
    EXPECT_EQ(tools::WithChunksOf(from, changed), changed);
  }
}

/// `frame` with one of its planes changed in a part.
Frame420 ChangedIn(const Frame420& frame, tools::Image Frame420::*plane, const cv::Rect& part) {
  Frame420 changed = frame;
  cv::Mat inside = tools::MatOf(changed.*plane)(part);
  inside = inside + cv::Scalar(20);
  return changed;
}

TEST(ColourPicture, AChangeOfAnyPlaneAloneReachesThePixelsAndNoOthers) {
  const cv::Mat original = Gradients(65, 49);
  for (const auto& [name, plane, part] : {std::tuple("luma", &Frame420::y, cv::Rect(20, 10, 8, 6)),
                                          std::tuple("Cb", &Frame420::cb, cv::Rect(10, 5, 4, 3)),
                                          std::tuple("Cr", &Frame420::cr, cv::Rect(10, 5, 4, 3))}) {
    SCOPED_TRACE(name);
    const DecodedPicture loaded = DecodePicture(PngOf(original), "test");
    const Frame420 before = loaded.picture->Frame();
    loaded.picture->Merge(before, ChangedIn(before, plane, part));
    const cv::Mat after = tools::MatOf(loaded.picture->Bgr()).clone();
    for (int y = 0; y < after.rows; ++y) {
      for (int x = 0; x < after.cols; ++x) {
        const bool inside = cv::Rect(20, 10, 8, 6).contains({x, y});
        const cv::Vec3b had = original.at<cv::Vec3b>(y, x), has = after.at<cv::Vec3b>(y, x);
        ASSERT_EQ(had != has, inside) << x << ", " << y;
      }
    }
  }
}

TEST(RawFrame, EndingsNameTheLayoutInAnyCase) {
  const std::pair<const char*, PixelFormat> kNames[] = {
      {"nv21", PixelFormat::NV21}, {"NV21", PixelFormat::NV21}, {"nv12", PixelFormat::NV12},
      {"Nv12", PixelFormat::NV12}, {"i420", PixelFormat::I420}, {"I420", PixelFormat::I420},
      {"yuv", PixelFormat::I420},  {"YUV", PixelFormat::I420}};
  for (const auto& [name, format] : kNames) EXPECT_EQ(tools::FormatNamed(name), format) << name;
  for (const char* name : {"", "rgb", "nv16", "nv211", "png"}) {
    EXPECT_EQ(tools::FormatNamed(name), std::nullopt) << name;
  }
}

}  // namespace
}  // namespace lumora::test
