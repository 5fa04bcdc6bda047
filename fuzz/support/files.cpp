// SPDX-License-Identifier: Apache-2.0
#include "fuzz/support/files.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "fuzz/support/require.h"

namespace lumora::fuzz {

MemoryFile::MemoryFile()
    : fd_(memfd_create("fuzz input", MFD_CLOEXEC)), path_("/proc/self/fd/" + std::to_string(fd_)) {
  Require(fd_ >= 0, "a file in memory can be made");
}

MemoryFile::~MemoryFile() {
  close(fd_);
}

void MemoryFile::set(const std::vector<uint8_t>& content) {
  const auto size = static_cast<ssize_t>(content.size());
  Require(ftruncate(fd_, 0) == 0 && pwrite(fd_, content.data(), content.size(), 0) == size,
          "the file in memory can be written");
}

ScratchFolder::ScratchFolder()
    : path_((std::filesystem::temp_directory_path() / "lumora-fuzz-XXXXXX").string()) {
  Require(mkdtemp(path_.data()) != nullptr, "a temporary folder can be made");
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

void ScratchFolder::write(const std::string& name, const std::vector<uint8_t>& content) const {
  std::ofstream file(path_ + "/" + name, std::ios::binary);
  file.write(reinterpret_cast<const char*>(content.data()),
             static_cast<std::streamsize>(content.size()));
  Require(file.good(), "a temporary file can be written");
}

void ScratchFolder::make_folder(const std::string& name) const {
  std::filesystem::create_directories(path_ + "/" + name);
}

}  // namespace lumora::fuzz
