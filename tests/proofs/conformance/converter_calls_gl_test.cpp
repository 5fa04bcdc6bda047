// SPDX-License-Identifier: Apache-2.0
// The colour converter: every line and call of each operation, and its sizes.
#include <gtest/gtest.h>

#include <memory>

#include "proofs/conformance/contract.h"
#include "support/caller_memory.h"

namespace lumora::test {
namespace {

using android::GPUColorConverter;

constexpr char kTag[] = "GPUColorConvert";
constexpr char kClass[] = "GPUColorConverter";

Script Line(const char* text) {
  return Told(Debug(kTag, "%s", text));
}

Script ImagesMade() {
  const char* const label = "InitTexture - after RGB SetColorAttachment";
  return ImageMade("input") + Sampled("MIRRORED_REPEAT", "LINEAR") +
         TargetMade("RGB", "CLAMP_TO_EDGE", "LINEAR", label) +
         TargetMade("HSI", "CLAMP_TO_EDGE", "LINEAR", label);
}

Script ProgramsMade() {
  return ProgramCompiled("YUV2RGB") + ProgramCompiled("RGB2HSI");
}

Script LookedUp() {
  return {"glGetAttribLocation YUV2RGB a_vertexCoord", "glGetAttribLocation YUV2RGB a_textureCoord",
          "glGetUniformLocation YUV2RGB s_texture0",   "glGetUniformLocation YUV2RGB u_mat_yuv2rgb",
          "glGetAttribLocation RGB2HSI a_vertexCoord", "glGetAttribLocation RGB2HSI a_textureCoord",
          "glGetUniformLocation RGB2HSI s_texture0"};
}

Script Initialised(int width, int height, const Script& release) {
  return Line("[CAMIN] GPUColorConverter 2012/04/17 Init+") +
         Told(Debug(kTag, "(nSrcImageWidth, nSrcImageHeight) = (%d, %d)", width, height)) +
         release + ImagesMade() + ProgramsMade() + LookedUp() +
         Line("[CAMIN] GPUColorConverter 2012/04/17 Init-");
}

// The second program is left.
Script Released() {
  return Line("[CAMIN] GPUColorConverter 2012/04/17 DeInit+") +
         Script{"glDeleteFramebuffers RGB", "glDeleteFramebuffers HSI",
                "glBindFramebuffer FRAMEBUFFER none", "glDeleteProgram YUV2RGB"} +
         ImageDestroyed("input") + ImageDestroyed("RGB") + ImageDestroyed("HSI") + Finish() +
         Line("[CAMIN] GPUColorConverter 2012/04/17 DeInit-");
}

/// What comes before a pass's program is looked at: all that happens where it is not valid.
Script TargetSet(const GPUColorConverter& c, const std::string& target,
                 const std::string& program) {
  const std::string set = "glTexParameteri TEXTURE_2D TEXTURE_";
  return Script{"glBindFramebuffer FRAMEBUFFER " + target, "glViewport 0 0 " +
                                                               std::to_string(c.m_nSrcWidth) + " " +
                                                               std::to_string(c.m_nSrcHeight)} +
         Check("glViewport - YUV2RGB") + Script{set + "MIN_FILTER LINEAR"} +
         Check("glTexParameteri MIN- Y") + Script{set + "MAG_FILTER LINEAR"} +
         Check("glTexParameteri MAG- Y") + Script{"glIsProgram " + program};
}

Script PassSet(const GPUColorConverter& c, const std::string& target, const std::string& program,
               const std::string& source) {
  Script script = TargetSet(c, target, program) + Script{"glUseProgram " + program} +
                  Check("SetColorConvertShader - glUseProgram") +
                  Script{"glActiveTexture TEXTURE0", "glUniform1i s_texture0 0",
                         "glBindTexture TEXTURE_2D " + source};
  if (program == "YUV2RGB") {
    script += Script{
        "glUniformMatrix4fv u_mat_yuv2rgb 1 0 1 1 1 0 1.402 -0.714 0 0 0 -0.344 1.772 0 -0.701 "
        "0.529 -0.886 1"};
  }
  return script;
}

Script Quads() {
  return Draw({}) + Check("glDrawElements - FaceDist");
}
Script FirstPass(const GPUColorConverter& c) {
  return PassSet(c, "RGB", "YUV2RGB", "input") + Quads();
}
Script SecondPass(const GPUColorConverter& c) {
  return PassSet(c, "HSI", "RGB2HSI", "RGB") + Quads();
}

TEST(ConverterCalls, OfItsLife) {
  auto converter = std::unique_ptr<GPUColorConverter>();
  ObjectNames names;
  {
    const Recording recording(Checks::SetUp);
    converter = std::make_unique<GPUColorConverter>();
    EXPECT_TRUE(Same(ContextMade(kTag, kClass), recording.lines(NamesOf(*converter))));
  }
  {
    const Recording recording(Checks::SetUp);
    ASSERT_EQ(1, converter->Init(64, 48, nullptr));
    names = NamesOf(*converter);
    EXPECT_TRUE(Same(Initialised(64, 48, {}), recording.lines(names)));
  }
  {
    const Recording recording(Checks::SetUp);
    ASSERT_EQ(1, converter->Init(96, 32, nullptr));
    EXPECT_TRUE(
        Same(Initialised(96, 32, Released()), recording.lines(names + NamesOf(*converter))));
  }
  names = NamesOf(*converter);
  const Recording recording(Checks::SetUp);
  converter.reset();
  EXPECT_TRUE(
      Same(Told(Info(kTag, "~GPUColorConverter()+")) + Released() + ContextDestroyed(kTag, kClass),
           recording.lines(names)));
}

TEST(ConverterCalls, OfReleasing) {
  GPUColorConverter converter;
  converter.Init(64, 48, nullptr);
  const ObjectNames names = NamesOf(converter);
  {
    const Recording recording(Checks::SetUp);
    EXPECT_EQ(1, converter.DeInit());
    EXPECT_TRUE(Same(Released(), recording.lines(names)));
  }
  // Framebuffers and program keep their names.
  const Recording recording(Checks::SetUp);
  EXPECT_EQ(1, converter.DeInit());
  Script again = Released();
  again.erase(again.begin() + 5, again.begin() + 11);
  EXPECT_TRUE(Same(again, recording.lines(names)));
}

TEST(ConverterCalls, OfItsSteps) {
  GPUColorConverter converter;
  converter.m_nSrcWidth = 64;
  converter.m_nSrcHeight = 48;
  {
    const Recording recording(Checks::SetUp);
    EXPECT_EQ(1, converter.InitTexture());
    EXPECT_TRUE(Same(ImagesMade(), recording.lines(NamesOf(converter))));
  }
  {
    const Recording recording(Checks::SetUp);
    EXPECT_EQ(1, converter.LoadShader());
    EXPECT_TRUE(Same(ProgramsMade(), recording.lines(NamesOf(converter))));
  }
  {
    const Recording recording(Checks::SetUp);
    EXPECT_EQ(1, converter.InitShader());
    EXPECT_TRUE(Same(ProgramsMade() + LookedUp(), recording.lines(NamesOf(converter))));
  }
  converter.DeInit();
}

class ConverterPasses : public testing::Test {
 protected:
  ConverterPasses() { converter_.Init(96, 48, nullptr); }

  template <typename Operation>
  void expect(const Script& expected, int result, Operation operation) {
    const Recording recording(Checks::Passes);
    EXPECT_EQ(result, operation());
    EXPECT_TRUE(Same(expected, recording.lines(names_)));
  }

  GPUColorConverter converter_;
  ObjectNames names_ = NamesOf(converter_);
  CallerFrame frame_{reference::Frame(96, 48, 90, 140, 120)};
};

TEST_F(ConverterPasses, AreSetDrawnAndFinishedInOrder) {
  ASSERT_FALSE(names_.empty());
  names_ = NamesOf(converter_);
  GPUColorConverter& c = converter_;
  expect(PassSet(c, "RGB", "YUV2RGB", "input"), 1,
         [&] { return c.SetColorConvertYUV2RGBShader(); });
  expect(PassSet(c, "HSI", "RGB2HSI", "RGB"), 1, [&] { return c.SetColorConvertRGB2HSIShader(); });
  expect(FirstPass(c), 1, [&] { return c.DrawColorConvertYUV2RGB(); });
  expect(SecondPass(c), 1, [&] { return c.DrawColorConvertRGB2HSI(); });
  expect(FirstPass(c) + SecondPass(c) + Finish(), 1, [&] { return c.ConvertYUV(frame_.luma()); });
  expect({}, 1, [&] { return c.GetRGB_Image() != nullptr; });
  expect({}, 1, [&] { return c.GetHSI_Image() != nullptr; });
  int stranger = 0;
  expect(Line("[clean_buffer] clean buffer error"), 0,
         [&] { return c.clean_buffer(&stranger, 0, 0, -1, 4); });
}

// A pass whose program is not valid draws all the same, with the program that is current.
TEST_F(ConverterPasses, WithoutTheirProgramsStillDraw) {
  names_ = NamesOf(converter_);
  GPUColorConverter& c = converter_;
  c.ConvertYUV(frame_.luma());
  glDeleteProgram(c.m_hYUV2RGBProgram);
  expect(TargetSet(c, "RGB", "YUV2RGB"), 0, [&] { return c.SetColorConvertYUV2RGBShader(); });
  expect(TargetSet(c, "RGB", "YUV2RGB") + Quads() + SecondPass(c) + Finish(), 1,
         [&] { return c.ConvertYUV(frame_.luma()); });
}

TEST(ConverterCalls, BeforeInit) {
  GPUColorConverter converter;
  CallerFrame frame(reference::Frame(64, 48));
  const Recording recording(Checks::Passes);
  EXPECT_EQ(0, converter.ConvertYUV(frame.luma()));
  EXPECT_EQ(nullptr, converter.GetRGB_Image());
  EXPECT_EQ(nullptr, converter.GetHSI_Image());
  EXPECT_TRUE(Same(Told(Error(kTag, "[SetSrcImage]g_pEGLRGB is not initiated")),
                   recording.lines(NamesOf(converter))));
}

}  // namespace
}  // namespace lumora::test
