// SPDX-License-Identifier: Apache-2.0
// A cache directory of the test's own, and the log lines that its uses make.
#ifndef LUMORA_TESTS_GL_CACHE_FIXTURE_H_
#define LUMORA_TESTS_GL_CACHE_FIXTURE_H_

#include <string>
#include <vector>

#include "lumora/programs/colour_programs.h"
#include "support/gl_test.h"
#include "support/log_capture.h"
#include "support/scoped.h"

namespace lumora::test {

/// Program GLProgRGB2HSI stands for all: every class goes through the same steps.
class CacheTest : public GlTest {
 protected:
  CacheTest() : environment_("LUMORA_CACHE_DIR", directory_.path()) {}
  /// Skips where the driver has no program binaries.
  void SetUp() override;

  const TempDirectory& directory() const { return directory_; }
  /// The cache file under test.
  std::string path() const { return directory_.file("prog_rgb2hsi.bin"); }
  /// What vouches for it.
  std::string seal_path() const { return path() + ".seal"; }
  /// Lets the library write its cache file, and returns the file's bytes. Takes the log.
  std::string GoodFile();
  LogCapture& log() { return log_; }

 private:
  TempDirectory directory_;
  ScopedEnvironment environment_;
  LogCapture log_;
};

/// Names in a directory, sorted.
std::vector<std::string> NamesIn(const std::string& directory);

/// The permission bits of what lies at `path`.
unsigned ModeOf(const std::string& path);

/// Cache files of these names and their seals, sorted.
std::vector<std::string> WithSeals(std::vector<std::string> names);

/// The file that saving `program` has to make: its format and its binary, asked of the driver.
std::string ExpectedFile(const GLProgram& program);

using Lines = std::vector<LogLine>;
Lines operator+(Lines first, const Lines& second);

// What the steps of a Load print.
Lines CannotOpen(const std::string& path);  ///< the file is missing
Lines InvalidLength();                      ///< ... too short
Lines Refused();                            ///< ... nobody vouches for it, or the driver refused it
Lines SwitchToCompiling();
Lines CompiledWell();
Lines Saved(const GLProgram& program);
Lines Located(const GLProgram& program);
/// A Load that found no use in the cache file, for the reason that `refusal` tells.
Lines Recompiled(const Lines& refusal, const GLProgram& program);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_GL_CACHE_FIXTURE_H_
