// What the program says to people. Standard output is for data.
#ifndef LUMORA_TOOLS_SUPPORT_TALK_H_
#define LUMORA_TOOLS_SUPPORT_TALK_H_

#include <nlohmann/json.hpp>
#include <string>

namespace lumora::tools {

/// A line on standard output.
void Print(const std::string& line);

/// A line on standard error.
void Say(const std::string& line);

/// A line on standard error that starts with the program's name: errors and notes. Line breaks in
/// the text become spaces.
void Complain(std::string line);

/// A report for machines on standard output. Throws Failure (Failed) when it cannot be written.
void PrintReport(const nlohmann::ordered_json& report);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_SUPPORT_TALK_H_
