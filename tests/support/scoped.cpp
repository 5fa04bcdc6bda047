// SPDX-License-Identifier: Apache-2.0
#include "support/scoped.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace lumora::test {
namespace {

namespace fs = std::filesystem;

void SetVariable(const std::string& name, const std::optional<std::string>& value) {
  if (value) {
    setenv(name.c_str(), value->c_str(), 1);
  } else {
    unsetenv(name.c_str());
  }
}

// Gives the owner back all rights on every directory, so that the tree can be removed.
void MakeRemovable(const fs::path& directory) {
  std::error_code ignored;
  fs::permissions(directory, fs::perms::owner_all, fs::perm_options::add, ignored);
  for (const fs::directory_entry& entry : fs::directory_iterator(directory, ignored)) {
    if (entry.is_directory(ignored) && !entry.is_symlink(ignored)) MakeRemovable(entry.path());
  }
}

}  // namespace

ScopedEnvironment::ScopedEnvironment(const std::string& name,
                                     const std::optional<std::string>& value)
    : name_(name) {
  if (const char* text = getenv(name.c_str())) previous_ = text;
  SetVariable(name, value);
}

ScopedEnvironment::~ScopedEnvironment() {
  SetVariable(name_, previous_);
}

TempDirectory::TempDirectory() {
  std::error_code error;
  fs::path parent = fs::temp_directory_path(error);
  std::string pattern = ((error ? fs::path("/tmp") : parent) / "lumora-test-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) {
    ADD_FAILURE() << "cannot make a temporary directory like " << pattern;
  }
  path_ = pattern;
}

TempDirectory::~TempDirectory() {
  MakeRemovable(path_);
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

std::optional<std::string> ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(in), {});
}

void WriteFile(const std::string& path, const std::string& content) {
  std::error_code ignored;
  fs::create_directories(fs::path(path).parent_path(), ignored);
  std::ofstream out(path, std::ios::binary);
  out.write(content.data(), static_cast<std::streamsize>(content.size()));
  out.close();
  if (!out) ADD_FAILURE() << "cannot write " << path;
}

}  // namespace lumora::test
