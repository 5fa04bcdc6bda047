// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/support/talk.h"

#include <algorithm>
#include <cstdio>

namespace lumora::tools {

void Print(const std::string& line) {
  std::printf("%s\n", line.c_str());
  std::fflush(stdout);
}

void Say(const std::string& line) {
  std::fprintf(stderr, "%s\n", line.c_str());
}

void Complain(std::string line) {
  std::replace(line.begin(), line.end(), '\n', ' ');
  Say("lumora: " + line);
}

}  // namespace lumora::tools
