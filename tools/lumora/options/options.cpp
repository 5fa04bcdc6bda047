// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/options/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <sstream>

#include "tools/lumora/options/numbers.h"

namespace lumora::tools {
namespace {

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
CLI::Option* AddWhole(CLI::App& command, const std::string& name, Value* value, int least, int most,
                      const std::string& help) {
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

void Options::Text(const std::string& name, Need need, std::string* value,
                   const std::string& help) {
  command_->add_option(name, *value, help)->required(need == Need::Required);
}

void Options::Flag(const std::string& name, bool* value, const std::string& help) {
  command_->add_flag(name, *value, help);
}

void Options::Choice(const std::string& name, Need need, std::string* value,
                     const std::vector<std::string>& words, const std::string& help) {
  CLI::Option* const option = command_->add_option(name, *value, help);
  option->required(need == Need::Required)->check(CLI::IsMember(words));
  if (!value->empty()) option->capture_default_str();
}

void Options::AddChoice(const std::string& name, const Setter& set,
                        const std::vector<std::string>& words, const std::string& usual,
                        const std::string& help) {
  command_->add_option_function<std::string>(name, set, help)
      ->check(CLI::IsMember(words))
      ->default_str(usual);
}

void Options::Whole(const std::string& name, int* value, int least, int most,
                    const std::string& help) {
  AddWhole(*command_, name, value, least, most, help)->default_str(std::to_string(*value));
}

void Options::Whole(const std::string& name, std::optional<int>* value, int least, int most,
                    const std::string& help) {
  AddWhole(*command_, name, value, least, most, help);
}

void Options::Decimal(const std::string& name, double* value, double least, double most,
                      const std::string& help) {
  const auto set = [=](const std::string& text) {
    const std::optional<double> number = DecimalNumber(text);
    if (!number || *number < least || *number > most) {
      throw Wrong(name, text, "a number from " + Shown(least) + " to " + Shown(most));
    }
    *value = *number;
  };
  command_->add_option_function<std::string>(name, set, help)
      ->type_name(Shown(least) + ".." + Shown(most))
      ->default_str(Shown(*value));
}

void Options::DecimalList(const std::string& name, std::vector<float>* values, size_t count,
                          float most, const std::string& form, const std::string& help) {
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
  command_->add_option_function<std::string>(name, set, help)->type_name(form);
}

Options Options::ExactlyOneOf() {
  CLI::Option_group* const group = command_->add_option_group("how", "exactly one of");
  group->require_option(1);
  return Options(*group);
}

void Options::Explain(const std::string& text) {
  const std::string below = command_->get_footer();
  command_->footer(below.empty() ? text : text + "\n\n" + below);
}

std::vector<std::string> Options::Given(const std::vector<std::string>& left_out) const {
  std::vector<std::string> words;
  for (const CLI::Option* const option : command_->get_options()) {
    const std::string name = option->get_name();
    const bool unwanted = std::find(left_out.begin(), left_out.end(), name) != left_out.end();
    if (option->count() == 0 || option->get_positional() || unwanted) continue;
    words.push_back(name);
    if (option->get_expected_min() > 0) words.push_back(option->results().front());
  }
  return words;
}

}  // namespace lumora::tools
