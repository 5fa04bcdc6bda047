// Whole files in and out. "-" is standard input or output.
#ifndef LUMORA_TOOLS_SUPPORT_FILES_H_
#define LUMORA_TOOLS_SUPPORT_FILES_H_

#include <cstdint>
#include <string>
#include <vector>

namespace lumora::tools {

using Bytes = std::vector<uint8_t>;

inline constexpr char kStandardStream[] = "-";

/// The file's content. Throws Failure (Unreadable) naming the path.
Bytes ReadWhole(const std::string& path);

/// Throws Failure (Failed) unless a file can be written there. Leaves nothing behind; meant for the
/// time before long work.
void CheckWritable(const std::string& path);

/// Writes the file in one step: a reader sees the old content or the new one, never a part.
/// Symbolic links are followed, and a device or pipe is written directly. Throws Failure (Failed).
void WriteWhole(const std::string& path, const Bytes& content);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_SUPPORT_FILES_H_
