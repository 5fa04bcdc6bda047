// SPDX-License-Identifier: Apache-2.0
// The face record: what lies at which byte.
#include "lumora/geometry/face_record.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <vector>

namespace {

using Bytes = std::array<unsigned char, 924>;

// 32-bit words, least significant byte first.
void PutWord(Bytes& bytes, size_t offset, uint32_t value) {
  for (size_t i = 0; i < 4; ++i) bytes[offset + i] = static_cast<unsigned char>(value >> (8 * i));
}

FACE_INFO_t RecordOf(const Bytes& bytes) {
  FACE_INFO_t face;
  std::memcpy(&face, bytes.data(), bytes.size());
  return face;
}

TEST(FaceInfo, HasTheSizeAndAlignmentThatCallersCompiledIn) {
  EXPECT_EQ(924u, sizeof(FACE_INFO_t));
  EXPECT_EQ(4u, alignof(FACE_INFO_t));
  const std::vector<FACE_INFO_t> faces(2);
  EXPECT_EQ(924,
            reinterpret_cast<const char*>(&faces[1]) - reinterpret_cast<const char*>(&faces[0]));
}

TEST(FaceInfo, ReadsEachScalarFromItsOwnBytes) {
  const struct {
    const char* name;
    size_t offset;
    int32_t FACE_INFO_t::*field;
  } kScalars[] = {
      {"dist_valid", 44, &FACE_INFO_t::dist_valid},
      {"shapetype", 48, &FACE_INFO_t::shapetype},
      {"loc_x", 76, &FACE_INFO_t::loc_x},
      {"loc_y", 80, &FACE_INFO_t::loc_y},
      {"roll", 92, &FACE_INFO_t::roll},
      {"dist", 128, &FACE_INFO_t::dist},
      {"chin_dist", 144, &FACE_INFO_t::chin_dist},
  };
  for (const auto& written : kScalars) {
    SCOPED_TRACE(written.name);
    Bytes bytes{};
    PutWord(bytes, written.offset, 0x81234567u);  // negative, no byte like another
    const FACE_INFO_t face = RecordOf(bytes);
    for (const auto& read : kScalars) {
      const int32_t expected =
          read.offset == written.offset ? static_cast<int32_t>(0x81234567u) : 0;
      EXPECT_EQ(expected, face.*read.field) << read.name;
    }
    EXPECT_EQ(0.0f, face.dist_level_ratio);
  }
}

TEST(FaceInfo, ReadsTheStrengthRatioFromTheLastWord) {
  Bytes bytes{};
  PutWord(bytes, 920, 0x3FC00000u);  // 1.5
  EXPECT_EQ(1.5f, RecordOf(bytes).dist_level_ratio);
}

TEST(FaceInfo, NumbersLandmarksFromByteEight) {
  Bytes bytes{};
  for (int i = 12; i <= 75; ++i) {
    const size_t offset = 8 + 12 * static_cast<size_t>(i);
    PutWord(bytes, offset, static_cast<uint32_t>(1000 + i));
    PutWord(bytes, offset + 4, static_cast<uint32_t>(-2000 - i));
    PutWord(bytes, offset + 8, static_cast<uint32_t>(3000 + i));
  }
  FACE_INFO_t face = RecordOf(bytes);
  for (int i = FACE_INFO_t::kFirstLandmark; i <= FACE_INFO_t::kLastLandmark; ++i) {
    EXPECT_EQ(1000 + i, face.landmark(i).x);
    EXPECT_EQ(-2000 - i, face.landmark(i).y);
    EXPECT_EQ(3000 + i, face.landmark(i).reserved);
  }
  // All 64 were visited, and the ratio behind the last one is another word.
  EXPECT_EQ(12, FACE_INFO_t::kFirstLandmark);
  EXPECT_EQ(75, FACE_INFO_t::kLastLandmark);
  EXPECT_EQ(0.0f, face.dist_level_ratio);
}

TEST(FaceInfo, WritesLandmarksWhereItReadsThem) {
  FACE_INFO_t face{};
  face.landmark(75) = {11, 22, 33};
  Bytes bytes{};
  std::memcpy(bytes.data(), &face, bytes.size());
  Bytes expected{};
  PutWord(expected, 908, 11);
  PutWord(expected, 912, 22);
  PutWord(expected, 916, 33);
  EXPECT_EQ(expected, bytes);
}

}  // namespace
