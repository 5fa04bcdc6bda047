// SPDX-License-Identifier: Apache-2.0
// A host program's own log and mask functions take the place of the shared library's.
#include <gtest/gtest.h>

#include "lumora/platform/graphic_buffer.h"
#include "support/log_capture.h"
#include "support/scoped.h"

namespace {

using lumora::platform::BufferKind;
using lumora::platform::GraphicBuffer;
using lumora::platform::HAL_PIXEL_FORMAT_RGBA_8888;
using lumora::platform::sp;
using lumora::test::Error;
using lumora::test::LogCapture;
using lumora::test::ScopedEnvironment;

TEST(HostFunctions, AForcedBufferKindThatIsMissingIsReportedOnce) {
  const ScopedEnvironment forced("LUMORA_BUFFER", "paper");
  LogCapture log;
  for (int i = 0; i < 2; ++i) {
    const sp<GraphicBuffer> buffer = new GraphicBuffer(64, 4, HAL_PIXEL_FORMAT_RGBA_8888, 0x130);
    EXPECT_EQ(buffer->kind(), BufferKind::Staged);
    EXPECT_NE(buffer->handle().base, nullptr);
  }
  EXPECT_EQ(lumora::test::MaskRequests("LumoraPlatform"), 1);
  EXPECT_TRUE(
      LogIs(log, {Error("LumoraPlatform",
                        "LUMORA_BUFFER=paper is not available here, using staged buffers")}));
}

}  // namespace
