// SPDX-License-Identifier: Apache-2.0
// What all tests of drawn pixels share: a context, and programs that leave no cache behind.
#ifndef LUMORA_TESTS_PROGRAMS_PIXEL_TEST_H_
#define LUMORA_TESTS_PROGRAMS_PIXEL_TEST_H_

#include <gtest/gtest.h>

#include <memory>

#include "support/gl_test.h"
#include "support/log_capture.h"
#include "support/scoped.h"

namespace lumora::test {

class PixelTest : public GlTest {
 protected:
  PixelTest() : environment_("LUMORA_CACHE_DIR", directory_.path()) {}

  /// A loaded program. `mask` chooses the variant that paints marks.
  template <typename Program>
  static std::unique_ptr<Program> Loaded() {
    auto program = std::make_unique<Program>();
    EXPECT_TRUE(program->Load());
    return program;
  }
  template <typename Program>
  static std::unique_ptr<Program> Loaded(bool mask) {
    auto program = std::make_unique<Program>();
    program->m_bShowMask = mask;
    EXPECT_TRUE(program->Load());
    return program;
  }

 private:
  TempDirectory directory_;
  ScopedEnvironment environment_;
  LogCapture log_;  // keeps the log off the terminal
};

}  // namespace lumora::test

#endif  // LUMORA_TESTS_PROGRAMS_PIXEL_TEST_H_
