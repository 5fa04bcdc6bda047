// SPDX-License-Identifier: Apache-2.0
// Command lines that the program shows, for people to paste into a shell.
#ifndef LUMORA_TOOLS_SUPPORT_SHELL_H_
#define LUMORA_TOOLS_SUPPORT_SHELL_H_

#include <string>
#include <vector>

namespace lumora::tools {

/// A line that a POSIX shell splits into exactly these words.
std::string ShellLine(const std::vector<std::string>& words);

/// The path in a form that no program takes for an option or an address: "./-a.mp4", "./a:b.mp4".
/// "-" stays as it is.
std::string PlainPath(const std::string& path);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_SUPPORT_SHELL_H_
