// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/support/line_reader.h"

#include <algorithm>

#include "tools/lumora/support/failure.h"

namespace lumora::tools {
namespace {

constexpr size_t kPiece = size_t{1} << 16;

}  // namespace

std::optional<std::string> LineReader::Next() {
  ++line_;
  std::string line;
  while (true) {
    const auto from = piece_.begin() + static_cast<std::ptrdiff_t>(used_);
    const auto end = std::find(from, piece_.end(), '\n');
    line.append(from, end);
    if (line.size() > kLargestText) {
      throw Failure(ExitCode::Unreadable, name() + ": line " + std::to_string(line_) +
                                              ": it is longer than " + Named(kLargestText));
    }
    if (end != piece_.end()) {
      used_ = static_cast<size_t>(end - piece_.begin()) + 1;
      return line;
    }
    piece_.resize(kPiece);
    piece_.resize(input_.Read(piece_.data(), kPiece));
    used_ = 0;
    if (piece_.empty()) break;
  }
  if (line.empty()) return std::nullopt;
  return line;
}

}  // namespace lumora::tools
