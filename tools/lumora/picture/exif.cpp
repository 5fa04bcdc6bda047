// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/picture/exif.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace lumora::tools {
namespace {

enum Tag : uint32_t {
  kStripOffsets = 0x0111,
  kOrientation = 0x0112,
  kStripByteCounts = 0x0117,
  kThumbnailOffset = 0x0201,
  kThumbnailLength = 0x0202,
  kExifDirectory = 0x8769,
  kPixelXDimension = 0xa002,
  kPixelYDimension = 0xa003,
};

enum Type : uint32_t { kByte = 1, kShort = 3, kLong = 4 };

constexpr size_t kHeader = 8;
constexpr size_t kEntry = 12, kTypeAt = 2, kCountAt = 4, kValueAt = 8;
constexpr uint32_t kMostStrips = 64;  // thumbnails have one

/// A table of entries. Those that lie outside of the block are not counted.
struct Directory {
  size_t at = 0;
  size_t entries = 0;
  bool whole = false;  ///< and the next directory's offset follows

  size_t Entry(size_t index) const { return at + 2 + index * kEntry; }
  size_t NextAt() const { return Entry(entries); }
  size_t End() const { return NextAt() + (whole ? 4 : 0); }
};

/// The numbers in a block.
class Block {
 public:
  explicit Block(Bytes& bytes) : bytes_(bytes) {
    if (bytes.size() < kHeader || bytes[0] != bytes[1]) return;
    big_ = bytes[0] == 'M';
    valid_ = (big_ || bytes[0] == 'I') && Number(2, 2) == 42;
  }

  Directory First() const { return valid_ ? At(Number(4, 4)) : Directory{}; }

  Directory After(const Directory& directory) const {
    return directory.whole ? At(Number(directory.NextAt(), 4)) : Directory{};
  }

  /// The directory that an entry of another one leads to.
  Directory Under(const Directory& directory, Tag tag) const {
    const std::optional<size_t> entry = Find(directory, tag);
    const std::optional<uint32_t> offset = entry ? Value(*entry, 0) : std::nullopt;
    return offset ? At(*offset) : Directory{};
  }

  std::optional<size_t> Find(const Directory& directory, Tag tag) const {
    for (size_t i = 0; i < directory.entries; ++i) {
      if (Number(directory.Entry(i), 2) == tag) return directory.Entry(i);
    }
    return std::nullopt;
  }

  /// One of the whole numbers that an entry holds, or refers to.
  std::optional<uint32_t> Value(size_t entry, uint32_t index) const {
    const uint32_t type = Number(entry + kTypeAt, 2), count = Number(entry + kCountAt, 4);
    const size_t each = type == kByte ? 1 : type == kShort ? 2 : type == kLong ? 4 : 0;
    if (each == 0 || index >= count) return std::nullopt;
    const bool inside = uint64_t{count} * each <= 4;
    const uint64_t at = (inside ? entry + kValueAt : uint64_t{Number(entry + kValueAt, 4)}) +
                        uint64_t{index} * each;
    if (at + each > bytes_.size()) return std::nullopt;
    return Number(static_cast<size_t>(at), each);
  }

  /// Makes an entry that is there a single number.
  void Set(const Directory& directory, Tag tag, Type type, uint32_t value) {
    const std::optional<size_t> entry = Find(directory, tag);
    if (!entry) return;
    Put(*entry + kTypeAt, 2, type);
    Put(*entry + kCountAt, 4, 1);
    Put(*entry + kValueAt, 4, 0);
    Put(*entry + kValueAt, type == kShort ? 2 : 4, value);
  }

  void EndAfter(const Directory& directory) {
    if (directory.whole) Put(directory.NextAt(), 4, 0);
  }

 private:
  /// The caller knows that the place is inside.
  uint32_t Number(size_t at, size_t length) const {
    uint32_t number = 0;
    for (size_t i = 0; i < length; ++i) {
      number = number << 8 | bytes_[at + (big_ ? i : length - 1 - i)];
    }
    return number;
  }

  void Put(size_t at, size_t length, uint32_t value) {
    for (size_t i = 0; i < length; ++i, value >>= 8) {
      bytes_[at + (big_ ? length - 1 - i : i)] = static_cast<uint8_t>(value);
    }
  }

  Directory At(size_t offset) const {
    Directory directory;
    if (offset < kHeader || offset + 2 > bytes_.size()) return directory;
    directory.at = offset;
    const size_t stated = Number(offset, 2), room = bytes_.size() - offset - 2;
    directory.entries = std::min(stated, room / kEntry);
    directory.whole = directory.entries == stated && room - stated * kEntry >= 4;
    return directory;
  }

  Bytes& bytes_;
  bool big_ = false;
  bool valid_ = false;
};

/// Begin and length of the parts of a thumbnail.
using Parts = std::vector<std::pair<uint64_t, uint64_t>>;

void AddParts(const Block& block, const Directory& directory, Tag offsets, Tag lengths,
              Parts& parts) {
  const auto begins = block.Find(directory, offsets), sizes = block.Find(directory, lengths);
  for (uint32_t i = 0; begins && sizes && i < kMostStrips; ++i) {
    const auto begin = block.Value(*begins, i), size = block.Value(*sizes, i);
    if (!begin || !size) return;
    parts.emplace_back(*begin, *size);
  }
}

/// Blanks the parts behind `first`, where no directory can lie, and cuts off the last one.
void Erase(const Parts& parts, size_t first, Bytes& bytes) {
  for (const auto& [begin, length] : parts) {
    if (begin < first || begin > bytes.size() || length > bytes.size() - begin) continue;
    const auto from = bytes.begin() + static_cast<std::ptrdiff_t>(begin);
    if (begin + length == bytes.size()) {
      bytes.erase(from, bytes.end());
    } else {
      std::fill_n(from, length, uint8_t{0});
    }
  }
}

}  // namespace

int ExifOrientation(const Bytes& exif) {
  Bytes copy = exif;
  const Block block(copy);
  const std::optional<size_t> entry = block.Find(block.First(), kOrientation);
  const uint32_t orientation = entry ? block.Value(*entry, 0).value_or(1) : 1;
  return orientation >= 1 && orientation <= 8 ? static_cast<int>(orientation) : 1;
}

bool CorrectExif(Bytes& exif, Size size) {
  Block block(exif);
  const Directory main = block.First();
  if (main.entries == 0) return false;
  const Directory camera = block.Under(main, kExifDirectory);
  const Directory thumbnail = block.After(main);
  Parts parts;
  AddParts(block, thumbnail, kThumbnailOffset, kThumbnailLength, parts);
  AddParts(block, thumbnail, kStripOffsets, kStripByteCounts, parts);

  block.EndAfter(main);
  block.Set(main, kOrientation, kShort, 1);
  block.Set(camera, kPixelXDimension, kLong, static_cast<uint32_t>(size.width));
  block.Set(camera, kPixelYDimension, kLong, static_cast<uint32_t>(size.height));
  Erase(parts, std::max({main.End(), camera.End(), thumbnail.End()}), exif);
  return true;
}

}  // namespace lumora::tools
