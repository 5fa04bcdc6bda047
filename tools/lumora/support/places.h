// SPDX-License-Identifier: Apache-2.0
// Which file a path means, however it is spelled.
#ifndef LUMORA_TOOLS_SUPPORT_PLACES_H_
#define LUMORA_TOOLS_SUPPORT_PLACES_H_

#include <filesystem>
#include <string>
#include <vector>

namespace lumora::tools {

/// In place of a path: standard input or output.
inline constexpr char kStandardStream[] = "-";

/// The place that a path means once symbolic links are followed, also those that lead to a file
/// that does not exist yet.
std::filesystem::path PlaceOf(const std::string& path);

/// Throws Failure (Usage) when a result would take the place of an input or of another result:
/// when two paths mean one file, by their spelling, by symbolic links or as hard links. "-" stands
/// for standard input among the inputs and for standard output among the results; empty paths are
/// skipped. Devices may be written and read at once.
void CheckPlacesDiffer(const std::vector<std::string>& inputs,
                       const std::vector<std::string>& results);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_SUPPORT_PLACES_H_
