// SPDX-License-Identifier: Apache-2.0
#include "lumora/programs/face_whitening_programs.h"

#include "lumora/platform/gl_api.h"
#include "lumora/programs/program_support.h"

namespace lumora {
namespace {

enum WhiteningUniform : int {
  kEllipse0 = 0,
  kEffect = 1,
  kEllipse1 = 2,  // ellipses 1 to 6 are consecutive
  kScale = 8,
};

// clang-format off
constexpr LocationSlot kFirstInner = UniformSlot(kEllipse1);
constexpr ProgramLocation kSecondTexture{"s_texture1", SamplerSlot(GLProgram::SAMPLER_SECOND_TEX), "m_nSamplerLoc[1]"};
constexpr ProgramLocation kOuterRow  {"g_fEllipseController",   UniformSlot(kEllipse0),     "m_nFacewhiteControllerSlot"};
constexpr ProgramLocation kEffectRow {"g_fEffectController",    UniformSlot(kEffect),       "m_nFacewhiteEffectSlot"};
constexpr ProgramLocation kInnerRow1 {"g_fEllipseController_1", UniformSlot(kEllipse1),     "m_nFacewhiteControllerSlot1"};
// The following five check the location of _1 again, so a missing one of theirs is never reported.
constexpr ProgramLocation kInnerRow2 {"g_fEllipseController_2", UniformSlot(kEllipse1 + 1), "m_nFacewhiteControllerSlot1", kFirstInner};
constexpr ProgramLocation kInnerRow3 {"g_fEllipseController_3", UniformSlot(kEllipse1 + 2), "m_nFacewhiteControllerSlot1", kFirstInner};
constexpr ProgramLocation kInnerRow4 {"g_fEllipseController_4", UniformSlot(kEllipse1 + 3), "m_nFacewhiteControllerSlot1", kFirstInner};
constexpr ProgramLocation kInnerRow5 {"g_fEllipseController_5", UniformSlot(kEllipse1 + 4), "m_nFacewhiteControllerSlot1", kFirstInner};
constexpr ProgramLocation kInnerRow6 {"g_fEllipseController_6", UniformSlot(kEllipse1 + 5), "m_nFacewhiteControllerSlot1", kFirstInner};
constexpr ProgramLocation kScaleRow  {"g_fScaleController",     UniformSlot(kScale),        "m_nFacewhiteControllerSlot1"};  // borrowed label

constexpr ProgramLocation kWhole[] = {
    kVertexCoord, kTextureCoord, kInputTexture,
    kOuterRow, kEffectRow, kInnerRow1, kInnerRow2, kInnerRow3, kInnerRow4, kInnerRow5, kInnerRow6};
constexpr ProgramLocation kBlock[] = {
    kVertexCoord, kTextureCoord, kInputTexture, kSecondTexture,
    kOuterRow, kEffectRow, kInnerRow1, kInnerRow2, kInnerRow3, kInnerRow4, kInnerRow5, kInnerRow6,
    kScaleRow};

constexpr const char* kVertex = shaders::kPassThroughEffectsVert;
constexpr ProgramDescription kFaceWhitening      = Describe(kVertex, shaders::kFaceWhiteningFrag,      "%s/prog_face_white.bin",       true, kWhole);
constexpr ProgramDescription kFaceWhiteningLarge = Describe(kVertex, shaders::kFaceWhiteningLargeFrag, "%s/prog_face_white_large.bin", true, kBlock);
// clang-format on

}  // namespace
}  // namespace lumora

GLProgWhiteningBase::~GLProgWhiteningBase() = default;
GLProgFaceWhitening::~GLProgFaceWhitening() = default;
GLProgFaceWhiteningLarge::~GLProgFaceWhiteningLarge() = default;

void GLProgWhiteningBase::UploadEffect() {
  glUniformMatrix3fv(m_nUniformLoc[lumora::kEllipse0], 1, GL_FALSE, m_fEllipseController[0]);
  glUniform3f(m_nUniformLoc[lumora::kEffect], m_fDiffI, m_fDiffS, m_fAspectRatio);
  for (int inner = 1; inner < 7; ++inner) {
    glUniformMatrix3fv(m_nUniformLoc[lumora::kEllipse1 + inner - 1], 1, GL_FALSE,
                       m_fEllipseController[inner]);
  }
}

bool GLProgFaceWhitening::Load() {
  return lumora::LoadProgram(*this, lumora::kFaceWhitening);
}
bool GLProgFaceWhiteningLarge::Load() {
  return lumora::LoadProgram(*this, lumora::kFaceWhiteningLarge);
}

bool GLProgFaceWhitening::Use() {
  if (!GLProgram::Use()) return false;
  BindInput(0);
  UploadEffect();
  return true;
}

bool GLProgFaceWhiteningLarge::Use() {
  if (!GLProgram::Use()) return false;
  BindInput(0);
  BindInput(1);
  UploadEffect();
  const float* scale = m_fScaleController;
  glUniform4f(m_nUniformLoc[lumora::kScale], scale[0], scale[1], scale[2], scale[3]);
  return true;
}
