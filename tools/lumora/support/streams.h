// SPDX-License-Identifier: Apache-2.0
// Files in and out piece by piece. "-" is standard input or output.
#ifndef LUMORA_TOOLS_SUPPORT_STREAMS_H_
#define LUMORA_TOOLS_SUPPORT_STREAMS_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "tools/lumora/support/places.h"

namespace lumora::tools {

/// Ends reading, from any thread and for good: who waits for input need not wait any longer.
class ReadStop {
 public:
  /// Throws Failure (Failed).
  ReadStop();
  ~ReadStop();
  ReadStop(const ReadStop&) = delete;
  ReadStop& operator=(const ReadStop&) = delete;

  void Set();
  /// Waits until there is something to read, or the end of it. Throws Failure (Unreadable) once the
  /// stop is set; nobody is there to hear it.
  void WaitFor(int fd) const;

 private:
  int fd_;
};

/// Both streams throw Failure, Unreadable on the way in and Failed on the way out, with a sentence
/// that names the path.
class InputStream {
 public:
  /// `stop`, where there is one, outlives the stream.
  explicit InputStream(const std::string& path, const ReadStop* stop = nullptr);
  ~InputStream();
  InputStream(const InputStream&) = delete;
  InputStream& operator=(const InputStream&) = delete;

  /// For messages: the path, or "standard input".
  const std::string& name() const { return name_; }

  /// Reads up to `count` bytes. Returns how many it could read: fewer than `count` only
  /// at the end.
  size_t Read(uint8_t* bytes, size_t count);

  /// How long the whole input is, where it is a file.
  std::optional<uint64_t> Length() const;

 private:
  std::string name_;
  int fd_;
  const ReadStop* stop_;
};

/// Output that takes the place of a file in one step: a reader sees the old content or the new one,
/// never a part, and a process that ends early leaves nothing behind. Symbolic links are followed,
/// and a device, a pipe or standard output is written directly.
class OutputStream {
 public:
  explicit OutputStream(const std::string& path);
  ~OutputStream();
  OutputStream(const OutputStream&) = delete;
  OutputStream& operator=(const OutputStream&) = delete;

  void Write(const uint8_t* bytes, size_t count);
  /// Puts the file into its place. Without this call nothing is left of it.
  void Finish();

 private:
  class Target;
  std::unique_ptr<Target> target_;
};

/// Throws Failure (Failed) unless a file can be written there. Leaves nothing behind; meant for the
/// time before long work.
void CheckWritable(const std::string& path);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_SUPPORT_STREAMS_H_
