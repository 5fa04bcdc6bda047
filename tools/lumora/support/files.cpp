#include "tools/lumora/support/files.h"

#include <algorithm>

#include "tools/lumora/support/failure.h"

namespace lumora::tools {
namespace {

constexpr size_t kLargestInput = size_t{1} << 30;  // bytes
constexpr size_t kFirstPiece = size_t{1} << 20;

}  // namespace

Bytes ReadWhole(const std::string& path) {
  InputStream file(path);
  const auto failure = [&file](const std::string& reason) {
    return Failure(ExitCode::Unreadable, "cannot read " + file.name() + ": " + reason);
  };
  Bytes content;
  for (size_t filled = 0;;) {
    content.resize(std::max(kFirstPiece, 2 * filled));
    const size_t wanted = content.size() - filled;
    const size_t got = file.Read(content.data() + filled, wanted);
    filled += got;
    if (filled > kLargestInput) throw failure("it is larger than 1 GiB");
    if (got < wanted) {
      content.resize(filled);
      break;
    }
  }
  if (content.empty()) throw failure("it is empty");
  return content;
}

void WriteWhole(const std::string& path, const Bytes& content) {
  OutputStream file(path);
  file.Write(content.data(), content.size());
  file.Finish();
}

}  // namespace lumora::tools
