// SPDX-License-Identifier: Apache-2.0
// Metadata byte by byte: what changes, what stays, and what hostile blocks cannot do.
#include "tools/lumora/picture/metadata.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <random>
#include <string>

#include "tests/tools/pictures.h"
#include "tests/tools/png_files.h"
#include "tests/tools/stored_pictures.h"
#include "tools/lumora/picture/exif.h"
#include "tools/lumora/picture/jpeg_metadata.h"
#include "tools/lumora/picture/png_metadata.h"
#include "tools/lumora/picture/xmp.h"

namespace lumora::test {
namespace {

int OrientationOf(const Bytes& file) {
  return tools::ExifOrientation(tools::ReadMetadata(file).exif);
}

using tools::PictureMetadata;

constexpr tools::Size kUpright = {80, 48};

/// An EXIF block, written number by number.
class ExifBlock {
 public:
  explicit ExifBlock(bool big) : big_(big) {
    bytes = big ? Bytes{'M', 'M'} : Bytes{'I', 'I'};
    Put(42, 2);
    Put(8, 4);
  }

  void Put(uint32_t value, int length) {
    for (int i = 0; i < length; ++i) {
      bytes.push_back(static_cast<uint8_t>(value >> 8 * (big_ ? length - 1 - i : i)));
    }
  }
  void Entry(uint32_t tag, uint32_t type, uint32_t count, uint32_t value) {
    Put(tag, 2);
    Put(type, 2);
    Put(count, 4);
    Put(value, type == 3 && count == 1 ? 2 : 4);
    if (type == 3 && count == 1) Put(0, 2);
  }

  Bytes bytes;

 private:
  bool big_;
};

// Places in the block below.
constexpr size_t kMainEntries = 10, kMakeAt = 8 + 2 + 3 * 12 + 4, kCameraAt = kMakeAt + 6,
                 kThumbnailAt = kCameraAt + 2 + 3 * 12 + 4, kNoteAt = kThumbnailAt + 2 + 2 * 12 + 4,
                 kNoteSize = 20, kSamplesAt = kNoteAt + kNoteSize, kSamples = 30;

/// A camera's block: its make, a maker note and a thumbnail at the end.
Bytes CameraBlock(bool big, uint32_t orientation, bool short_size) {
  ExifBlock block(big);
  block.Put(3, 2);
  block.Entry(0x010f, 2, 6, kMakeAt);
  block.Entry(0x0112, 3, 1, orientation);
  block.Entry(0x8769, 4, 1, kCameraAt);
  block.Put(kThumbnailAt, 4);
  for (const char c : std::string("Maker\0", 6)) block.Put(static_cast<uint8_t>(c), 1);
  block.Put(3, 2);
  block.Entry(0x927c, 7, kNoteSize, kNoteAt);
  block.Entry(0xa002, short_size ? 3 : 4, 1, 48);
  block.Entry(0xa003, short_size ? 3 : 4, 1, 80);
  block.Put(0, 4);
  block.Put(2, 2);
  block.Entry(0x0201, 4, 1, kSamplesAt);
  block.Entry(0x0202, 4, 1, kSamples);
  block.Put(0, 4);
  for (size_t i = 0; i < kNoteSize; ++i) block.Put(0xa0 + static_cast<uint32_t>(i), 1);
  for (size_t i = 0; i < kSamples; ++i) block.Put(0x55, 1);
  return block.bytes;
}

TEST(Exif, OnlyWhatDependsOnThePixelsChanges) {
  for (const bool big : {false, true}) {
    for (const bool short_size : {false, true}) {
      SCOPED_TRACE(testing::Message() << big << ", " << short_size);
      const Bytes before = CameraBlock(big, 6, short_size);
      EXPECT_EQ(tools::ExifOrientation(before), 6);
      Bytes after = before;
      ASSERT_TRUE(tools::CorrectExif(after, kUpright));
      EXPECT_EQ(tools::ExifOrientation(after), 1);
      ASSERT_EQ(after.size(), kSamplesAt);  // without the thumbnail
      const auto may_differ = [](size_t at) {
        const auto in = [at](size_t begin, size_t end) { return at >= begin && at < end; };
        return in(kMainEntries + 12, kMainEntries + 24) || in(kMakeAt - 4, kMakeAt) ||
               in(kCameraAt + 2 + 12, kCameraAt + 2 + 36);
      };
      for (size_t at = 0; at < after.size(); ++at) {
        EXPECT_TRUE(after[at] == before[at] || may_differ(at)) << at;
      }
      // As another program reads it.
      Exiv2::ExifData exif;
      Exiv2::ExifParser::decode(exif, after.data(), static_cast<uint32_t>(after.size()));
      EXPECT_EQ(exif["Exif.Image.Make"].toString(), "Maker");
      EXPECT_EQ(exif["Exif.Image.Orientation"].toLong(), 1);
      EXPECT_EQ(exif["Exif.Photo.PixelXDimension"].toLong(), 80);
      EXPECT_EQ(exif["Exif.Photo.PixelYDimension"].toLong(), 48);
      EXPECT_EQ(exif["Exif.Photo.MakerNote"].size(), static_cast<long>(kNoteSize));
      for (const auto& entry : exif) EXPECT_NE(entry.groupName(), "Thumbnail");
    }
  }
}

TEST(Exif, OrientationsThatAreNoneAreUpright) {
  for (uint32_t value = 0; value < 12; ++value) {
    const int expected = value >= 1 && value <= 8 ? static_cast<int>(value) : 1;
    EXPECT_EQ(tools::ExifOrientation(CameraBlock(true, value, false)), expected);
  }
}

TEST(Exif, AThumbnailBeforeOtherThingsIsBlanked) {
  Bytes block = CameraBlock(false, 3, false);
  block.insert(block.end(), {1, 2, 3});
  const Bytes before = block;
  ASSERT_TRUE(tools::CorrectExif(block, kUpright));
  ASSERT_EQ(block.size(), before.size());
  EXPECT_EQ(std::count(block.begin(), block.end(), 0x55), 0);
  EXPECT_TRUE(std::equal(before.end() - 3, before.end(), block.end() - 3));
}

TEST(Exif, AThumbnailInStripsIsCutOffToo) {
  for (const bool big : {false, true}) {
    Bytes block = CameraBlock(big, 1, false);
    const auto tag = [&](size_t entry, uint8_t high, uint8_t low) {
      const size_t at = kThumbnailAt + 2 + 12 * entry;
      block[at + (big ? 0 : 1)] = high;
      block[at + (big ? 1 : 0)] = low;
    };
    tag(0, 0x01, 0x11);
    tag(1, 0x01, 0x17);
    ASSERT_TRUE(tools::CorrectExif(block, kUpright));
    EXPECT_EQ(block.size(), kSamplesAt);
  }
}

TEST(Exif, LoopsAndPlacesOutsideAreSurvived) {
  const Bytes good = CameraBlock(false, 6, false);
  const auto with = [&good](size_t at, uint32_t value) {
    Bytes block = good;
    for (size_t i = 0; i < 4; ++i) block[at + i] = static_cast<uint8_t>(value >> 8 * i);
    return block;
  };
  constexpr size_t kNextAt = kMakeAt - 4, kCameraOffsetAt = kMainEntries + 2 * 12 + 8,
                   kBeginAt = kThumbnailAt + 2 + 8, kLengthAt = kBeginAt + 12;
  const auto size = static_cast<uint32_t>(good.size());
  for (const uint32_t value :
       {0u, 1u, 7u, 8u, 9u, static_cast<uint32_t>(kCameraAt), size - 3, size - 2, size - 1, size,
        size + 1, 0x7fffffffu, 0xfffffff4u, 0xffffffffu}) {
    for (const size_t at : {kNextAt, kCameraOffsetAt, kBeginAt, kLengthAt, kMainEntries + 12 + 4}) {
      SCOPED_TRACE(testing::Message() << value << " at " << at);
      Bytes block = with(at, value);
      EXPECT_TRUE(tools::CorrectExif(block, kUpright));
      EXPECT_EQ(tools::ExifOrientation(block), 1);
      EXPECT_LE(block.size(), good.size());
      EXPECT_GE(block.size(), kNoteAt);  // no directory is cut off
      EXPECT_TRUE(std::equal(good.begin(), good.begin() + kMainEntries, block.begin()));
    }
  }
  // Without a directory nothing is known about a block.
  for (const uint32_t first : {0u, 7u, size - 1, size, 0xffffffffu}) {
    Bytes block = with(4, first);
    EXPECT_FALSE(tools::CorrectExif(block, kUpright));
    EXPECT_EQ(tools::ExifOrientation(block), 1);
  }
}

TEST(Exif, AnyCutAndAnyDamageIsSurvived) {
  std::mt19937 random(3);
  for (const bool big : {false, true}) {
    const Bytes good = CameraBlock(big, 6, false);
    const auto expect_survival = [](Bytes block) {
      const size_t size = block.size();
      block.shrink_to_fit();  // so that tools find what lies behind
      if (tools::CorrectExif(block, kUpright)) {
        EXPECT_EQ(tools::ExifOrientation(block), 1);
      }
      EXPECT_LE(block.size(), size);
    };
    for (size_t size = 0; size <= good.size(); ++size) {
      expect_survival(Bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size)));
    }
    for (int i = 0; i < 20000; ++i) {
      Bytes block = good;
      for (int changes = 1 + i % 4; changes > 0; --changes) {
        constexpr uint8_t kValues[] = {0, 1, 2, 8, 0x7f, 0x80, 0xfe, 0xff};
        block[random() % kSamplesAt] = kValues[random() % 8];
      }
      expect_survival(block);
    }
    for (const char* start : {"", "II", "MM", "IM", "II*", "MM*\0\0\0\0\x08", "II\0*\x08\0\0\0"}) {
      const std::string text = start;
      expect_survival(Bytes(text.begin(), text.end()));
    }
  }
}

TEST(Xmp, TheOrientationIsSetHoweverItIsWritten) {
  const std::string space = "xmlns:tiff=\"http://ns.adobe.com/tiff/1.0/\"";
  const std::pair<std::string, std::string> kPackets[] = {
      {"<a " + space + " tiff:Orientation=\"6\" b=\"7\"/>",
       "<a " + space + " tiff:Orientation=\"1\" b=\"7\"/>"},
      {"<a " + space + "><tiff:Orientation> 8 </tiff:Orientation>3",
       "<a " + space + "><tiff:Orientation> 1 </tiff:Orientation>3"},
      {"<a xmlns:t = 'http://ns.adobe.com/tiff/1.0/' t:Orientation = '3'",
       "<a xmlns:t = 'http://ns.adobe.com/tiff/1.0/' t:Orientation = '1'"},
      {space + " tiff:Orientation=\"06\"", space + " tiff:Orientation=\"01\""},
      // Nothing to change.
      {"tiff:Orientation=\"6\"", "tiff:Orientation=\"6\""},
      {space + " other:Orientation=\"6\"", space + " other:Orientation=\"6\""},
      {space + " tiff:OrientationOf=\"6\"", space + " tiff:OrientationOf=\"6\""},
      {space + " tiff:Orientation", space + " tiff:Orientation"},
      {space + " tiff:Orientation=", space + " tiff:Orientation="},
      {space + " tiff:Orientation=\"", space + " tiff:Orientation=\""},
      {"http://ns.adobe.com/tiff/1.0/:Orientation=\"6",
       "http://ns.adobe.com/tiff/1.0/:Orientation=\"6"},
      {"=\"http://ns.adobe.com/tiff/1.0/", "=\"http://ns.adobe.com/tiff/1.0/"},
      {"", ""}};
  for (const auto& [before, after] : kPackets) {
    Bytes packet(before.begin(), before.end());
    tools::CorrectXmp(packet);
    EXPECT_EQ(std::string(packet.begin(), packet.end()), after);
  }
}

Bytes Noise(size_t size) {
  std::mt19937 random(9);
  Bytes bytes(size);
  std::generate(bytes.begin(), bytes.end(), [&random] { return static_cast<uint8_t>(random()); });
  return bytes;
}

TEST(JpegMetadata, LargeOnesTakeSeveralSegments) {
  PictureMetadata metadata;
  metadata.exif = CameraBlock(true, 1, false);
  metadata.xmp = Noise(60000);
  metadata.profile = Noise(200000);
  metadata.iptc = Noise(70001);
  metadata.comments = {{'o', 'n', 'e'}, {'t', 'w', 'o'}};
  const std::string extension = std::string("http://ns.adobe.com/xmp/extension/") + '\0' + "more";
  metadata.xmp_extensions = {Bytes(extension.begin(), extension.end())};
  const cv::Mat picture = Landscape(64, 48);
  const Bytes plain = JpegOf(picture, {});
  Bytes file = plain;
  EXPECT_EQ(tools::AddJpegMetadata(metadata, file), "");
  const PictureMetadata again = tools::ReadJpegMetadata(file);
  EXPECT_EQ(again.exif, metadata.exif);
  EXPECT_EQ(again.xmp, metadata.xmp);
  EXPECT_EQ(again.profile, metadata.profile);
  EXPECT_EQ(again.iptc, metadata.iptc);
  EXPECT_EQ(again.comments, metadata.comments);
  EXPECT_EQ(again.xmp_extensions, metadata.xmp_extensions);
  EXPECT_EQ(cv::norm(Decode(file), Decode(plain), cv::NORM_INF), 0);
  for (size_t size = 0; size < file.size(); size += 1 + size / 50) {  // cut anywhere
    tools::ReadJpegMetadata(Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size)));
  }
}

TEST(JpegMetadata, WhatIsTooLargeIsNamedAndTheRestKept) {
  PictureMetadata large;
  large.exif = CameraBlock(false, 6, false);
  large.exif.insert(large.exif.end(), 65536, 7);
  large.comments = {{'h', 'e', 'r', 'e'}};
  Bytes png = PngOf(Landscape(64, 48));
  tools::AddPngMetadata(large, png);
  EXPECT_EQ(OrientationOf(png), 6);
  Bytes jpeg = JpegOf(Landscape(48, 64), {});
  EXPECT_EQ(tools::CopyMetadata(tools::ReadMetadata(png), png, {48, 64}, jpeg),
            "metadata could not be kept: too large for a JPEG: EXIF");
  EXPECT_EQ(tools::ReadJpegMetadata(jpeg).comments, large.comments);
  EXPECT_TRUE(tools::ReadJpegMetadata(jpeg).exif.empty());
}

TEST(PngMetadata, BothFormsOfExifAreCorrectedAndOnlyOneIsWritten) {
  const Bytes plain = PngOf(Landscape(64, 48));
  const Bytes own = WithChunk(plain, PngChunk("eXIf", CameraBlock(true, 6, false)));
  const Bytes text = WithOrientation(plain, 6);  // as hexadecimal digits
  EXPECT_EQ(OrientationOf(own), 6);
  EXPECT_EQ(OrientationOf(text), 6);
  for (const Bytes& from : {own, text, WithOrientation(own, 3)}) {
    Bytes result = plain;
    ASSERT_EQ(tools::CopyMetadata(tools::ReadMetadata(from), from, kUpright, result), "");
    EXPECT_EQ(OrientationOf(result), 1);
    EXPECT_EQ(MetadataOf(result)->exifData()["Exif.Image.Orientation"].toLong(), 1);
    const std::string words(result.begin(), result.end());
    EXPECT_EQ(words.find("Raw profile type exif"), std::string::npos);
    EXPECT_EQ(words.find("eXIf"), words.rfind("eXIf"));
    EXPECT_NE(words.find("eXIf"), std::string::npos);
  }
}

TEST(PngMetadata, WhatAnotherProgramWroteComesIntoAJpeg) {
  const Bytes profile = [] {
    Bytes bytes(200, 7);
    bytes[0] = bytes[1] = bytes[2] = 0;
    bytes[3] = 200;
    return bytes;
  }();
  const Bytes png = WithMetadata(PngOf(Landscape(64, 48)), [&profile](Exiv2::Image& image) {
    image.exifData()["Exif.Image.Make"] = "Maker";
    image.iptcData()["Iptc.Application2.Caption"] = "A caption";
    image.xmpData()["Xmp.dc.title"] = "A title";
    image.setComment("A comment");
    Exiv2::DataBuf data(profile.data(), static_cast<long>(profile.size()));
    image.setIccProfile(data);
  });
  for (Bytes result : {JpegOf(Landscape(64, 48), {}), PngOf(Landscape(64, 48))}) {
    ASSERT_EQ(tools::CopyMetadata(tools::ReadMetadata(png), png, kUpright, result), "");
    const auto has = MetadataOf(result);
    EXPECT_EQ(has->exifData()["Exif.Image.Make"].toString(), "Maker");
    EXPECT_EQ(has->iptcData()["Iptc.Application2.Caption"].toString(), "A caption");
    EXPECT_THAT(has->xmpData()["Xmp.dc.title"].toString(), testing::HasSubstr("A title"));
    EXPECT_EQ(has->comment(), "A comment");
    ASSERT_EQ(has->iccProfile()->size_, 200);
    EXPECT_TRUE(std::equal(profile.begin(), profile.end(), has->iccProfile()->pData_));
  }
}

TEST(PngMetadata, PackedTextsAreWholeAndNoBombs) {
  const Bytes plain = PngOf(Landscape(64, 48));
  const auto comments = [&plain](size_t size, size_t cut) {
    const Bytes text(size, 'x');
    uLongf packed = compressBound(static_cast<uLong>(size));
    const std::string key = std::string("Description") + '\0' + '\0';
    Bytes content(key.begin(), key.end());
    content.resize(key.size() + packed);
    compress(&content[key.size()], &packed, text.data(), static_cast<uLong>(size));
    content.resize(key.size() + packed - cut);
    return tools::ReadPngMetadata(WithChunk(plain, PngChunk("zTXt", content))).comments;
  };
  EXPECT_EQ(comments(5000, 0), std::vector<Bytes>{Bytes(5000, 'x')});
  EXPECT_THAT(comments(5000, 1), testing::IsEmpty());
  EXPECT_THAT(comments(17 << 20, 0), testing::IsEmpty());
}

TEST(PngMetadata, TextsThatLieAreLeftOut) {
  const Bytes plain = PngOf(Landscape(64, 48));
  const auto with_text = [&plain](const std::string& type, const std::string& text) {
    return WithChunk(plain, PngChunk(type, Bytes(text.begin(), text.end())));
  };
  const std::string key = std::string("Raw profile type exif") + '\0', zip = std::string(1, '\0');
  for (const Bytes& file : {with_text("tEXt", ""),
                            with_text("tEXt", "Raw profile type exif"),
                            with_text("tEXt", key),
                            with_text("tEXt", key + "\n"),
                            with_text("tEXt", key + "\nexif\n"),
                            with_text("tEXt", key + "\nexif\n     4"),
                            with_text("tEXt", key + "\nexif\n    4\n49492"),
                            with_text("tEXt", key + "\nexif\n99999999999999999999\n4949"),
                            with_text("tEXt", key + "\nexif\n -1\n4949"),
                            with_text("zTXt", key),
                            with_text("zTXt", key + zip),
                            with_text("zTXt", key + zip + "no stream"),
                            with_text("iTXt", key),
                            with_text("iTXt", key + zip),
                            with_text("iTXt", key + zip + zip),
                            with_text("iTXt", key + zip + zip + "en"),
                            with_text("iCCP", ""),
                            with_text("iCCP", "name"),
                            with_text("iCCP", std::string("name\0\0junk", 10)),
                            with_text("eXIf", ""),
                            with_text("eXIf", "II*")}) {
    EXPECT_EQ(OrientationOf(file), 1);
    Bytes jpeg = JpegOf(Landscape(64, 48), {});
    const Bytes without = jpeg;
    EXPECT_EQ(tools::CopyMetadata(tools::ReadMetadata(file), file, kUpright, jpeg), "");
    EXPECT_EQ(jpeg, without);
  }
}

}  // namespace
}  // namespace lumora::test
