// SPDX-License-Identifier: Apache-2.0
// Numbers as people type them on a command line.
#ifndef LUMORA_TOOLS_OPTIONS_NUMBERS_H_
#define LUMORA_TOOLS_OPTIONS_NUMBERS_H_

#include <optional>
#include <string>

namespace lumora::tools {

/// The number that a text stands for; blanks around it do not matter. Nothing where it is not a
/// number, or one that an int or a double cannot hold.
std::optional<int> WholeNumber(const std::string& text);
std::optional<double> DecimalNumber(const std::string& text);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_OPTIONS_NUMBERS_H_
