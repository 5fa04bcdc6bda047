// Whole files in and out. "-" is standard input or output.
#ifndef LUMORA_TOOLS_SUPPORT_FILES_H_
#define LUMORA_TOOLS_SUPPORT_FILES_H_

#include <cstdint>
#include <string>
#include <vector>

#include "tools/lumora/support/streams.h"

namespace lumora::tools {

using Bytes = std::vector<uint8_t>;

/// The file's content. Throws Failure (Unreadable) naming the path.
Bytes ReadWhole(const std::string& path);

/// Writes the file in one step, as OutputStream does. Throws Failure (Failed).
void WriteWhole(const std::string& path, const Bytes& content);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_SUPPORT_FILES_H_
