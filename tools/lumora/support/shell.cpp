// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/support/shell.h"

#include "tools/lumora/support/streams.h"

namespace lumora::tools {
namespace {

std::string Quoted(const std::string& word) {
  constexpr char kPlain[] =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789%+,-./:=@_";
  // Some shells replace a word that begins with "=".
  const bool plain =
      !word.empty() && word.front() != '=' && word.find_first_not_of(kPlain) == std::string::npos;
  if (plain) return word;
  std::string quoted = "'";
  for (const char c : word) {
    if (c == '\'') {
      quoted += "'\\''";
    } else {
      quoted += c;
    }
  }
  return quoted + "'";
}

}  // namespace

std::string ShellLine(const std::vector<std::string>& words) {
  std::string line;
  for (const std::string& word : words) line += (line.empty() ? "" : " ") + Quoted(word);
  return line;
}

std::string PlainPath(const std::string& path) {
  if (path == kStandardStream || path.empty() || path.front() == '/') return path;
  const bool mistakable = path.front() == '-' || path.find(':') != std::string::npos;
  return mistakable ? "./" + path : path;
}

}  // namespace lumora::tools
