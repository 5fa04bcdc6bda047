// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/options/numbers.h"

#include <charconv>
#include <cmath>
#include <string_view>

namespace lumora::tools {
namespace {

template <typename Number>
std::optional<Number> Parsed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t";
  const size_t start = text.find_first_not_of(kBlanks);
  if (start == std::string_view::npos) return std::nullopt;
  text = text.substr(start, text.find_last_not_of(kBlanks) + 1 - start);
  // from_chars reads no plus sign, and "+-1" is no number.
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  Number number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

}  // namespace

std::optional<int> WholeNumber(const std::string& text) {
  return Parsed<int>(text);
}

std::optional<double> DecimalNumber(const std::string& text) {
  const std::optional<double> number = Parsed<double>(text);
  return number && std::isfinite(*number) ? number : std::nullopt;
}

}  // namespace lumora::tools
