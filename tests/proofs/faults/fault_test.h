// SPDX-License-Identifier: Apache-2.0
// What the tests of faults share.
#ifndef LUMORA_TESTS_FAULTS_FAULT_TEST_H_
#define LUMORA_TESTS_FAULTS_FAULT_TEST_H_

#include <cstddef>
#include <string>

#include "proofs/faults/setup_model.h"
#include "support/gl_objects.h"
#include "support/meant_leaks.h"
#include "support/scoped.h"

namespace lumora::test {

/// A cache of program binaries in a state of choice.
class CacheFolder {
 public:
  CacheFolder() : environment_("LUMORA_CACHE_DIR", std::string()) {}

  /// Chooses the directory and, for an empty one, empties it. A warm one is filled by the first
  /// set-up.
  void prepare(Cache cache);
  std::string directory(Cache cache) const;
  /// Whether no temporary file was left behind.
  bool holds_whole_files() const;

 private:
  ScopedEnvironment environment_;  // gives the former value back
  TempDirectory warm_;
  TempDirectory cold_;
};

/// Adds to the count of faults that the run reports.
void TellInjected(size_t faults);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_FAULTS_FAULT_TEST_H_
