// SPDX-License-Identifier: Apache-2.0
// Objects that are left to nobody, and state that is set on whatever is bound.
#include <gtest/gtest.h>
#include <malloc.h>

#include <vector>

#include "lumora/lumora.h"
#include "support/gl_objects.h"
#include "support/meant_leaks.h"

namespace lumora::test {
namespace {

using android::GPUBeautyFace;
using android::GPUColorConverter;

TEST(SharedImageQuirks, CreatedAgainLeavesTheEarlierTexture) {
  const GPUBeautyFace context;
  SEGLImage image(1);
  {
    const MeantLeaks left_over;
    ASSERT_EQ(1, image.Create(64, 16, 1));
  }
  const GLuint earlier_texture = image.m_hTexture;
  const EGLImageKHR earlier_image = image.m_eglImage;
  ASSERT_EQ(1, image.Create(64, 16, 1));
  EXPECT_NE(earlier_texture, image.m_hTexture);
  EXPECT_NE(earlier_image, image.m_eglImage);
  image.Destroy();
  EXPECT_EQ(GL_TRUE, glIsTexture(earlier_texture));
  glDeleteTextures(1, &earlier_texture);
}

TEST(Create565PatternQuirks, TheTemporaryImageIsLeftToNobody) {
  if (MeantLeaks::CheckerRuns()) GTEST_SKIP() << "this build counts its memory elsewhere";
  constexpr size_t kImageSize = 100 * 20 * 2;
  std::vector<unsigned short> rows(128 * 20);
  const size_t before = mallinfo2().uordblks;
  for (int i = 0; i < 10; ++i) EXPECT_EQ(1, Create565Pattern(100, 20, 1, rows.data()));
  EXPECT_GE(mallinfo2().uordblks, before + 10 * kImageSize);
}

GLint MinFilter(GLuint texture) {
  return TextureParameter(texture, GL_TEXTURE_MIN_FILTER);
}

TEST(ConverterQuirks, SetsLinearFiltersOnTheTextureThatIsBound) {
  GPUColorConverter converter;
  converter.Init(128, 64, nullptr);
  const struct {
    int (GPUColorConverter::*set)();
    const SEGLImage* input;
  } passes[] = {{&GPUColorConverter::SetColorConvertYUV2RGBShader, converter.m_pInputImage},
                {&GPUColorConverter::SetColorConvertRGB2HSIShader, converter.m_pOutputImage[0]}};
  for (const auto& pass : passes) {
    glBindTexture(GL_TEXTURE_2D, pass.input->m_hTexture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    const Texture other(Image(4, 4));  // nearest as well, and bound
    EXPECT_EQ(1, (converter.*pass.set)());
    EXPECT_EQ(GL_LINEAR, MinFilter(other.name()));
    EXPECT_EQ(GL_NEAREST, MinFilter(pass.input->m_hTexture));
  }
}

TEST(ConverterQuirks, ReleaseKeepsTheNames) {
  GPUColorConverter converter;
  converter.Init(128, 64, nullptr);
  const GLuint framebuffers[] = {converter.m_hFrameBuffer[0], converter.m_hFrameBuffer[1]};
  const GLuint programs[] = {converter.m_hYUV2RGBProgram, converter.m_hRGB2HSIProgram};
  converter.DeInit();
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(GL_FALSE, glIsFramebuffer(framebuffers[i]));
    EXPECT_EQ(framebuffers[i], converter.m_hFrameBuffer[i]);
  }
  EXPECT_EQ(programs[0], converter.m_hYUV2RGBProgram);
  EXPECT_EQ(programs[1], converter.m_hRGB2HSIProgram);
}

}  // namespace
}  // namespace lumora::test
