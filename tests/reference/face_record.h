// SPDX-License-Identifier: Apache-2.0
// A face record as bytes: 924 of them, every field by its offset. Independent of the library's
// type, so that the two check each other.
#ifndef LUMORA_REFERENCE_FACE_RECORD_H_
#define LUMORA_REFERENCE_FACE_RECORD_H_

#include <array>
#include <cstddef>
#include <cstdint>

namespace lumora::reference {

/// A landmark or any other place in pixels.
struct Point {
  int32_t x = 0;
  int32_t y = 0;
};

class FaceRecord {
 public:
  static constexpr size_t kSize = 924;

  /// Offsets of the scalars.
  enum Field : size_t {
    kDistValid = 44,       ///< int32; distances are valid from 1 on
    kShapeType = 48,       ///< int32; 2 halves the strength
    kLocX = 76,            ///< int32, pixels
    kLocY = 80,            ///< int32, pixels
    kRoll = 92,            ///< int32, degrees
    kDist = 128,           ///< int32, pixels
    kChinDist = 144,       ///< int32, pixels
    kDistLevelRatio = 920  ///< float32
  };

  /// All bytes zero.
  FaceRecord() = default;
  /// A copy of kSize bytes at `record`.
  static FaceRecord From(const void* record);

  int32_t get(Field field) const;
  FaceRecord& set(Field field, int32_t value);
  float ratio() const;
  FaceRecord& set_ratio(float value);
  /// Landmark i, 12..75, at offset 8 + 12 * i. Setting leaves the third word as it is.
  Point landmark(int index) const;
  FaceRecord& set_landmark(int index, Point point);

  const void* data() const { return bytes_.data(); }
  /// The bytes as the library's record type.
  template <typename Record>
  Record as() const;

 private:
  std::array<uint8_t, kSize> bytes_{};
};

/// A record for slimming: valid distances, shape 0.
FaceRecord SlimmingFace(int loc_x, int loc_y, int dist, int chin_dist, int roll = 180,
                        float ratio = 1.0f);

template <typename Record>
Record FaceRecord::as() const {
  static_assert(sizeof(Record) == kSize, "the library's face record has another size");
  Record record;
  uint8_t* target = reinterpret_cast<uint8_t*>(&record);
  for (size_t i = 0; i < kSize; ++i) target[i] = bytes_[i];
  return record;
}

}  // namespace lumora::reference

#endif  // LUMORA_REFERENCE_FACE_RECORD_H_
