// SPDX-License-Identifier: Apache-2.0
// Processes that use the program cache.
#ifndef LUMORA_TESTS_CACHE_SAFETY_CACHE_PROCESS_H_
#define LUMORA_TESTS_CACHE_SAFETY_CACHE_PROCESS_H_

#include <sys/types.h>

#include <cstdio>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace lumora::test {

/// What a process told of its programs.
struct CacheReport {
  std::string failure;                ///< why it did not end well; empty when it did
  std::string renderer;               ///< the first word of the driver's name
  std::vector<std::string> pictures;  ///< "<name> <digest>", a program and round
  int cached = 0, compiled = 0;       ///< programs, over all rounds
  std::vector<std::string> files;     ///< "<name>:<size>", as the process saw its directory
};

/// A running cache_user; killed at the end if it is still there.
class CacheProcess {
 public:
  struct Options {
    std::string directory;
    int rounds = 1;
    std::vector<std::pair<std::string, std::string>> environment;
    /// Done by the new process first; it ends with kNotPossible when this returns false.
    std::function<bool()> prepare;
  };
  /// Exit code of a process whose preparation the system does not allow.
  static constexpr int kNotPossible = 77;

  explicit CacheProcess(const Options& options);
  ~CacheProcess();
  CacheProcess(const CacheProcess&) = delete;
  CacheProcess& operator=(const CacheProcess&) = delete;

  void kill();
  /// Waits for its end. `possible`, unless null, receives whether its preparation was.
  CacheReport wait(bool* possible = nullptr);

 private:
  pid_t pid_;
  std::FILE* out_;
};

/// One that runs to its end.
CacheReport UseCache(const CacheProcess::Options& options, bool* possible = nullptr);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_CACHE_SAFETY_CACHE_PROCESS_H_
