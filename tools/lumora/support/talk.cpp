#include "tools/lumora/support/talk.h"

#include <algorithm>
#include <cstdio>

#include "tools/lumora/support/files.h"

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

void PrintReport(const nlohmann::ordered_json& report) {
  // Paths need not be UTF-8; what is not is shown by a replacement character.
  const std::string text =
      report.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
  WriteWhole(kStandardStream, Bytes(text.begin(), text.end()));
}

}  // namespace lumora::tools
