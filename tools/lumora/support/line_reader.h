// SPDX-License-Identifier: Apache-2.0
// Text line by line, from a file or standard input.
#ifndef LUMORA_TOOLS_SUPPORT_LINE_READER_H_
#define LUMORA_TOOLS_SUPPORT_LINE_READER_H_

#include <cstdint>
#include <optional>
#include <string>

#include "tools/lumora/support/files.h"

namespace lumora::tools {

class LineReader {
 public:
  explicit LineReader(const std::string& path, const ReadStop* stop = nullptr)
      : input_(path, stop) {}

  /// For messages: the path, or "standard input".
  const std::string& name() const { return input_.name(); }

  /// The next line, without its end; nothing after the last one. Throws Failure (Unreadable) for
  /// a line of more than kLargestText bytes.
  std::optional<std::string> Next();

 private:
  InputStream input_;
  Bytes piece_;
  size_t used_ = 0;  ///< of the piece
  int64_t line_ = 0;
};

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_SUPPORT_LINE_READER_H_
