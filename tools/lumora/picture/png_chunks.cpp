// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/picture/png_chunks.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <limits>

namespace lumora::tools {
namespace {

constexpr std::array<uint8_t, 8> kSignature = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
constexpr size_t kChunkHead = 8;  // length and type
constexpr size_t kChunkTail = 4;  // checksum

uint32_t BigEndian(const Bytes& file, size_t at) {
  return static_cast<uint32_t>(file[at]) << 24 | static_cast<uint32_t>(file[at + 1]) << 16 |
         static_cast<uint32_t>(file[at + 2]) << 8 | file[at + 3];
}

void AppendBigEndian(uint32_t value, Bytes& to) {
  for (int shift = 24; shift >= 0; shift -= 8) to.push_back(static_cast<uint8_t>(value >> shift));
}

/// The place behind the header, where all chunks may stand that are copied or made here.
constexpr std::ptrdiff_t kBehindHeader = 8 + 25;

/// Calls `use(chunk, its size)` for the chunks of a whole file, without the end marker; whatever
/// follows that is no chunk.
template <typename Use>
void ForEachChunk(const Bytes& file, const Use& use) {
  for (size_t at = kSignature.size(); at + kChunkHead + kChunkTail <= file.size();) {
    const size_t whole = kChunkHead + BigEndian(file, at) + kChunkTail;
    if (whole > file.size() - at || IsType(&file[at + 4], "IEND")) return;
    use(&file[at], whole);
    at += whole;
  }
}

}  // namespace

bool IsType(const uint8_t* letters, const char* type) {
  return std::memcmp(letters, type, 4) == 0;
}

bool StartsLikePng(const Bytes& file) {
  return file.size() >= kSignature.size() &&
         std::equal(kSignature.begin(), kSignature.end(), file.begin());
}

Size PngSize(const Bytes& file) {
  constexpr size_t kWidthAt = 16, kHeightAt = 20;
  if (file.size() < kHeightAt + 4 || !IsType(&file[12], "IHDR")) return {};
  constexpr uint32_t kMost = std::numeric_limits<int>::max();
  return {static_cast<int>(std::min(BigEndian(file, kWidthAt), kMost)),
          static_cast<int>(std::min(BigEndian(file, kHeightAt), kMost))};
}

std::optional<Bytes> EssentialPng(const Bytes& file) {
  Bytes essential(kSignature.begin(), kSignature.end());
  size_t at = kSignature.size();
  while (file.size() >= at + kChunkHead + kChunkTail) {
    const size_t length = BigEndian(file, at);
    if (length > file.size() - at - kChunkHead - kChunkTail) return std::nullopt;
    const uint8_t* type = &file[at + 4];
    const size_t end = at + kChunkHead + length + kChunkTail;
    const uint32_t checksum = static_cast<uint32_t>(
        crc32(0, type, static_cast<uInt>(length + 4)));  // covers type and content
    if (checksum != BigEndian(file, end - kChunkTail)) return std::nullopt;
    const bool critical = (type[0] & 0x20) == 0;  // an upper-case letter
    if (critical || IsType(type, "tRNS")) {
      essential.insert(essential.end(), &file[at], &file[at] + (end - at));
    }
    if (IsType(type, "IEND")) return essential;
    at = end;
  }
  return std::nullopt;
}

size_t PngEnd(const Bytes& file) {
  size_t end = kSignature.size();
  ForEachChunk(file, [&end](const uint8_t*, size_t whole) { end += whole; });
  return std::min(end + kChunkHead + kChunkTail, file.size());  // and the end marker
}

bool IsAnimatedPng(const Bytes& file) {
  bool animated = false;
  ForEachChunk(file, [&](const uint8_t* chunk, size_t) {
    animated = animated || IsType(chunk + 4, "acTL");
  });
  return animated;
}

std::vector<PngChunk> PngChunks(const Bytes& file) {
  std::vector<PngChunk> chunks;
  ForEachChunk(file, [&chunks](const uint8_t* chunk, size_t whole) {
    chunks.push_back({chunk + 4, chunk + kChunkHead, whole - kChunkHead - kChunkTail});
  });
  return chunks;
}

Bytes WithChunksOf(const Bytes& from, const Bytes& to,
                   const std::function<bool(const PngChunk&)>& left_out) {
  constexpr const char* kKept[] = {"cHRM", "gAMA", "iCCP", "sRGB", "cICP",
                                   "pHYs", "tEXt", "zTXt", "iTXt", "eXIf"};
  Bytes chunks;
  for (const PngChunk& chunk : PngChunks(from)) {
    const bool kept = std::any_of(std::begin(kKept), std::end(kKept),
                                  [&chunk](const char* type) { return IsType(chunk.type, type); });
    if (!kept || left_out(chunk)) continue;
    const uint8_t* const end = chunk.content + chunk.size + kChunkTail;
    chunks.insert(chunks.end(), chunk.content - kChunkHead, end);
  }
  return WithChunks(chunks, to);
}

Bytes ChunkOf(const char* type, const Bytes& content) {
  Bytes chunk;
  AppendBigEndian(static_cast<uint32_t>(content.size()), chunk);
  chunk.insert(chunk.end(), type, type + 4);
  chunk.insert(chunk.end(), content.begin(), content.end());
  const auto checked = static_cast<uInt>(content.size() + 4);  // the length is not
  AppendBigEndian(static_cast<uint32_t>(crc32(0, &chunk[4], checked)), chunk);
  return chunk;
}

Bytes ProfileChunk(const Bytes& profile) {
  // The profile's name, without which decoders reject it, and the only compression there is.
  constexpr char kHead[] = "ICC profile\0";
  uLongf packed = compressBound(static_cast<uLong>(profile.size()));
  Bytes content(sizeof(kHead) + packed);
  std::memcpy(content.data(), kHead, sizeof(kHead));
  compress(content.data() + sizeof(kHead), &packed, profile.data(),
           static_cast<uLong>(profile.size()));
  content.resize(sizeof(kHead) + packed);
  return ChunkOf("iCCP", content);
}

Bytes WithChunks(const Bytes& chunks, const Bytes& file) {
  Bytes result = file;
  result.insert(result.begin() + kBehindHeader, chunks.begin(), chunks.end());
  return result;
}

}  // namespace lumora::tools
