// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/picture/png_metadata.h"

#include <zlib.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <optional>
#include <string>

#include "tools/lumora/picture/iptc.h"
#include "tools/lumora/picture/png_chunks.h"

namespace lumora::tools {
namespace {

constexpr size_t kMostInflated = 16 << 20;  // a small chunk could otherwise fill the memory
constexpr char kXmpKey[] = "XML:com.adobe.xmp", kCommentKey[] = "Description";
constexpr char kRawExif[] = "Raw profile type exif", kRawApp1[] = "Raw profile type APP1",
               kRawXmp[] = "Raw profile type xmp", kRawIptc[] = "Raw profile type iptc";

Bytes Part(const Bytes& bytes, size_t begin) {
  return Bytes(bytes.begin() + static_cast<std::ptrdiff_t>(std::min(begin, bytes.size())),
               bytes.end());
}

Bytes Inflated(const Bytes& packed) {
  Bytes content;
  z_stream stream = {};
  stream.next_in = const_cast<Bytef*>(packed.data());  // zlib only reads
  stream.avail_in = static_cast<uInt>(packed.size());
  if (inflateInit(&stream) != Z_OK) return {};
  int state = Z_OK;
  while (state == Z_OK && content.size() < kMostInflated) {
    uint8_t part[16384];
    stream.next_out = part;
    stream.avail_out = sizeof(part);
    state = inflate(&stream, Z_NO_FLUSH);
    content.insert(content.end(), part, part + (sizeof(part) - stream.avail_out));
  }
  inflateEnd(&stream);
  return state == Z_STREAM_END ? content : Bytes{};
}

bool IsText(const PngChunk& chunk) {
  return IsType(chunk.type, "tEXt") || IsType(chunk.type, "zTXt") || IsType(chunk.type, "iTXt");
}

/// The word that a text or colour profile begins with; empty without its end.
std::string KeyOf(const PngChunk& chunk) {
  const uint8_t* const end = std::find(chunk.content, chunk.content + chunk.size, uint8_t{0});
  return end == chunk.content + chunk.size ? std::string() : std::string(chunk.content, end);
}

/// What follows the key, unpacked.
Bytes TextOf(const PngChunk& chunk) {
  Bytes rest = Part(Bytes(chunk.content, chunk.content + chunk.size), KeyOf(chunk).size() + 1);
  if (IsType(chunk.type, "tEXt")) return rest;
  if (!IsType(chunk.type, "iTXt")) return Inflated(Part(rest, 1));  // behind the compression's kind
  if (rest.size() < 2) return {};
  // Whether and how it is compressed, the language, and the key in that language.
  auto end = rest.begin() + 2;
  for (int i = 0; i < 2; ++i) {
    end = std::find(end, rest.end(), uint8_t{0});
    if (end == rest.end()) return {};
    ++end;
  }
  const Bytes text(end, rest.end());
  return rest[0] != 0 ? Inflated(text) : text;
}

std::optional<uint8_t> HexDigit(uint8_t c) {
  if (c >= '0' && c <= '9') return static_cast<uint8_t>(c - '0');
  if (c >= 'a' && c <= 'f') return static_cast<uint8_t>(c - 'a' + 10);
  if (c >= 'A' && c <= 'F') return static_cast<uint8_t>(c - 'A' + 10);
  return std::nullopt;
}

/// The bytes that a text of hexadecimal digits stands for: a line with its name, one with the
/// number of bytes, and the digits.
Bytes RawProfile(const Bytes& text) {
  const std::string words(text.begin(), text.end());
  const size_t name = words.find_first_not_of('\n'), name_end = words.find('\n', name);
  const size_t count_at = words.find_first_not_of(" \n", name_end);
  if (name_end == std::string::npos || count_at == std::string::npos) return {};
  const size_t count_end = words.find('\n', count_at);
  if (count_end == std::string::npos) return {};
  const size_t count =
      std::strtoul(words.substr(count_at, count_end - count_at).c_str(), nullptr, 10);
  Bytes digits, bytes;
  for (size_t at = count_end; at < text.size(); ++at) {
    if (const std::optional<uint8_t> digit = HexDigit(text[at])) digits.push_back(*digit);
  }
  if (digits.size() / 2 < count) return {};
  for (size_t i = 0; i < count; ++i) {
    bytes.push_back(static_cast<uint8_t>(digits[2 * i] << 4 | digits[2 * i + 1]));
  }
  return bytes;
}

/// Such a text of bytes.
std::string RawProfileOf(const char* name, const Bytes& bytes) {
  constexpr size_t kBytesALine = 36;
  std::string text = std::string("\n") + name + "\n";
  char number[16];
  std::snprintf(number, sizeof(number), "%8zu", bytes.size());
  text += number;
  for (size_t i = 0; i < bytes.size(); ++i) {
    if (i % kBytesALine == 0) text += '\n';
    std::snprintf(number, sizeof(number), "%02x", bytes[i]);
    text += number;
  }
  return text + "\n";
}

/// EXIF as JPEGs begin it is taken as well.
Bytes WithoutExifHead(const Bytes& exif) {
  constexpr char kHead[] = "Exif\0";
  const bool headed =
      exif.size() >= sizeof(kHead) && std::memcmp(exif.data(), kHead, sizeof(kHead)) == 0;
  return headed ? Part(exif, sizeof(kHead)) : exif;
}

/// A text in UTF-8, without a language.
Bytes InternationalText(const char* key, const Bytes& text) {
  Bytes content(key, key + std::strlen(key) + 1);
  content.insert(content.end(), 4, 0);
  content.insert(content.end(), text.begin(), text.end());
  return ChunkOf("iTXt", content);
}

Bytes ExifAndXmp(const PictureMetadata& metadata) {
  Bytes chunks;
  if (!metadata.exif.empty()) chunks = ChunkOf("eXIf", metadata.exif);
  if (!metadata.xmp.empty()) {
    const Bytes chunk = InternationalText(kXmpKey, metadata.xmp);
    chunks.insert(chunks.end(), chunk.begin(), chunk.end());
  }
  return chunks;
}

}  // namespace

PictureMetadata ReadPngMetadata(const Bytes& file) {
  PictureMetadata metadata;
  // The first of a kind counts, and only that one is unpacked.
  std::map<std::string, Bytes> texts;
  bool has_profile = false;
  for (const PngChunk& chunk : PngChunks(file)) {
    if (IsType(chunk.type, "eXIf") && metadata.exif.empty()) {
      metadata.exif = WithoutExifHead(Bytes(chunk.content, chunk.content + chunk.size));
    } else if (IsType(chunk.type, "iCCP") && !has_profile) {
      has_profile = true;
      metadata.profile = TextOf(chunk);
    } else if (IsText(chunk)) {
      const std::string key = KeyOf(chunk);
      for (const char* known : {kXmpKey, kCommentKey, kRawExif, kRawApp1, kRawXmp, kRawIptc}) {
        if (key == known && texts.count(key) == 0) texts[key] = TextOf(chunk);
      }
    }
  }
  for (const char* key : {kRawExif, kRawApp1}) {
    if (metadata.exif.empty()) metadata.exif = WithoutExifHead(RawProfile(texts[key]));
  }
  metadata.xmp = texts[kXmpKey].empty() ? RawProfile(texts[kRawXmp]) : texts[kXmpKey];
  const Bytes iptc = RawProfile(texts[kRawIptc]);
  constexpr uint8_t kRecord = 0x1c;  // records may also come without a resource around them
  metadata.iptc = !iptc.empty() && iptc[0] == kRecord ? iptc : IptcOf(iptc);
  if (!texts[kCommentKey].empty()) metadata.comments.push_back(texts[kCommentKey]);
  return metadata;
}

void AddPngMetadata(const PictureMetadata& metadata, Bytes& file) {
  Bytes chunks = ExifAndXmp(metadata);
  const auto add = [&chunks](const Bytes& chunk) {
    chunks.insert(chunks.end(), chunk.begin(), chunk.end());
  };
  if (!metadata.iptc.empty()) {
    const std::string text =
        std::string(kRawIptc) + '\0' + RawProfileOf("iptc", ResourceOf(metadata.iptc));
    const Bytes content(text.begin(), text.end());
    add(ChunkOf("tEXt", content));
  }
  for (const Bytes& comment : metadata.comments) {
    add(InternationalText(
        kCommentKey,
        Bytes(comment.begin(), std::find(comment.begin(), comment.end(), uint8_t{0}))));
  }
  if (!metadata.profile.empty()) add(ProfileChunk(metadata.profile));
  file = WithChunks(chunks, file);
}

void AddPngMetadata(const PictureMetadata& metadata, const Bytes& from, Bytes& to) {
  const auto is_made_anew = [](const PngChunk& chunk) {
    if (IsType(chunk.type, "eXIf")) return true;
    const std::string key = IsText(chunk) ? KeyOf(chunk) : std::string();
    return key == kXmpKey || key == kRawExif || key == kRawApp1 || key == kRawXmp;
  };
  to = WithChunks(ExifAndXmp(metadata), WithChunksOf(from, to, is_made_anew));
}

}  // namespace lumora::tools
