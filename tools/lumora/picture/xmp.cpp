// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/picture/xmp.h"

#include <set>
#include <string>

namespace lumora::tools {
namespace {

constexpr char kNamespace[] = "http://ns.adobe.com/tiff/1.0/";
constexpr char kProperty[] = ":Orientation";
constexpr char kBlank[] = " \t\r\n";
constexpr size_t kLongestPrefix = 64;

bool EndsName(char c) {
  return std::string("<>/'\"=:").find(c) != std::string::npos ||
         std::string(kBlank).find(c) != std::string::npos;
}

/// The name that ends before `end`.
std::string NameBefore(const std::string& text, size_t end) {
  size_t begin = end;
  while (begin > 0 && end - begin < kLongestPrefix && !EndsName(text[begin - 1])) --begin;
  return text.substr(begin, end - begin);
}

/// Prefixes that the packet gives to the namespace: xmlns:PREFIX="NAMESPACE".
std::set<std::string> Prefixes(const std::string& text) {
  std::set<std::string> prefixes;
  for (size_t at = text.find(kNamespace); at != std::string::npos;
       at = text.find(kNamespace, at + 1)) {
    if (at < 2) continue;
    const size_t equals = text.find_last_not_of(kBlank, at - 2);
    if (equals == std::string::npos || text[equals] != '=' || equals == 0) continue;
    const size_t last = text.find_last_not_of(kBlank, equals - 1);
    if (last != std::string::npos) prefixes.insert(NameBefore(text, last + 1));
  }
  return prefixes;
}

/// Where the value of a property begins whose name ends at `at`: an attribute's or an element's.
size_t ValueAt(const std::string& text, size_t at) {
  at = text.find_first_not_of(kBlank, at);
  if (at == std::string::npos) return at;
  if (text[at] == '=')
    at = text.find_first_of("'\"", at + 1);
  else if (text[at] != '>')
    return std::string::npos;
  return at == std::string::npos ? at : text.find_first_not_of(kBlank, at + 1);
}

}  // namespace

void CorrectXmp(Bytes& packet) {
  const std::string text(packet.begin(), packet.end());
  const std::set<std::string> prefixes = Prefixes(text);
  for (size_t at = text.find(kProperty); at != std::string::npos;
       at = text.find(kProperty, at + 1)) {
    const std::string prefix = NameBefore(text, at);
    const size_t begin = at - prefix.size();
    if (prefixes.count(prefix) == 0 || begin == 0 || text[begin - 1] == '/') continue;
    size_t value = ValueAt(text, at + sizeof(kProperty) - 1);
    if (value == std::string::npos) continue;
    size_t end = value;
    while (end < text.size() && text[end] >= '0' && text[end] <= '9') ++end;
    for (; value < end; ++value) packet[value] = value + 1 < end ? '0' : '1';
  }
}

}  // namespace lumora::tools
