// SPDX-License-Identifier: Apache-2.0
// Files for readers that take a path.
#ifndef LUMORA_FUZZ_SUPPORT_FILES_H_
#define LUMORA_FUZZ_SUPPORT_FILES_H_

#include <cstdint>
#include <string>
#include <vector>

namespace lumora::fuzz {

/// A file without a name, in memory: nothing is left of it, however the process ends.
class MemoryFile {
 public:
  MemoryFile();
  ~MemoryFile();
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  /// Opening this path gives the file from its start.
  const std::string& path() const { return path_; }
  void set(const std::vector<uint8_t>& content);

 private:
  int fd_;
  std::string path_;
};

/// A folder of the process's own below the one for temporary files, removed at a normal end.
class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const std::string& path() const { return path_; }
  /// Writes a file; its folder must be there.
  void write(const std::string& name, const std::vector<uint8_t>& content) const;
  void make_folder(const std::string& name) const;

 private:
  std::string path_;
};

}  // namespace lumora::fuzz

#endif  // LUMORA_FUZZ_SUPPORT_FILES_H_
