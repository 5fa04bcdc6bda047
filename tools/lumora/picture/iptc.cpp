// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/picture/iptc.h"

#include <cstring>

namespace lumora::tools {
namespace {

constexpr uint8_t kIptcHead[] = {'8', 'B', 'I', 'M', 4, 4, 0, 0};  // and an empty name

size_t Even(size_t size) {
  return size + size % 2;
}

}  // namespace

Bytes IptcOf(const Bytes& resources) {
  Bytes iptc;
  const size_t size = resources.size();
  constexpr size_t kLeast = 12;  // signature, number, an empty name and the length
  for (size_t at = 0; at + kLeast <= size && std::memcmp(&resources[at], kIptcHead, 4) == 0;) {
    const bool records = std::memcmp(&resources[at + 4], kIptcHead + 4, 2) == 0;
    const size_t length_at = at + 6 + Even(size_t{1} + resources[at + 6]);
    if (length_at + 4 > size) break;
    size_t length = 0;
    for (size_t i = 0; i < 4; ++i) length = length << 8 | resources[length_at + i];
    const size_t begin = length_at + 4;
    if (length > size - begin) break;
    if (records) {
      iptc.insert(iptc.end(), resources.data() + begin, resources.data() + begin + length);
    }
    at = begin + Even(length);
  }
  return iptc;
}

Bytes ResourceOf(const Bytes& iptc) {
  Bytes resource(std::begin(kIptcHead), std::end(kIptcHead));
  for (int shift = 24; shift >= 0; shift -= 8) {
    resource.push_back(static_cast<uint8_t>(iptc.size() >> shift));
  }
  resource.insert(resource.end(), iptc.begin(), iptc.end());
  resource.resize(Even(resource.size()));
  return resource;
}

}  // namespace lumora::tools
