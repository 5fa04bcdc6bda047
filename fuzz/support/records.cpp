// SPDX-License-Identifier: Apache-2.0
#include "fuzz/support/records.h"

#include <algorithm>
#include <cstring>

#include "support/faces.h"

namespace lumora::fuzz {
namespace {

constexpr int kWords = sizeof(FACE_INFO_t) / sizeof(int32_t);

}  // namespace

FACE_INFO_t CleanRecord(int width, int height) {
  const int half_width = std::max(std::min(width, height) / 4, 2);
  return test::PortraitFace(width / 2, height / 2, half_width).as<FACE_INFO_t>();
}

FACE_INFO_t TakeRecord(Input& input, int width, int height) {
  const auto kind = input.take<uint8_t>();
  const FACE_INFO_t clean = CleanRecord(width, height);
  int32_t words[kWords] = {};
  if (kind % 4 != 0) std::memcpy(words, &clean, sizeof(clean));
  if (kind == 0xFF) {
    for (int32_t& word : words) word = input.any_int();
  } else {
    for (int changes = kind / 8; changes > 0; --changes) {
      const int at = input.between(0, kWords - 1);
      words[at] = input.any_int();
    }
  }
  FACE_INFO_t record;
  std::memcpy(&record, words, sizeof(record));
  return record;
}

std::vector<FACE_INFO_t> TakeRecords(Input& input, int most, int width, int height) {
  std::vector<FACE_INFO_t> records;
  for (int i = input.between(0, most); i > 0; --i) {
    records.push_back(TakeRecord(input, width, height));
  }
  return records;
}

int TakeCount(Input& input, const std::vector<FACE_INFO_t>& records) {
  const int count = input.any_int();
  return count < 0 ? count : static_cast<int>(records.size());
}

}  // namespace lumora::fuzz
