// SPDX-License-Identifier: Apache-2.0
// Options that take numbers, against a model made of a pattern and the digits' sum.
#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <limits>
#include <optional>
#include <regex>
#include <string>
#include <vector>

#include "tools/lumora/options/numbers.h"
#include "tools/lumora/options/options.h"

namespace lumora::test {
namespace {

using tools::DecimalNumber;
using tools::WholeNumber;

/// All texts of up to `longest` letters.
std::vector<std::string> AllTexts(const std::string& letters, size_t longest) {
  std::vector<std::string> texts = {""};
  for (size_t first = 0, length = 0; length < longest; ++length) {
    const size_t last = texts.size();
    for (size_t i = first; i < last; ++i) {
      for (const char letter : letters) texts.push_back(texts[i] + letter);
    }
    first = last;
  }
  return texts;
}

std::optional<long long> WholeModel(const std::string& text) {
  static const std::regex pattern("[ \t]*([+-]?)([0-9]+)[ \t]*");
  std::smatch parts;
  if (!std::regex_match(text, parts, pattern)) return std::nullopt;
  long long sum = 0;
  for (const char digit : parts[2].str()) sum = sum * 10 + (digit - '0');
  return parts[1] == "-" ? -sum : sum;
}

TEST(WholeNumber, IsWrittenInDecimalDigitsAlone) {
  int numbers = 0;
  const std::vector<std::string> texts = AllTexts("019+- x.", 5);
  ASSERT_EQ(texts.size(), 37449u);
  for (const std::string& text : texts) {
    const std::optional<long long> expected = WholeModel(text);
    const std::optional<int> number = WholeNumber(text);
    ASSERT_EQ(number.has_value(), expected.has_value()) << '"' << text << '"';
    if (expected) {
      ASSERT_EQ(*number, *expected) << '"' << text << '"';
      ++numbers;
    }
  }
  EXPECT_GT(numbers, 900);
}

TEST(WholeNumber, IsOneThatAnIntHolds) {
  EXPECT_EQ(WholeNumber("2147483647"), std::numeric_limits<int>::max());
  EXPECT_EQ(WholeNumber("-2147483648"), std::numeric_limits<int>::min());
  for (const char* text : {"2147483648", "-2147483649", "4294967297", "18446744073709551617",
                           "99999999999999999999999999", "nan", "inf", "1e1", "1.0", "true"}) {
    EXPECT_EQ(WholeNumber(text), std::nullopt) << text;
  }
}

TEST(DecimalNumber, IsFiniteAndDecimal) {
  static const std::regex pattern("[ \t]*[+-]?([0-9]+[.]?[0-9]*|[.][0-9]+)(e[+-]?[0-9]+)?[ \t]*");
  int numbers = 0;
  for (const std::string& text : AllTexts("01+- x.e", 5)) {
    const std::optional<double> number = DecimalNumber(text);
    ASSERT_EQ(number.has_value(), std::regex_match(text, pattern)) << '"' << text << '"';
    if (number) {
      ASSERT_EQ(*number, std::stod(text)) << '"' << text << '"';
      ++numbers;
    }
  }
  EXPECT_GT(numbers, 900);
  for (const char* text :
       {"nan", "NaN", "nan(1)", "-nan", "inf", "+inf", "-infinity", "1e999", "0x1p3", "1,5"}) {
    EXPECT_EQ(DecimalNumber(text), std::nullopt) << text;
  }
}

/// What the parser says to one option's value; empty where it takes it.
template <typename Add>
std::string Said(const std::string& text, const Add& add) {
  CLI::App command;
  add(command);
  try {
    std::vector<std::string> words = {text, "--it"};
    command.parse(words);
  } catch (const CLI::ParseError& error) {
    return error.what();
  }
  return {};
}

TEST(NumberOptions, TakeEveryNumberOfTheirRangeAndNoOther) {
  for (int number = -300; number <= 300; ++number) {
    std::optional<int> value;
    const std::string said = Said(std::to_string(number), [&value](CLI::App& command) {
      tools::Options(command).Whole("--it", &value, -100, 100, "help");
    });
    const bool fits = number >= -100 && number <= 100;
    ASSERT_EQ(value, fits ? std::optional(number) : std::nullopt);
    ASSERT_EQ(said, fits ? ""
                         : "--it: \"" + std::to_string(number) +
                               "\" is not a whole number from -100 to 100");
  }
  double value = 2;
  const auto add = [&value](CLI::App& command) {
    tools::Options(command).Decimal("--it", &value, 0, 600, "help");
  };
  EXPECT_EQ(Said("nan", add), "--it: \"nan\" is not a number from 0 to 600");
  EXPECT_EQ(Said("600.001", add), "--it: \"600.001\" is not a number from 0 to 600");
  EXPECT_EQ(Said("-0.001", add), "--it: \"-0.001\" is not a number from 0 to 600");
  EXPECT_EQ(value, 2);
  EXPECT_EQ(Said("0.25", add), "");
  EXPECT_EQ(value, 0.25);
}

TEST(NumberOptions, AListHasItsNumbersAndNothingElse) {
  std::vector<float> values;
  const auto add = [&values](CLI::App& command) {
    tools::Options(command).DecimalList("--it", &values, 4, 1000, "a,b,c,d", "help");
  };
  EXPECT_EQ(Said("1,-2.5, 3e-2,+4", add), "");
  EXPECT_EQ(values, (std::vector<float>{1, -2.5f, 3e-2f, 4}));
  EXPECT_EQ(Said("1000,-1000,0,1e-50", add), "");
  for (const char* text : {"", ",", ",,,", "1", "1,2,3", "1,2,3,", "1,2,,3", "1,2,3,4,",
                           "1,2,3,4,5", "1,2,3,x", "1,2,3,nan", "inf,2,3,4", "1000.1,0,0,0",
                           "1e38,0,0,0", "-1e39,0,0,0", "1e999,0,0,0", "1;2;3;4", "1 2 3 4"}) {
    EXPECT_EQ(Said(text, add),
              "--it: \"" + std::string(text) + "\" is not a,b,c,d: 4 numbers from -1000 to 1000");
  }
}

}  // namespace
}  // namespace lumora::test
