// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/picture/jpeg_markers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/tools/pictures.h"
#include "tools/lumora/picture/decode_picture.h"
#include "tools/lumora/picture/picture.h"
#include "tools/lumora/support/failure.h"

namespace lumora::test {
namespace {

using tools::ReadJpegMarkers;

constexpr uint8_t kStartOfScan = 0xda;

/// The places of markers with that code; the small files here have none inside their segments.
std::vector<size_t> PlacesOf(uint8_t code, const Bytes& file) {
  std::vector<size_t> places;
  for (size_t at = 0; at + 1 < file.size(); ++at) {
    if (file[at] == 0xff && file[at + 1] == code) places.push_back(at);
  }
  return places;
}

/// A progressive file whose first scan is there as often as it takes to have so many scans. The
/// scan says the same each time, so the picture stays what it is.
Bytes WithScans(const Bytes& progressive, int count) {
  const std::vector<size_t> scans = PlacesOf(kStartOfScan, progressive);
  const auto begin = progressive.begin() + static_cast<std::ptrdiff_t>(scans.at(0));
  const auto end = std::adjacent_find(begin + 2, progressive.end(), [](uint8_t a, uint8_t b) {
    return a == 0xff && b != 0 && (b < 0xd0 || b > 0xd7);
  });
  const Bytes scan(begin, end);
  Bytes file(progressive.begin(), end);
  for (int i = static_cast<int>(scans.size()); i < count; ++i) {
    file.insert(file.end(), scan.begin(), scan.end());
  }
  file.insert(file.end(), end, progressive.end());
  return file;
}

JpegKind Progressive(bool rgb) {
  JpegKind kind;
  kind.progressive = true;
  kind.rgb = rgb;
  return kind;
}

TEST(JpegMarkers, ScansAreCountedAndTheEndIsFound) {
  const cv::Mat picture = Landscape(64, 48);
  for (const JpegKind& kind :
       {JpegKind{}, JpegKind{2, 2, 90, true}, Progressive(false), Progressive(true)}) {
    const Bytes file = JpegOf(picture, kind);
    const tools::JpegMarkers markers = ReadJpegMarkers(file);
    EXPECT_EQ(markers.scans, static_cast<int>(PlacesOf(kStartOfScan, file).size()));
    EXPECT_EQ(markers.end, file.size());
    // Whatever follows, even a picture, is not the picture's.
    Bytes longer = file;
    longer.insert(longer.end(), file.begin(), file.end());
    EXPECT_EQ(ReadJpegMarkers(longer).scans, markers.scans);
    EXPECT_EQ(ReadJpegMarkers(longer).end, file.size());
    // A thumbnail inside of a segment is not, either.
    Bytes segment = {0xff, 0xe1, 0, 0};
    segment.insert(segment.end(), file.begin(), file.end());
    segment[2] = static_cast<uint8_t>((segment.size() - 2) >> 8);
    segment[3] = static_cast<uint8_t>(segment.size() - 2);
    Bytes with_thumbnail = file;
    with_thumbnail.insert(with_thumbnail.begin() + 2, segment.begin(), segment.end());
    EXPECT_EQ(ReadJpegMarkers(with_thumbnail).scans, markers.scans);
    EXPECT_EQ(ReadJpegMarkers(with_thumbnail).end, with_thumbnail.size());
    for (size_t size = 0; size < file.size(); ++size) {  // cut anywhere
      const Bytes part(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size));
      EXPECT_EQ(ReadJpegMarkers(part).end, size);
    }
  }
}

TEST(JpegMarkers, APictureInMoreThan1000ScansIsRefused) {
  const cv::Mat picture = Landscape(32, 32);
  for (const bool rgb : {false, true}) {  // either way of decoding
    SCOPED_TRACE(rgb);
    const Bytes file = JpegOf(picture, Progressive(rgb));
    const Bytes most = WithScans(file, 1000), too_many = WithScans(file, 1001);
    ASSERT_EQ(PlacesOf(kStartOfScan, most).size(), 1000u);
    ASSERT_EQ(PlacesOf(kStartOfScan, too_many).size(), 1001u);
    const auto decoded = tools::DecodePicture(most, "many.jpg");
    EXPECT_EQ(decoded.picture->size(), (tools::Size{32, 32}));
    try {
      tools::DecodePicture(too_many, "many.jpg");
      ADD_FAILURE() << "was accepted";
    } catch (const tools::Failure& failure) {
      EXPECT_EQ(failure.code(), tools::ExitCode::Unreadable);
      EXPECT_THAT(failure.what(), testing::HasSubstr("more than 1000 scans"));
    }
  }
}

}  // namespace
}  // namespace lumora::test
