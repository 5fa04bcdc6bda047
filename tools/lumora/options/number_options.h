// Options that take numbers. A number is written in decimal digits, whatever the user's language
// is, and is the whole value: "0x10", "010x" and "nan" are refused, and "010" is ten.
#ifndef LUMORA_TOOLS_OPTIONS_NUMBER_OPTIONS_H_
#define LUMORA_TOOLS_OPTIONS_NUMBER_OPTIONS_H_

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

namespace lumora::tools {

/// The number that `text` is, blanks around it aside; nothing where it is none, or one that an int
/// or a double cannot hold.
std::optional<int> WholeNumber(const std::string& text);
std::optional<double> DecimalNumber(const std::string& text);

/// Sets `*value`, which must outlive parsing. What is no number from `least` to `most` is a usage
/// error, told with the value. Help shows the value from before as the default.
CLI::Option* AddWhole(CLI::App& command, const std::string& name, int* value, int least, int most,
                      const std::string& help);
CLI::Option* AddWhole(CLI::App& command, const std::string& name, std::optional<int>* value,
                      int least, int most, const std::string& help);
CLI::Option* AddDecimal(CLI::App& command, const std::string& name, double* value, double least,
                        double most, const std::string& help);

/// The `count` numbers of a list with commas in between, which looks like `form`, none farther from
/// 0 than `most`.
CLI::Option* AddDecimalList(CLI::App& command, const std::string& name, std::vector<float>* values,
                            size_t count, float most, const std::string& form,
                            const std::string& help);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_OPTIONS_NUMBER_OPTIONS_H_
