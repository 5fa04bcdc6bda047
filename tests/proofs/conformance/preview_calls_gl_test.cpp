// SPDX-License-Identifier: Apache-2.0
// Preview operations: what each prints and draws, in order.
#include <gtest/gtest.h>

#include <algorithm>

#include "proofs/conformance/preview_operations.h"
#include "support/caller_memory.h"
#include "support/scoped.h"

namespace lumora::test {
namespace {

struct Preview {
  const char* name;
  int src_width, src_height, proc_width, proc_height;
  bool colour;
};
void PrintTo(const Preview& preview, std::ostream* out) {
  *out << preview.name;
}

class PreviewTranscripts : public testing::TestWithParam<Preview> {};

TEST_P(PreviewTranscripts, PrintAndDrawInOrder) {
  const auto& [name, src_width, src_height, proc_width, proc_height, colour] = GetParam();
  const TempDirectory no_lens_files;
  const ScopedEnvironment root("LUMORA_SYSTEM_ROOT", no_lens_files.path());
  GPUBeautyFace engine;
  ASSERT_EQ(1, engine.Init(src_width, src_height, proc_width, proc_height, nullptr, colour));
  // Grey frames have nothing to shift.
  const reference::Frame grey(std::max(src_width, proc_width), std::max(src_height, proc_height),
                              150, 128, 128);
  std::vector<Operation> operations = PreviewOperations();
  const std::vector<Operation> more = ColourOperations();
  if (colour) operations.insert(operations.end(), more.begin(), more.end());
  for (const Operation& operation : operations) {
    CallerFrame frame(grey);
    if (colour) {
      engine.LoadPreviewFrameBuffer(frame.luma());
      engine.ConvertYUV();
    } else {
      ClearImages(engine);
    }
    ExpectTranscript(operation, engine, frame.luma(), frame.chroma());
    EXPECT_TRUE(frame.intact()) << operation.name;
  }
}

INSTANTIATE_TEST_SUITE_P(SetUps, PreviewTranscripts,
                         testing::Values(Preview{"Upright", 64, 48, 64, 48, false},
                                         Preview{"PaddedRows", 80, 50, 80, 50, false},
                                         Preview{"Scaled", 64, 48, 160, 120, false},
                                         Preview{"LaidAcross", 48, 64, 64, 48, false},
                                         Preview{"Colour", 64, 48, 64, 48, true},
                                         Preview{"ColourLaidAcross", 48, 64, 64, 48, true}),
                         [](const testing::TestParamInfo<Preview>& row) { return row.param.name; });

}  // namespace
}  // namespace lumora::test
