// SPDX-License-Identifier: Apache-2.0
// The end of an engine's context: drivers unmap shared memory with it, also under draws that run.
#include <GLES2/gl2.h>
#include <gtest/gtest.h>

#include <memory>

#include "lumora/convert/gpu_color_converter.h"
#include "lumora/engine/gpu_beauty_face.h"
#include "platform/buffer/faulty_driver.h"

namespace lumora::test {
namespace {

template <typename Engine>
class ContextEnd : public testing::Test {};
using Engines = testing::Types<android::GPUBeautyFace, android::GPUColorConverter>;
TYPED_TEST_SUITE(ContextEnd, Engines);

TYPED_TEST(ContextEnd, WaitsForWhatIsStillDrawn) {
  auto engine = std::make_unique<TypeParam>();
  ASSERT_TRUE(engine->m_bEGLReady);
  glClear(GL_COLOR_BUFFER_BIT);
  WatchFinishes();
  engine.reset();
  EXPECT_TRUE(SomethingWasFinished());
}

}  // namespace
}  // namespace lumora::test
