// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/picture/jpeg_metadata.h"

#include <algorithm>
#include <map>

#include "tools/lumora/picture/iptc.h"
#include "tools/lumora/picture/jpeg_markers.h"

namespace lumora::tools {
namespace {

constexpr uint8_t kApp0 = 0xe0, kApp1 = 0xe1, kApp2 = 0xe2, kApp13 = 0xed, kComment = 0xfe;
constexpr size_t kLargest = 65533;  // content of a segment

/// What the segments of a kind begin with, the closing zero included.
template <size_t size>
Bytes Head(const char (&text)[size]) {
  return Bytes(text, text + size);
}
const Bytes& ExifHead() {
  static const Bytes head = Head("Exif\0");
  return head;
}
const Bytes& XmpHead() {
  static const Bytes head = Head("http://ns.adobe.com/xap/1.0/");
  return head;
}
const Bytes& XmpExtensionHead() {
  static const Bytes head = Head("http://ns.adobe.com/xmp/extension/");
  return head;
}
const Bytes& ProfileHead() {
  static const Bytes head = Head("ICC_PROFILE");
  return head;
}
const Bytes& ResourcesHead() {
  static const Bytes head = Head("Photoshop 3.0");
  return head;
}

bool Begins(const JpegSegment& segment, uint8_t code, const Bytes& head) {
  return segment.code == code && segment.size >= head.size() &&
         std::equal(head.begin(), head.end(), segment.content);
}

/// Appends what follows behind the head and `more` bytes.
void AppendRest(const JpegSegment& segment, size_t head, Bytes& to) {
  to.insert(to.end(), segment.content + head, segment.content + segment.size);
}

/// Collects segments for a file.
class Segments {
 public:
  /// One segment; what does not fit is named.
  void Add(const char* name, uint8_t code, const Bytes& head, const Bytes& content) {
    if (content.empty()) return;
    if (head.size() + content.size() > kLargest) {
      Refuse(name);
    } else {
      Append(code, head, content.begin(), content.end());
    }
  }

  /// As many as it takes. `numbered` ones have their number, from 1, and their count behind the
  /// head.
  void AddInParts(const char* name, uint8_t code, const Bytes& head, const Bytes& content,
                  bool numbered) {
    const size_t each = kLargest - head.size() - (numbered ? 2 : 0);
    const size_t count = (content.size() + each - 1) / each;
    if (numbered && count > 255) {
      Refuse(name);
      return;
    }
    for (size_t i = 0; i < count; ++i) {
      Bytes whole_head = head;
      if (numbered) {
        whole_head.push_back(static_cast<uint8_t>(i + 1));
        whole_head.push_back(static_cast<uint8_t>(count));
      }
      const size_t end = std::min(content.size(), (i + 1) * each);
      Append(code, whole_head, content.begin() + static_cast<std::ptrdiff_t>(i * each),
             content.begin() + static_cast<std::ptrdiff_t>(end));
    }
  }

  const Bytes& bytes() const { return bytes_; }
  const std::string& refused() const { return refused_; }

 private:
  void Append(uint8_t code, const Bytes& head, Bytes::const_iterator begin,
              Bytes::const_iterator end) {
    const size_t length = 2 + head.size() + static_cast<size_t>(end - begin);
    bytes_.insert(bytes_.end(),
                  {0xff, code, static_cast<uint8_t>(length >> 8), static_cast<uint8_t>(length)});
    bytes_.insert(bytes_.end(), head.begin(), head.end());
    bytes_.insert(bytes_.end(), begin, end);
  }

  void Refuse(const char* name) { refused_ += (refused_.empty() ? "" : ", ") + std::string(name); }

  Bytes bytes_;
  std::string refused_;
};

}  // namespace

PictureMetadata ReadJpegMetadata(const Bytes& file) {
  PictureMetadata metadata;
  Bytes resources;
  std::map<int, Bytes> profile;  // by number
  for (const JpegSegment& segment : JpegHeaderSegments(file)) {
    if (Begins(segment, kApp1, ExifHead()) && metadata.exif.empty()) {
      AppendRest(segment, ExifHead().size(), metadata.exif);
    } else if (Begins(segment, kApp1, XmpHead()) && metadata.xmp.empty()) {
      AppendRest(segment, XmpHead().size(), metadata.xmp);
    } else if (Begins(segment, kApp1, XmpExtensionHead())) {
      AppendRest(segment, 0, metadata.xmp_extensions.emplace_back());
    } else if (Begins(segment, kApp2, ProfileHead()) && segment.size > ProfileHead().size() + 2) {
      Bytes& part = profile[segment.content[ProfileHead().size()]];
      if (part.empty()) AppendRest(segment, ProfileHead().size() + 2, part);
    } else if (Begins(segment, kApp13, ResourcesHead())) {
      AppendRest(segment, ResourcesHead().size(), resources);
    } else if (segment.code == kComment) {
      AppendRest(segment, 0, metadata.comments.emplace_back());
    }
  }
  metadata.iptc = IptcOf(resources);
  for (const auto& [number, part] : profile) {
    metadata.profile.insert(metadata.profile.end(), part.begin(), part.end());
  }
  return metadata;
}

std::string AddJpegMetadata(const PictureMetadata& metadata, Bytes& file) {
  Segments segments;
  segments.Add("EXIF", kApp1, ExifHead(), metadata.exif);
  segments.Add("XMP", kApp1, XmpHead(), metadata.xmp);
  for (const Bytes& extension : metadata.xmp_extensions) {
    segments.Add("XMP", kApp1, {}, extension);
  }
  segments.AddInParts("the colour profile", kApp2, ProfileHead(), metadata.profile, true);
  if (!metadata.iptc.empty()) {
    segments.AddInParts("IPTC", kApp13, ResourcesHead(), ResourceOf(metadata.iptc), false);
  }
  for (const Bytes& comment : metadata.comments) {
    segments.Add("a comment", kComment, {}, comment);
  }
  // JFIF's own segment stays the first one.
  size_t at = 2;
  for (const JpegSegment& segment : JpegHeaderSegments(file)) {
    if (segment.code != kApp0) break;
    at = static_cast<size_t>(segment.content + segment.size - file.data());
  }
  file.insert(file.begin() + static_cast<std::ptrdiff_t>(at), segments.bytes().begin(),
              segments.bytes().end());
  return segments.refused();
}

}  // namespace lumora::tools
