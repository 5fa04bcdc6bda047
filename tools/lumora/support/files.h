// SPDX-License-Identifier: Apache-2.0
// Whole files in and out. "-" is standard input or output.
#ifndef LUMORA_TOOLS_SUPPORT_FILES_H_
#define LUMORA_TOOLS_SUPPORT_FILES_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/lumora/support/streams.h"

namespace lumora::tools {

using Bytes = std::vector<uint8_t>;

inline constexpr size_t kLargestFile = size_t{1} << 30;   // bytes
inline constexpr size_t kLargestText = size_t{16} << 20;  // and of a line of text

/// "1 GiB", "16 MiB", or "1000 bytes".
std::string Named(size_t bytes);

/// The content of an input of at most `most` bytes. Throws Failure (Unreadable) for a larger one: a
/// file is not read then, and a stream no further than that.
Bytes ReadWhole(const std::string& path, size_t most);

/// The same in two steps, for callers who decide by the first bytes whether they want the rest.
class WholeInput {
 public:
  explicit WholeInput(const std::string& path);

  /// For messages: the path, or "standard input".
  const std::string& name() const { return file_.name(); }
  /// How long it is, where it is a file.
  std::optional<uint64_t> Length() const { return file_.Length(); }
  /// The first bytes: a MiB, or all of a smaller input.
  const Bytes& start() const { return content_; }
  /// All of them. To be called once.
  Bytes Rest(size_t most);

 private:
  void ReadUpTo(size_t size);

  InputStream file_;
  Bytes content_;
  bool ended_ = false;
};

/// Writes the file in one step, as OutputStream does. Throws Failure (Failed).
void WriteWhole(const std::string& path, const Bytes& content);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_SUPPORT_FILES_H_
