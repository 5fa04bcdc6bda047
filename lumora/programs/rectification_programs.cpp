// SPDX-License-Identifier: Apache-2.0
#include "lumora/programs/rectification_programs.h"

#include "lumora/gl/gl_steps.h"
#include "lumora/platform/gl_api.h"
#include "lumora/programs/program_support.h"

namespace lumora {
namespace {

// clang-format off
constexpr ProgramLocation kQuad0 {"g_quad0",  UniformSlot(GLProgRectificaton::UNIFORM_POS_QUAD_0), "m_nUniformLoc[UNIFORM_POS_QUAD_0]"};
constexpr ProgramLocation kQuad1 {"g_quad1",  UniformSlot(GLProgRectificaton::UNIFORM_POS_QUAD_1), "m_nUniformLoc[UNIFORM_POS_QUAD_1]"};
constexpr ProgramLocation kQuad2 {"g_quad2",  UniformSlot(GLProgRectificaton::UNIFORM_POS_QUAD_2), "m_nUniformLoc[UNIFORM_POS_QUAD_2]"};
constexpr ProgramLocation kQuad3 {"g_quad3",  UniformSlot(GLProgRectificaton::UNIFORM_POS_QUAD_3), "m_nUniformLoc[UNIFORM_POS_QUAD_3]"};
constexpr ProgramLocation kDegree{"g_degree", UniformSlot(GLProgRectificaton::UNIFORM_POS_DEGREE), "m_nUniformLoc[UNIFORM_POS_DEGREE]"};
// The radial program's own spelling of the input sampler's label.
constexpr ProgramLocation kRadialInput{"s_texture0", SamplerSlot(GLProgram::SAMPLER_INPUT_TEX), "m_pnSamplerLoc[UNIFORM_INPUT_TEX]"};
constexpr ProgramLocation kKval{"g_kval0", UniformSlot(GLProgRadialDistortion::UNIFORM_POS_KVAL), "m_nUniformLoc[UNIFORM_POS_KVAL]"};

constexpr ProgramLocation kQuad[]        = {kVertexCoord, kTextureCoord, kInputTexture, kQuad0, kQuad1, kQuad2, kQuad3};
constexpr ProgramLocation kQuadOutline[] = {kVertexCoord, kTextureCoord, kInputTexture, kQuad0, kQuad1, kQuad2, kQuad3, kDegree};
constexpr ProgramLocation kRadial[]      = {kVertexCoord, kTextureCoord, kRadialInput, kKval};

constexpr const char* kVertex = shaders::kPassThroughEffectsVert;
constexpr ProgramDescription kRectification        = Describe(kVertex, shaders::kRectificationFrag,        "%s/prog_rectification.bin",      true, kQuad);
constexpr ProgramDescription kRectificationOutline = Describe(kVertex, shaders::kRectificationOutlineFrag, "%s/prog_rectification_mask.bin", true, kQuadOutline);
// Named "_mask" although there is one variant only: devices hold cache files under this name.
constexpr ProgramDescription kRadialDistortion = Describe(kVertex, shaders::kRadialDistortionFrag, "%s/prog_radial_distortion_mask.bin", true, kRadial);
// clang-format on

}  // namespace
}  // namespace lumora

GLProgRectificaton::~GLProgRectificaton() = default;
GLProgRadialDistortion::~GLProgRadialDistortion() = default;

bool GLProgRectificaton::Load() {
  return lumora::LoadProgram(*this,
                             m_bShowMask ? lumora::kRectificationOutline : lumora::kRectification);
}

bool GLProgRadialDistortion::Load() {
  return lumora::LoadProgram(*this, lumora::kRadialDistortion);
}

bool GLProgRectificaton::Use() {
  if (!GLProgram::Use()) return false;
  BindInput(0);
  lumora::gl::CheckGlError("SetRectificationShader - glBindTexture");
  for (int corner = 0; corner < 4; ++corner) {
    glUniform2f(m_nUniformLoc[UNIFORM_POS_QUAD_0 + corner], m_fvQuad[corner][0],
                m_fvQuad[corner][1]);
    lumora::gl::CheckGlError("SetRectificationShader - glUniform2f");
  }
  if (m_bShowMask) {
    glUniform1f(m_nUniformLoc[UNIFORM_POS_DEGREE], m_fDegree);
    lumora::gl::CheckGlError("SetRectificationShader - glUniform1f");
  }
  return true;
}

bool GLProgRadialDistortion::Use() {
  if (!GLProgram::Use()) return false;
  BindInput(0);
  lumora::gl::CheckGlError("SetRectificationShader - glBindTexture");
  glUniform4f(m_nUniformLoc[UNIFORM_POS_KVAL], m_fvKval[0], m_fvKval[1], m_fvKval[2], m_fvKval[3]);
  lumora::gl::CheckGlError("SetRectificationShader - glUniform4f");
  return true;
}
