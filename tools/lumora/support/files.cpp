// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/support/files.h"

#include <algorithm>
#include <utility>

#include "tools/lumora/support/failure.h"

namespace lumora::tools {
namespace {

constexpr size_t kFirstPiece = size_t{1} << 20;

}  // namespace

std::string Named(size_t bytes) {
  if (bytes % (size_t{1} << 30) == 0) return std::to_string(bytes >> 30) + " GiB";
  if (bytes % (size_t{1} << 20) == 0) return std::to_string(bytes >> 20) + " MiB";
  return std::to_string(bytes) + " bytes";
}

WholeInput::WholeInput(const std::string& path) : file_(path) {
  ReadUpTo(kFirstPiece);
  if (content_.empty()) {
    throw Failure(ExitCode::Unreadable, "cannot read " + name() + ": it is empty");
  }
}

Bytes WholeInput::Rest(size_t most) {
  const uint64_t length = Length().value_or(0);
  while (!ended_ && length <= most && content_.size() <= most) {
    ReadUpTo(std::min(std::max<size_t>(length, 2 * content_.size()), most) + 1);
  }
  if (!ended_ || content_.size() > most) {
    throw Failure(ExitCode::Unreadable,
                  "cannot read " + name() + ": it is larger than " + Named(most));
  }
  return std::move(content_);
}

void WholeInput::ReadUpTo(size_t size) {
  const size_t filled = content_.size();
  content_.resize(size);
  const size_t got = file_.Read(content_.data() + filled, size - filled);
  ended_ = filled + got < size;
  content_.resize(filled + got);
}

Bytes ReadWhole(const std::string& path, size_t most) {
  return WholeInput(path).Rest(most);
}

void WriteWhole(const std::string& path, const Bytes& content) {
  OutputStream file(path);
  file.Write(content.data(), content.size());
  file.Finish();
}

}  // namespace lumora::tools
