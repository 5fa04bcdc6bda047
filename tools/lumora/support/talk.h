// SPDX-License-Identifier: Apache-2.0
// What the program says to people. Standard output is for data.
#ifndef LUMORA_TOOLS_SUPPORT_TALK_H_
#define LUMORA_TOOLS_SUPPORT_TALK_H_

#include <string>

namespace lumora::tools {

/// A line on standard output.
void Print(const std::string& line);

/// A line on standard error.
void Say(const std::string& line);

/// A line on standard error that starts with the program's name: errors and notes. Line breaks in
/// the text become spaces.
void Complain(std::string line);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_SUPPORT_TALK_H_
