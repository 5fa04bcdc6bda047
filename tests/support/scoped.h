// SPDX-License-Identifier: Apache-2.0
// Surroundings that a test changes and gives back: environment variables and directories.
#ifndef LUMORA_TESTS_SUPPORT_SCOPED_H_
#define LUMORA_TESTS_SUPPORT_SCOPED_H_

#include <optional>
#include <string>

namespace lumora::test {

/// Sets an environment variable while it lives; std::nullopt unsets it. Not for use while other
/// threads read the environment.
class ScopedEnvironment {
 public:
  ScopedEnvironment(const std::string& name, const std::optional<std::string>& value);
  ~ScopedEnvironment();
  ScopedEnvironment(const ScopedEnvironment&) = delete;
  ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

 private:
  std::string name_;
  std::optional<std::string> previous_;
};

/// A fresh directory of its own, removed with all it holds at the end (write-protected parts too).
class TempDirectory {
 public:
  TempDirectory();
  ~TempDirectory();
  TempDirectory(const TempDirectory&) = delete;
  TempDirectory& operator=(const TempDirectory&) = delete;

  /// Absolute, without a trailing slash.
  const std::string& path() const { return path_; }
  /// path() + "/" + name.
  std::string file(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

/// Whole files as byte strings. Reading a file that is not there gives nothing; writing makes
/// missing parent directories and reports a failure to the running test.
std::optional<std::string> ReadFile(const std::string& path);
void WriteFile(const std::string& path, const std::string& content);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_SUPPORT_SCOPED_H_
