// SPDX-License-Identifier: Apache-2.0
// The colour converter with a driver that fails.
#include <gtest/gtest.h>

#include "lumora/convert/gpu_color_converter.h"
#include "reference/frame.h"
#include "support/gl_faults.h"
#include "support/log_capture.h"

namespace lumora::test {
namespace {

using android::GPUColorConverter;

constexpr char kTag[] = "GPUColorConvert";
constexpr char kHelpers[] = "EGLImageTest";
constexpr char kNoProgram[] = "[InitShaderProgram]m_hYUV2RGBProgram: Could not create program.";

int Convert(GPUColorConverter& converter) {
  reference::Frame frame(128, 64, 100);
  return converter.ConvertYUV(frame.luma());
}

TEST(ConverterFaults, ProgramsThatCannotBeMadeAreToldOnce) {
  GPUColorConverter converter;
  GlFaults faults;
  faults.programs_fail = true;
  LogCapture log;
  EXPECT_EQ(1, converter.Init(128, 64, nullptr));
  EXPECT_EQ(1, log.count(Error(kTag, "%s", kNoProgram)));
  // The look-ups stop at the first that is not there.
  EXPECT_EQ(1, log.count(Error(kHelpers, "[LocIsValid] invalid m_nYUV2RGBVerCoordLoc == -1")));
  EXPECT_EQ(0, log.count(Error(kHelpers, "[LocIsValid] invalid m_nYUV2RGBTexCoordLoc == -1")));
  EXPECT_TRUE(converter.m_bIsInit);
  EXPECT_EQ(0u, converter.m_hYUV2RGBProgram);
  EXPECT_EQ(0u, converter.m_hRGB2HSIProgram);
  EXPECT_EQ(0, converter.LoadShader());
  EXPECT_EQ(0, converter.InitShader());
  EXPECT_EQ(0, converter.SetColorConvertYUV2RGBShader());
  EXPECT_EQ(0, converter.SetColorConvertRGB2HSIShader());
  EXPECT_EQ(1, converter.DrawColorConvertYUV2RGB());
  EXPECT_EQ(1, Convert(converter));
  EXPECT_NE(nullptr, converter.GetHSI_Image());
  EXPECT_EQ(1, converter.DeInit());
}

TEST(ConverterFaults, TheSecondProgramIsReportedAsTheFirst) {
  GPUColorConverter converter;
  GlFaults faults;
  faults.programs_fail = true;
  faults.good_programs = 1;
  LogCapture log;
  EXPECT_EQ(1, converter.Init(128, 64, nullptr));
  EXPECT_EQ(1, log.count(Error(kTag, "%s", kNoProgram)));
  EXPECT_NE(0u, converter.m_hYUV2RGBProgram);
  EXPECT_EQ(0u, converter.m_hRGB2HSIProgram);
}

TEST(ConverterFaults, ShadersThatCannotBeMade) {
  GPUColorConverter converter;
  GlFaults faults;
  faults.no_shaders = true;
  LogCapture log;
  EXPECT_EQ(1, converter.Init(128, 64, nullptr));
  EXPECT_EQ(1, log.count(Error(kTag, "%s", kNoProgram)));
  EXPECT_EQ(1, Convert(converter));
}

TEST(ConverterFaults, TheNextInitRecovers) {
  GPUColorConverter converter;
  {
    GlFaults faults;
    faults.programs_fail = true;
    converter.Init(128, 64, nullptr);
  }
  LogCapture log;
  EXPECT_EQ(1, converter.Init(128, 64, nullptr));
  EXPECT_TRUE(log.lines(6).empty());
  EXPECT_EQ(1, converter.SetColorConvertYUV2RGBShader());
  EXPECT_EQ(1, converter.SetColorConvertRGB2HSIShader());
  EXPECT_EQ(1, Convert(converter));
  EXPECT_NEAR(99.5, converter.GetRGB_Image()[4 * 128 * 32 + 1], 1.0);
}

TEST(ConverterFaults, LocationsThatAreMissingAreToldUnderTheFirstProgramsNames) {
  const struct {
    const char* hidden;
    const char* label;
  } rows[] = {{"a_vertexCoord", "m_nYUV2RGBVerCoordLoc"},
              {"a_textureCoord", "m_nYUV2RGBTexCoordLoc"},
              {"s_texture0", "m_nYUV2RGBTextureSlot"},
              {"u_mat_yuv2rgb", "m_nYUV2RGBMatrixSlot"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.hidden);
    GPUColorConverter converter;
    GlFaults faults;
    faults.hidden_location = row.hidden;
    LogCapture log;
    EXPECT_EQ(1, converter.Init(128, 64, nullptr));
    const std::vector<LogLine> errors = log.lines(6);
    ASSERT_EQ(1u, errors.size());
    EXPECT_EQ(Error(kHelpers, "[LocIsValid] invalid %s == -1", row.label), errors[0]);
    EXPECT_EQ(row.hidden, faults.looked_up.back()) << "the look-ups end there";
    EXPECT_EQ(0, converter.InitShader());
  }
}

TEST(ConverterFaults, LocationsOfTheSecondProgramAreToldUnderTheFirstOnesNames) {
  const struct {
    const char* hidden;
    const char* label;
  } rows[] = {{"a_vertexCoord", "m_nYUV2RGBVerCoordLoc"},
              {"a_textureCoord", "m_nYUV2RGBTexCoordLoc"},
              {"s_texture0", "m_nYUV2RGBTextureSlot"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.hidden);
    GPUColorConverter converter;
    GlFaults faults;
    faults.hidden_location = row.hidden;
    faults.good_programs = 1;
    LogCapture log;
    EXPECT_EQ(1, converter.Init(128, 64, nullptr));
    EXPECT_EQ(std::vector<LogLine>{Error(kHelpers, "[LocIsValid] invalid %s == -1", row.label)},
              log.lines(6));
    EXPECT_GE(converter.m_nYUV2RGBMatrixSlot, 0);
  }
}

TEST(ConverterFaults, LookUpsComeInTheirOrder) {
  GPUColorConverter converter;
  GlFaults faults;
  EXPECT_EQ(1, converter.Init(128, 64, nullptr));
  EXPECT_EQ(
      (std::vector<std::string>{"a_vertexCoord", "a_textureCoord", "s_texture0", "u_mat_yuv2rgb",
                                "a_vertexCoord", "a_textureCoord", "s_texture0"}),
      faults.looked_up);
  EXPECT_EQ(2u, faults.programs_made.size());
  EXPECT_EQ(0, faults.binaries_taken) << "its programs are not cached";
  EXPECT_EQ(0, faults.binaries_given);
  const GLuint first = converter.m_hYUV2RGBProgram;
  converter.DeInit();
  EXPECT_EQ((std::vector<GLuint>{first}), faults.programs_deleted);
}

TEST(ConverterFaults, GlErrorsAreOnlyTold) {
  GPUColorConverter converter;
  converter.Init(128, 64, nullptr);
  GlFaults faults;
  faults.errors = {GL_INVALID_ENUM,  GL_NO_ERROR, GL_INVALID_VALUE,    GL_NO_ERROR,
                   GL_OUT_OF_MEMORY, GL_NO_ERROR, GL_INVALID_OPERATION};
  LogCapture log;
  EXPECT_EQ(1, converter.DrawColorConvertRGB2HSI());
  EXPECT_TRUE(
      LogHas(log.lines_of(kHelpers),
             {Info(kHelpers, "after glViewport - YUV2RGB() glError (0x500)\n"),
              Info(kHelpers, "after glTexParameteri MIN- Y() glError (0x501)\n"),
              Info(kHelpers, "after glTexParameteri MAG- Y() glError (0x505)\n"),
              Info(kHelpers, "after SetColorConvertShader - glUseProgram() glError (0x502)\n")}));
}

}  // namespace
}  // namespace lumora::test
