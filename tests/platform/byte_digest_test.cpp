// SPDX-License-Identifier: Apache-2.0
// The digest that vouches for cache files, against the published values.
#include "lumora/platform/byte_digest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <random>
#include <set>
#include <utility>
#include <vector>

namespace {

using lumora::platform::ByteDigest;

uint64_t DigestOf(const std::vector<unsigned char>& bytes) {
  ByteDigest digest;
  digest.Add(bytes.data(), bytes.size());
  return digest.Value();
}

std::vector<unsigned char> CountedBytes(size_t size) {
  std::vector<unsigned char> bytes(size);
  std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(0));
  return bytes;
}

// The paper's example has 15 bytes; its authors publish the value for none, too.
TEST(ByteDigest, IsThePublishedFunction) {
  EXPECT_EQ(DigestOf(CountedBytes(15)), 0xa129ca6149be45e5u);
  EXPECT_EQ(DigestOf({}), 0x726fdb47dd0e0e31u);
}

TEST(ByteDigest, DoesNotDependOnHowTheBytesAreDivided) {
  std::mt19937 random(3);
  const std::vector<unsigned char> bytes = CountedBytes(200);
  for (int round = 0; round < 200; ++round) {
    ByteDigest digest;
    for (size_t done = 0; done < bytes.size();) {
      const size_t part = std::min<size_t>(random() % 20, bytes.size() - done);
      digest.Add(bytes.data() + done, part);
      done += part;
    }
    EXPECT_EQ(digest.Value(), DigestOf(bytes));
  }
}

TEST(ByteDigest, EveryBitAndEveryLengthCounts) {
  std::set<uint64_t> seen;
  size_t count = 0;
  for (size_t size = 0; size <= 64; ++size) {
    std::vector<unsigned char> bytes(size);
    seen.insert(DigestOf(bytes));
    ++count;
    for (size_t bit = 0; bit < 8 * size; ++bit, ++count) {
      bytes[bit / 8] ^= static_cast<unsigned char>(1u << bit % 8);
      seen.insert(DigestOf(bytes));
      bytes[bit / 8] ^= static_cast<unsigned char>(1u << bit % 8);
    }
  }
  EXPECT_EQ(seen.size(), count);
}

TEST(ByteDigest, TextsDoNotRunIntoEachOther) {
  std::set<uint64_t> seen;
  for (const auto& [first, second] :
       {std::pair("ab", "c"), std::pair("a", "bc"), std::pair("abc", ""), std::pair("", "abc")}) {
    ByteDigest digest;
    digest.AddText(first);
    digest.AddText(second);
    seen.insert(digest.Value());
  }
  EXPECT_EQ(seen.size(), 4u);
  ByteDigest null, empty;
  null.AddText(nullptr);
  empty.AddText("");
  EXPECT_EQ(null.Value(), empty.Value());
}

}  // namespace
