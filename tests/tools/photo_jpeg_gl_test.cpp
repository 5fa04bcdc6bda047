// SPDX-License-Identifier: Apache-2.0
// JPEG pictures through the command: what moves, and what stays exactly as it was.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <exiv2/exiv2.hpp>
#include <opencv2/imgproc.hpp>

#include "tests/tools/pictures.h"
#include "tests/tools/process.h"
#include "tests/tools/stored_pictures.h"

namespace lumora::test {
namespace {

// A changed sample changes the blocks of 8 x 8 samples around it, which cover up to 32 x 32 pixels.
constexpr double kBlockReach = 48;

struct Files {
  Folder folder;
  std::string in, out, faces;
};

Result Slim(const Files& files, const std::string& amount) {
  return RunLumora({"photo", files.in, "-o", files.out, "--slim", amount, "--faces", files.faces});
}

TEST(PhotoJpeg, EverySamplingIsSlimmedAndKeepsItsCoding) {
  const struct {
    const char* name;
    JpegKind kind;
  } kKinds[] = {{"4:2:0", {2, 2, 92}},
                {"4:2:2", {2, 1, 85}},
                {"4:4:4", {1, 1, 95}},
                {"4:4:0", {1, 2, 75}},
                {"4:1:1", {4, 1, 90}},
                {"gray", {1, 1, 90, true}},
                {"progressive", {2, 2, 90, false, true}}};
  const Sitter sitter = PortraitOf(481, 383);  // odd, and no multiple of a block
  for (const auto& test : kKinds) {
    SCOPED_TRACE(test.name);
    Files files;
    const Bytes before = JpegOf(sitter.picture, test.kind);
    files.in = files.folder.Put("in.jpg", before);
    files.faces = files.folder.Put("faces.json", sitter.faces_json);
    files.out = files.folder / "out.jpg";
    const Result result = Slim(files, "80");
    ASSERT_EQ(result.exit_code, 0) << result.err;
    EXPECT_EQ(result.err, "");
    const Bytes after = ReadFile(files.out);
    const JpegFacts had = FactsOf(before), has = FactsOf(after);
    EXPECT_EQ(has.sampling, had.sampling);
    EXPECT_EQ(has.quantisation, had.quantisation);
    EXPECT_EQ(has.progressive, had.progressive);
    const cv::Mat old_pixels = Decode(before), new_pixels = Decode(after);
    ASSERT_EQ(new_pixels.size(), old_pixels.size());
    ASSERT_EQ(new_pixels.type(), old_pixels.type());
    EXPECT_GT(cv::norm(old_pixels, new_pixels, cv::NORM_INF), 60);
    EXPECT_EQ(
        LargestDifferenceOutside(old_pixels, new_pixels, sitter.centre, sitter.reach + kBlockReach),
        0);
  }
}

TEST(PhotoJpeg, AFileWithoutLumaIsConvertedWithANote) {
  const Sitter sitter = PortraitOf(320, 256);
  Files files;
  JpegKind kind;
  kind.rgb = true;
  const Bytes before = JpegOf(sitter.picture, kind);
  files.in = files.folder.Put("in.jpg", before);
  files.faces = files.folder.Put("faces.json", sitter.faces_json);
  files.out = files.folder / "out.jpg";
  const Result result = Slim(files, "80");
  ASSERT_EQ(result.exit_code, 0) << result.err;
  EXPECT_THAT(result.err, testing::HasSubstr("it is converted"));
  const cv::Mat old_pixels = Decode(before), new_pixels = Decode(ReadFile(files.out));
  ASSERT_EQ(new_pixels.size(), old_pixels.size());
  EXPECT_GT(cv::norm(old_pixels, new_pixels, cv::NORM_INF), 60);
  // Coded anew, in quality 95: not the same away from the face, but close.
  const cv::Rect corner(0, 0, 48, 256);
  EXPECT_LT(cv::norm(old_pixels(corner), new_pixels(corner), cv::NORM_L1) / (48 * 256 * 3), 2);
}

TEST(PhotoJpeg, Slim0KeepsEveryPixel) {
  const Sitter sitter = PortraitOf(320, 256);
  Files files;
  files.in = files.folder.Put("in.jpg", JpegOf(sitter.picture, {}));
  files.faces = files.folder.Put("faces.json", sitter.faces_json);
  files.out = files.folder / "out.jpg";
  ASSERT_EQ(Slim(files, "0").exit_code, 0);
  EXPECT_EQ(cv::norm(Decode(ReadFile(files.in)), Decode(ReadFile(files.out)), cv::NORM_INF), 0);
}

TEST(PhotoJpeg, EveryOrientationComesOutUprightAndSlimmedAlike) {
  // A corner mark tells mirrored pictures apart; the odd size meets half-filled chroma samples.
  Sitter sitter = PortraitOf(337, 271);
  cv::rectangle(sitter.picture, {8, 8, 40, 24}, cv::Scalar(200, 30, 20), cv::FILLED);
  cv::Mat upright_result;
  for (int orientation = 1; orientation <= 8; ++orientation) {
    SCOPED_TRACE(orientation);
    Files files;
    const Bytes stored = WithMetadata(
        JpegOf(Stored(sitter.picture, orientation), {2, 2, 97}), [&](Exiv2::Image& image) {
          image.exifData()["Exif.Image.Orientation"] = static_cast<uint16_t>(orientation);
        });
    files.in = files.folder.Put("in.jpg", stored);
    files.faces = files.folder.Put("faces.json", sitter.faces_json);
    files.out = files.folder / "out.jpg";
    const Result result = Slim(files, "80");
    ASSERT_EQ(result.exit_code, 0) << result.err;
    const Bytes after = ReadFile(files.out);
    EXPECT_EQ(MetadataOf(after)->exifData()["Exif.Image.Orientation"].toLong(), 1);
    const cv::Mat pixels = Decode(after);
    ASSERT_EQ(pixels.size(), sitter.picture.size());
    if (orientation == 1) upright_result = pixels;
    // Files of different orientation were quantised differently.
    const double mean =
        cv::norm(pixels, upright_result, cv::NORM_L1) / static_cast<double>(pixels.total() * 3);
    EXPECT_LT(mean, 1.5);
    // Away from the face the colours are those of the picture before it was stored.
    const cv::Rect mark(16, 12, 24, 16);
    EXPECT_LT(cv::norm(pixels(mark), sitter.picture(mark), cv::NORM_INF), 12);
  }
}

TEST(PhotoJpeg, MetadataAreKeptAndAStaleThumbnailIsDropped) {
  const Sitter sitter = PortraitOf(320, 256);
  // A colour profile is recognised by its header: the size in the first four bytes.
  std::vector<Exiv2::byte> profile(200, 7);
  profile[0] = profile[1] = profile[2] = 0;
  profile[3] = 200;
  const Bytes thumbnail = JpegOf(PortraitOf(64, 64).picture, {});
  const Bytes in = WithMetadata(JpegOf(sitter.picture, {}), [&](Exiv2::Image& image) {
    image.exifData()["Exif.Image.Make"] = "Maker";
    image.exifData()["Exif.Photo.DateTimeOriginal"] = "2021:03:04 05:06:07";
    image.iptcData()["Iptc.Application2.Caption"] = "A caption";
    image.xmpData()["Xmp.dc.title"] = "A title";
    image.setComment("A comment");
    Exiv2::DataBuf data(profile.data(), static_cast<long>(profile.size()));
    image.setIccProfile(data);
    Exiv2::ExifThumb(image.exifData())
        .setJpegThumbnail(thumbnail.data(), static_cast<long>(thumbnail.size()));
  });
  ASSERT_FALSE(Exiv2::ExifThumbC(MetadataOf(in)->exifData()).copy().size_ == 0);
  for (const char* name : {"out.jpg", "out.png"}) {
    SCOPED_TRACE(name);
    Files files;
    files.in = files.folder.Put("in.jpg", in);
    files.faces = files.folder.Put("faces.json", sitter.faces_json);
    files.out = files.folder / name;
    const Result result = Slim(files, "60");
    ASSERT_EQ(result.exit_code, 0) << result.err;
    EXPECT_EQ(result.err, "");
    const auto kept = MetadataOf(ReadFile(files.out));
    EXPECT_EQ(kept->exifData()["Exif.Image.Make"].toString(), "Maker");
    EXPECT_EQ(kept->exifData()["Exif.Photo.DateTimeOriginal"].toString(), "2021:03:04 05:06:07");
    EXPECT_EQ(kept->iptcData()["Iptc.Application2.Caption"].toString(), "A caption");
    EXPECT_THAT(kept->xmpData()["Xmp.dc.title"].toString(), testing::HasSubstr("A title"));
    EXPECT_EQ(kept->comment(), "A comment");
    ASSERT_TRUE(kept->iccProfileDefined());
    EXPECT_EQ(std::vector<Exiv2::byte>(kept->iccProfile()->pData_,
                                       kept->iccProfile()->pData_ + kept->iccProfile()->size_),
              profile);
    EXPECT_EQ(Exiv2::ExifThumbC(kept->exifData()).copy().size_, 0);
    // Other programs also read the picture, and without complaints: a PNG's profile needs a name.
    const Bytes file = ReadFile(files.out);
    const std::string profile_type = "iCCP";
    const auto chunk =
        std::search(file.begin(), file.end(), profile_type.begin(), profile_type.end());
    if (file[1] == 'P') {
      ASSERT_NE(chunk, file.end());
      EXPECT_NE(chunk[4], 0);
    }
  }
}

TEST(PhotoJpeg, ALargePhotographIsDone) {
  const int width = 8000, height = 6000;
  const Sitter sitter = PortraitOf(width, height);
  Files files;
  files.in = files.folder.Put("in.jpg", JpegOf(sitter.picture, {}));
  files.faces = files.folder.Put("faces.json", sitter.faces_json);
  files.out = files.folder / "out.jpg";
  const Result result = Slim(files, "60");
  ASSERT_EQ(result.exit_code, 0) << result.err;
  const cv::Mat before = Decode(ReadFile(files.in)), after = Decode(ReadFile(files.out));
  ASSERT_EQ(after.size(), cv::Size(width, height));
  EXPECT_GT(cv::norm(before, after, cv::NORM_INF), 60);
  EXPECT_EQ(LargestDifferenceOutside(before, after, sitter.centre, sitter.reach + kBlockReach), 0);
}

}  // namespace
}  // namespace lumora::test
