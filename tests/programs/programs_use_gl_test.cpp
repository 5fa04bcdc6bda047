// SPDX-License-Identifier: Apache-2.0
// What Use binds and uploads, and what it tells.
#include <GLES2/gl2.h>
#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

#include "lumora/programs/programs.h"
#include "programs/program_cases.h"
#include "support/gl_faults.h"
#include "support/gl_test.h"
#include "support/log_capture.h"
#include "support/scoped.h"

namespace lumora::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

class ProgramUse : public GlTest {
 protected:
  ProgramUse() : environment_("LUMORA_CACHE_DIR", directory_.path()) {}

  /// A loaded program, its log lines taken.
  template <typename Program>
  std::unique_ptr<Program> Loaded() {
    auto program = std::make_unique<Program>();
    EXPECT_TRUE(program->Load());
    log_.take();
    return program;
  }

  std::unique_ptr<GLProgram> Loaded(const ProgramCase& program_case) {
    std::unique_ptr<GLProgram> program = program_case.make();
    EXPECT_TRUE(program->Load());
    log_.take();
    return program;
  }

  TempDirectory directory_;
  ScopedEnvironment environment_;
  LogCapture log_;
};

/// The value of a uniform now, `count` floats.
std::vector<float> Uniform(const GLProgram& program, const std::string& name, size_t count) {
  std::vector<float> value(count, -77.0f);
  const GLint location = glGetUniformLocation(program.m_hProgram, name.c_str());
  EXPECT_GE(location, 0) << name;
  glGetUniformfv(program.m_hProgram, location, value.data());
  return value;
}

int SamplerUnit(const GLProgram& program, const char* name) {
  GLint unit = -1;
  glGetUniformiv(program.m_hProgram, glGetUniformLocation(program.m_hProgram, name), &unit);
  return unit;
}

int ActiveUnit() {
  GLint unit = 0;
  glGetIntegerv(GL_ACTIVE_TEXTURE, &unit);
  return unit - GL_TEXTURE0;
}

TEST_F(ProgramUse, BindsOneTextureOrTwo) {
  const Texture first(Image(2, 2));
  const Texture second(Image(2, 2));
  const Texture other(Image(2, 2));
  for (const ProgramCase& one : AllPrograms()) {
    SCOPED_TRACE(one.name);
    const std::string name = one.name;
    const bool two_inputs = name == "CheekSlimmerLarge" || name == "CheekSlimmerLargeMask" ||
                            name == "FaceWhiteningLarge";
    const auto program = Loaded(one);
    for (const int unit : {0, 1}) {
      glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
      glBindTexture(GL_TEXTURE_2D, other.name());
    }
    program->SetTextures(0, static_cast<int>(first.name()));
    program->SetTextures(1, static_cast<int>(second.name()));
    EXPECT_TRUE(program->Use());
    EXPECT_EQ(BoundTexture(0), first.name());
    EXPECT_EQ(BoundTexture(1), two_inputs ? second.name() : other.name());
    EXPECT_EQ(ActiveUnit(), two_inputs ? 1 : 0);
    EXPECT_EQ(SamplerUnit(*program, "s_texture0"), 0);
    if (two_inputs) {
      EXPECT_EQ(SamplerUnit(*program, "s_texture1"), 1);
    }
    EXPECT_THAT(TakeGlErrors(), IsEmpty());
    EXPECT_TRUE(LogIs(log_, {}));
  }
}

TEST_F(ProgramUse, WithoutAProgramBindsAndUploadsNothing) {
  const Texture bound(Image(2, 2));
  for (const ProgramCase& one : AllPrograms()) {
    SCOPED_TRACE(one.name);
    log_.take();
    TakeGlErrors();  // the end of a program that was never loaded leaves one
    const auto program = one.make();
    program->SetTextures(0, 12345);
    EXPECT_FALSE(program->Use());
    EXPECT_TRUE(LogIs(log_, {Error("GLProgram", "[Use] invalid program id -1")}));
    EXPECT_EQ(BoundTexture(0), bound.name());
    EXPECT_THAT(TakeGlErrors(), IsEmpty());
  }
}

// Gives every check for errors one to find, and expects a line of each label in this order.
TEST_F(ProgramUse, ChecksForErrorsUnderItsLabels) {
  const std::vector<std::string> warp = {
      "SetFaceDistShader - glUniform4f", "SetFaceDistShader - glUniform1f",
      "SetFaceDistShader - glUniform3f", "SetFaceDistShader - glUniform2f",
      "SetFaceDistShader - glUniform2f", "SetFaceDistShader - glUniform1f"};
  std::vector<std::string> warp_of_one = {"SetFaceDistShader - glBindTexture"};
  warp_of_one.insert(warp_of_one.end(), warp.begin(), warp.end());
  std::vector<std::string> warp_of_two = {"SetFaceDistShader - glBindTexture"};
  warp_of_two.insert(warp_of_two.end(), warp_of_one.begin(), warp_of_one.end());
  const std::vector<std::string> quad = {
      "SetRectificationShader - glBindTexture", "SetRectificationShader - glUniform2f",
      "SetRectificationShader - glUniform2f", "SetRectificationShader - glUniform2f",
      "SetRectificationShader - glUniform2f"};
  std::vector<std::string> quad_dot = quad;
  quad_dot.push_back("SetRectificationShader - glUniform1f");
  const struct {
    const char* name;
    std::vector<std::string> labels;
  } expected[] = {
      {"YUV2RGB", {}},
      {"RGB2HSI", {}},
      {"YUV2HSI", {}},
      {"HSI2YUV", {}},
      {"RGBtoY", {}},
      {"RGBtoUV", {}},
      {"CheekSlimmer", {}},
      {"CheekSlimmerMask", {}},
      {"CheekSlimmerLarge", warp_of_two},
      {"CheekSlimmerLargeMask", warp_of_two},
      {"CheekSlimmerLargeHsi", warp_of_one},
      {"CheekSlimmerLargeHsiMask", warp_of_one},
      {"FaceWhitening", {}},
      {"FaceWhiteningLarge", {}},
      {"Rectification", quad},
      {"RectificationMask", quad_dot},
      {"RadialDistortion",
       {"SetRectificationShader - glBindTexture", "SetRectificationShader - glUniform4f"}},
  };
  for (const auto& one : expected) {
    SCOPED_TRACE(one.name);
    const auto program = Loaded(ProgramNamed(one.name));
    GlFaults faults;
    for (int check = 0; check < 20; ++check) {
      faults.errors.push_back(GL_INVALID_ENUM);
      faults.errors.push_back(GL_NO_ERROR);
    }
    EXPECT_TRUE(program->Use()) << "errors do not stop it";
    std::vector<LogLine> lines;
    for (const std::string& label : one.labels) {
      lines.push_back(Info("EGLImageTest", "after %s() glError (0x500)\n", label.c_str()));
    }
    EXPECT_TRUE(LogIs(log_, lines));
  }
}

TEST_F(ProgramUse, UploadsTheColourMatrixAsItStands) {
  for (const char* name : {"YUV2RGB", "YUV2HSI"}) {
    const auto program = Loaded(ProgramNamed(name));
    for (int i = 0; i < 16; ++i) program->m_fMatYUV2RGB[i] = static_cast<float>(i) + 0.5f;
    ASSERT_TRUE(program->Use());
    EXPECT_THAT(Uniform(*program, "u_mat_yuv2rgb", 16), ElementsAreArray(program->m_fMatYUV2RGB));
  }
}

TEST_F(ProgramUse, UploadsThePackersShifts) {
  const auto luma = Loaded<GLProgRGBtoY>();
  for (int i = 0; i < 8; ++i) luma->m_fShift[i] = static_cast<float>(i) * 0.25f;
  ASSERT_TRUE(luma->Use());
  for (int i = 0; i < 4; ++i) {
    EXPECT_THAT(Uniform(*luma, "u_shift[" + std::to_string(i) + "]", 2),
                ElementsAre(luma->m_fShift[2 * i], luma->m_fShift[2 * i + 1]));
  }
  const auto chroma = Loaded<GLProgRGBtoUV>();
  for (int i = 0; i < 4; ++i) chroma->m_fShift[i] = static_cast<float>(i) * -0.5f;
  ASSERT_TRUE(chroma->Use());
  EXPECT_THAT(Uniform(*chroma, "u_shift[0]", 2), ElementsAre(0.0f, -0.5f));
  EXPECT_THAT(Uniform(*chroma, "u_shift[1]", 2), ElementsAre(-1.0f, -1.5f));
}

void Fill(GLProgWarp& program) {
  for (int i = 0; i < 4; ++i) program.m_fvController[i] = 0.1f + static_cast<float>(i);
  program.m_fAspectRatio = 0.75f;
  for (int i = 0; i < 3; ++i) program.m_fvAngleLimiter[i] = 0.2f + static_cast<float>(i);
  program.m_fvScale[0] = 0.3f;
  program.m_fvScale[1] = 0.4f;
  program.m_fvShift[0] = 0.5f;
  program.m_fvShift[1] = 0.6f;
}

void ExpectWarpUniforms(const GLProgWarp& program, float edge_fix) {
  EXPECT_THAT(Uniform(program, "g_fController", 4), ElementsAreArray(program.m_fvController));
  EXPECT_THAT(Uniform(program, "g_fAspectRatio", 1), ElementsAre(0.75f));
  EXPECT_THAT(Uniform(program, "g_fvAngleLimiter", 3), ElementsAreArray(program.m_fvAngleLimiter));
  EXPECT_THAT(Uniform(program, "g_fEdgeFix", 1), ElementsAre(edge_fix));
}

TEST_F(ProgramUse, UploadsThePreviewWarpWithItsBorderFade) {
  const auto program = Loaded<GLProgCheekSlimmer>();
  Fill(*program);
  ASSERT_TRUE(program->Use());
  ExpectWarpUniforms(*program, 0.2f);
}

TEST_F(ProgramUse, UploadsTheCaptureWarpsWithoutBorderFade) {
  const auto planes = Loaded<GLProgCheekSlimmerLarge>();
  const auto hsi = Loaded<GLProgCheekSlimmerLarge_HSI>();
  for (GLProgWarp* const program :
       {static_cast<GLProgWarp*>(planes.get()), static_cast<GLProgWarp*>(hsi.get())}) {
    Fill(*program);
    ASSERT_TRUE(program->Use());
    ExpectWarpUniforms(*program, 0.0f);
    EXPECT_THAT(Uniform(*program, "u_scale", 2), ElementsAre(0.3f, 0.4f));
    EXPECT_THAT(Uniform(*program, "u_shift", 2), ElementsAre(0.5f, 0.6f));
  }
  EXPECT_EQ(hsi->m_nSamplerLoc[1], -1) << "its second sampler is never looked up";
}

template <typename Program>
void Fill(Program& program, int seed) {
  program.m_fDiffI = 1.25f;
  program.m_fDiffS = 0.125f;
  program.m_fAspectRatio = 0.5f;
  for (int ellipse = 0; ellipse < 7; ++ellipse) {
    for (int i = 0; i < 9; ++i) {
      program.m_fEllipseController[ellipse][i] = static_cast<float>(seed + 10 * ellipse + i);
    }
  }
}

template <typename Program>
void ExpectEffectUniforms(const Program& program) {
  for (int ellipse = 0; ellipse < 7; ++ellipse) {
    const std::string name =
        "g_fEllipseController" + (ellipse == 0 ? "" : "_" + std::to_string(ellipse));
    EXPECT_THAT(Uniform(program, name, 9), ElementsAreArray(program.m_fEllipseController[ellipse]));
  }
}

TEST_F(ProgramUse, UploadsTheWhiteningsEllipsesEachTime) {
  const auto program = Loaded<GLProgFaceWhitening>();
  for (const int seed : {1, 2}) {
    Fill(*program, seed);
    ASSERT_TRUE(program->Use());
    ExpectEffectUniforms(*program);
  }
  EXPECT_THAT(Uniform(*program, "g_fEffectController", 3), ElementsAre(1.25f, 0.125f, 0.5f));
}

TEST_F(ProgramUse, UploadsTheTilesMapping) {
  const auto program = Loaded<GLProgFaceWhiteningLarge>();
  Fill(*program, 3);
  for (int i = 0; i < 4; ++i) program->m_fScaleController[i] = 0.1f * static_cast<float>(i + 1);
  ASSERT_TRUE(program->Use());
  ExpectEffectUniforms(*program);
  EXPECT_THAT(Uniform(*program, "g_fScaleController", 4),
              ElementsAreArray(program->m_fScaleController));
}

TEST_F(ProgramUse, UploadsTheQuadAndItsDegreeInTheMaskVariantOnly) {
  for (const bool mask : {false, true}) {
    GLProgRectificaton program;
    program.m_bShowMask = mask;
    ASSERT_TRUE(program.Load());
    for (int corner = 0; corner < 4; ++corner) {
      program.m_fvQuad[corner][0] = 0.1f * static_cast<float>(corner);
      program.m_fvQuad[corner][1] = 0.2f * static_cast<float>(corner);
    }
    program.m_fDegree = -2.0f;
    ASSERT_TRUE(program.Use());
    for (int corner = 0; corner < 4; ++corner) {
      EXPECT_THAT(Uniform(program, "g_quad" + std::to_string(corner), 2),
                  ElementsAreArray(program.m_fvQuad[corner]));
    }
    if (mask) {
      EXPECT_THAT(Uniform(program, "g_degree", 1), ElementsAre(-2.0f));
    } else {
      EXPECT_EQ(glGetUniformLocation(program.m_hProgram, "g_degree"), -1);
    }
  }
}

TEST_F(ProgramUse, UploadsTheRadialCoefficients) {
  const auto program = Loaded<GLProgRadialDistortion>();
  for (int i = 0; i < 4; ++i) program->m_fvKval[i] = 1.0f / static_cast<float>(i + 1);
  ASSERT_TRUE(program->Use());
  EXPECT_THAT(Uniform(*program, "g_kval0", 4), ElementsAreArray(program->m_fvKval));
}

}  // namespace
}  // namespace lumora::test
