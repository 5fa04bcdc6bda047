#include "tools/lumora/options/number_options.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <sstream>
#include <string_view>

namespace lumora::tools {
namespace {

template <typename Number>
std::optional<Number> Parsed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t";
  const size_t start = text.find_first_not_of(kBlanks);
  if (start == std::string_view::npos) return std::nullopt;
  text = text.substr(start, text.find_last_not_of(kBlanks) + 1 - start);
  // from_chars reads no plus sign; one before a minus sign would be none.
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  Number number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

CLI::ValidationError Wrong(const std::string& name, const std::string& text,
                           const std::string& expected) {
  return CLI::ValidationError(name, "\"" + text + "\" is not " + expected);
}

/// "600", "0.5".
std::string Shown(double number) {
  std::ostringstream text;
  text << number;
  return text.str();
}

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts(1);
  for (const char c : text) {
    if (c == separator) {
      parts.emplace_back();
    } else {
      parts.back() += c;
    }
  }
  return parts;
}

template <typename Value>
CLI::Option* AddWholeTo(CLI::App& command, const std::string& name, Value* value, int least,
                        int most, const std::string& help) {
  const auto set = [=](const std::string& text) {
    const std::optional<int> number = WholeNumber(text);
    if (!number || *number < least || *number > most) {
      throw Wrong(name, text,
                  "a whole number from " + std::to_string(least) + " to " + std::to_string(most));
    }
    *value = *number;
  };
  return command.add_option_function<std::string>(name, set, help)
      ->type_name(std::to_string(least) + ".." + std::to_string(most));
}

}  // namespace

std::optional<int> WholeNumber(const std::string& text) {
  return Parsed<int>(text);
}

std::optional<double> DecimalNumber(const std::string& text) {
  const std::optional<double> number = Parsed<double>(text);
  return number && std::isfinite(*number) ? number : std::nullopt;
}

CLI::Option* AddWhole(CLI::App& command, const std::string& name, int* value, int least, int most,
                      const std::string& help) {
  return AddWholeTo(command, name, value, least, most, help)->default_str(std::to_string(*value));
}

CLI::Option* AddWhole(CLI::App& command, const std::string& name, std::optional<int>* value,
                      int least, int most, const std::string& help) {
  return AddWholeTo(command, name, value, least, most, help);
}

CLI::Option* AddDecimal(CLI::App& command, const std::string& name, double* value, double least,
                        double most, const std::string& help) {
  const auto set = [=](const std::string& text) {
    const std::optional<double> number = DecimalNumber(text);
    if (!number || *number < least || *number > most) {
      throw Wrong(name, text, "a number from " + Shown(least) + " to " + Shown(most));
    }
    *value = *number;
  };
  return command.add_option_function<std::string>(name, set, help)
      ->type_name(Shown(least) + ".." + Shown(most))
      ->default_str(Shown(*value));
}

CLI::Option* AddDecimalList(CLI::App& command, const std::string& name, std::vector<float>* values,
                            size_t count, float most, const std::string& form,
                            const std::string& help) {
  const auto set = [=](const std::string& text) {
    const auto wrong = [&] {
      const std::string bound = Shown(static_cast<double>(most));
      return Wrong(
          name, text,
          form + ": " + std::to_string(count) + " numbers from -" + bound + " to " + bound);
    };
    values->clear();
    for (const std::string& part : Split(text, ',')) {
      const std::optional<double> number = DecimalNumber(part);
      if (!number || std::abs(*number) > static_cast<double>(most)) throw wrong();
      values->push_back(static_cast<float>(*number));
    }
    if (values->size() != count) throw wrong();
  };
  return command.add_option_function<std::string>(name, set, help)->type_name(form);
}

}  // namespace lumora::tools
