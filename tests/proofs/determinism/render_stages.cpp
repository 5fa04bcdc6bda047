// SPDX-License-Identifier: Apache-2.0
// Writes what every stage gives into files of a folder: render_stages <folder>
#include <gtest/gtest.h>

#include <cstdio>

#include "proofs/determinism/stages.h"
#include "support/gl_test.h"
#include "support/scoped.h"

namespace {

bool Write(const std::vector<lumora::test::Stage>& stages, const std::string& folder) {
  for (const lumora::test::Stage& stage : stages) {
    const std::vector<uint8_t> bytes = stage.render();
    if (bytes.empty()) {
      std::fprintf(stderr, "render_stages: %s draws nothing\n", stage.name.c_str());
      return false;
    }
    lumora::test::WriteFile(folder + "/" + stage.name, std::string(bytes.begin(), bytes.end()));
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (argc != 2) {
    std::fprintf(stderr, "usage: render_stages <folder>\n");
    return 2;
  }
  {
    const lumora::test::GlContext context;
    if (!context.ok() || !Write(lumora::test::PassStages(), argv[1])) return 1;
    std::printf("%s\n", reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
  }
  if (!Write(lumora::test::OperationStages(), argv[1])) return 1;
  return testing::UnitTest::GetInstance()->ad_hoc_test_result().Failed() ? 1 : 0;
}
