// SPDX-License-Identifier: Apache-2.0
#include "support/comma_locale.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <string_view>

namespace lumora::test {
namespace {

void Append(std::string* to, uint32_t word) {
  to->append(reinterpret_cast<const char*>(&word), sizeof(word));
}

/// glibc's file for LC_NUMERIC: a magic number, the count of fields, their offsets, the fields.
std::string NumericFile() {
  std::string comma;
  Append(&comma, ',');
  using namespace std::string_view_literals;
  const std::string_view fields[] = {
      ",\0"sv, "\0"sv, "\x7f\0"sv, comma, "\0\0\0\0"sv, "UTF-8\0"sv,
  };
  constexpr size_t kFields = std::size(fields);
  std::string head, data;
  Append(&head, 0x20031115u ^ static_cast<uint32_t>(LC_NUMERIC));
  Append(&head, kFields);
  for (const std::string_view field : fields) {
    data.resize((data.size() + 3) / 4 * 4);
    Append(&head, static_cast<uint32_t>(4 * (2 + kFields) + data.size()));
    data += field;
  }
  return head + data;
}

}  // namespace

CommaLocale::CommaLocale()
    : path_("LOCPATH", directory_.path()), former_(std::setlocale(LC_NUMERIC, nullptr)) {
  WriteFile(directory_.file("comma/LC_NUMERIC"), NumericFile());
  EXPECT_NE(std::setlocale(LC_NUMERIC, "comma"), nullptr);
  float number = 0;
  std::sscanf("1,25", "%f", &number);
  EXPECT_EQ(number, 1.25f) << "the locale is not what it should be";
}

CommaLocale::~CommaLocale() {
  std::setlocale(LC_NUMERIC, former_.c_str());
}

}  // namespace lumora::test
