// SPDX-License-Identifier: Apache-2.0
// What the measuring process runs in.
#ifndef LUMORA_BENCH_ENVIRONMENT_H_
#define LUMORA_BENCH_ENVIRONMENT_H_

#include <string>

namespace lumora::bench {

/// A folder that goes with the object.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

/// Sets the variables that settle how the driver and the library work: Mesa's software renderer on
/// the calling thread, and program caches of the process's own below `folder`. Before any display
/// is opened.
void SettleEnvironment(const std::string& folder);

}  // namespace lumora::bench

#endif  // LUMORA_BENCH_ENVIRONMENT_H_
