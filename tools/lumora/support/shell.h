// Command lines that the program shows, for people to paste into a shell.
#ifndef LUMORA_TOOLS_SUPPORT_SHELL_H_
#define LUMORA_TOOLS_SUPPORT_SHELL_H_

#include <string>
#include <vector>

namespace lumora::tools {

/// The words as a POSIX shell takes them for just these words.
std::string ShellLine(const std::vector<std::string>& words);

/// A path that programs take neither for an option nor for an address: "./-a.mp4", "./a:b.mp4".
/// "-" stays as it is.
std::string PlainPath(const std::string& path);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_SUPPORT_SHELL_H_
