// SPDX-License-Identifier: Apache-2.0
// The options of a command, as the commands name them. The library that parses them is known to
// command_line.cpp and to this folder alone: it takes seconds to compile.
#ifndef LUMORA_TOOLS_OPTIONS_OPTIONS_H_
#define LUMORA_TOOLS_OPTIONS_OPTIONS_H_

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace CLI {  // NOLINT(readability-identifier-naming): the name is that library's
class App;
}  // namespace CLI

namespace lumora::tools {

enum class Need { Optional, Required };

/// Adds options to a command. Parsing the command line sets their values, so what the pointers lead
/// to must outlive it; --help shows the value from before as the default. A name without dashes is
/// that of an argument, like IN. Copies stand for the same command.
class Options {
 public:
  explicit Options(CLI::App& command) : command_(&command) {}

  void Text(const std::string& name, Need need, std::string* value, const std::string& help);
  void Flag(const std::string& name, bool* value, const std::string& help);

  /// One of the words.
  void Choice(const std::string& name, Need need, std::string* value,
              const std::vector<std::string>& words, const std::string& help);

  /// One of the values, by its name.
  template <typename Value>
  void Choice(const std::string& name, Value* value, const std::map<std::string, Value>& named,
              const std::string& help) {
    std::string usual;
    std::vector<std::string> words;
    for (const auto& [word, meaning] : named) {
      words.push_back(word);
      if (meaning == *value) usual = word;
    }
    AddChoice(
        name, [value, named](const std::string& word) { *value = named.at(word); }, words, usual,
        help);
  }

  /// Numbers from `least` to `most`. Anything else is a usage error that names what was given.
  void Whole(const std::string& name, int* value, int least, int most, const std::string& help);
  void Whole(const std::string& name, std::optional<int>* value, int least, int most,
             const std::string& help);
  void Decimal(const std::string& name, double* value, double least, double most,
               const std::string& help);

  /// A list of `count` numbers with commas in between, none farther from 0 than `most`. `form`
  /// shows what it looks like: "k0,k1,k2".
  void DecimalList(const std::string& name, std::vector<float>* values, size_t count, float most,
                   const std::string& form, const std::string& help);

  /// Options of which exactly one has to be given.
  Options ExactlyOneOf();

  /// A text for the end of --help, before what is there.
  void Explain(const std::string& text);

  /// After parsing: the options that were given, as the words of a command line, without arguments
  /// and without those whose names are left out.
  std::vector<std::string> Given(const std::vector<std::string>& left_out) const;

 private:
  using Setter = std::function<void(const std::string&)>;
  void AddChoice(const std::string& name, const Setter& set, const std::vector<std::string>& words,
                 const std::string& usual, const std::string& help);

  CLI::App* command_;
};

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_OPTIONS_OPTIONS_H_
