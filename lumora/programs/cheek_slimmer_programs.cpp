// SPDX-License-Identifier: Apache-2.0
#include "lumora/programs/cheek_slimmer_programs.h"

#include "lumora/gl/gl_steps.h"
#include "lumora/platform/gl_api.h"
#include "lumora/programs/program_support.h"

namespace lumora {
namespace {

enum WarpUniform : int { kController, kAspectRatio, kAngleLimiter, kEdgeFix, kShift, kScale };

// Blocks are inner tiles of a larger frame: their borders are not the frame's.
constexpr float kCaptureEdgeFix = 0.0f;

// clang-format off
constexpr ProgramLocation kControllerRow  {"g_fController",    UniformSlot(kController),   "m_nFaceDistControllerSlot"};
constexpr ProgramLocation kAspectRatioRow {"g_fAspectRatio",   UniformSlot(kAspectRatio),  "m_nFaceDistAspectSlot"};
constexpr ProgramLocation kAngleLimiterRow{"g_fvAngleLimiter", UniformSlot(kAngleLimiter), "m_nFaceDistAspectSlot"};  // shares the label
constexpr ProgramLocation kEdgeFixRow     {"g_fEdgeFix",       UniformSlot(kEdgeFix),      "m_nFaceDistEdgeFixSlot"};
constexpr ProgramLocation kShiftRow       {"u_shift",          UniformSlot(kShift),        "m_nFaceDistScaleSlot"};
constexpr ProgramLocation kScaleRow       {"u_scale",          UniformSlot(kScale),        "m_nFaceDistScaleSlot"};
// Checks the first sampler again, so a missing second one passes unnoticed.
constexpr ProgramLocation kChromaTexture  {"s_texture1", SamplerSlot(GLProgram::SAMPLER_SECOND_TEX), "m_nSamplerLoc[SAMPLER_INPUT_TEX]",
                                                         SamplerSlot(GLProgram::SAMPLER_INPUT_TEX)};
// clang-format on

constexpr ProgramLocation kPreview[] = {kVertexCoord,   kTextureCoord,   kInputTexture,
                                        kControllerRow, kAspectRatioRow, kAngleLimiterRow,
                                        kEdgeFixRow};
constexpr ProgramLocation kPlanes[] = {
    kVertexCoord,    kTextureCoord,    kInputTexture, kChromaTexture, kControllerRow,
    kAspectRatioRow, kAngleLimiterRow, kEdgeFixRow,   kShiftRow,      kScaleRow};
constexpr ProgramLocation kHsi[] = {kVertexCoord,   kTextureCoord,   kInputTexture,
                                    kControllerRow, kAspectRatioRow, kAngleLimiterRow,
                                    kEdgeFixRow,    kShiftRow,       kScaleRow};

// Index 0 is the plain variant, index 1 the one with the outline.
// clang-format off
constexpr const char* kVertex = shaders::kPassThroughEffectsVert;
constexpr ProgramDescription kCheekSlimmer[] = {
    Describe(kVertex, shaders::kCheekSlimmerFrag,        "%s/prog_face_slim.bin",      true, kPreview),
    Describe(kVertex, shaders::kCheekSlimmerOutlineFrag, "%s/prog_face_slim_mask.bin", true, kPreview)};
constexpr ProgramDescription kCheekSlimmerLarge[] = {
    Describe(kVertex, shaders::kCheekSlimmerLargeFrag,        nullptr, true, kPlanes),
    Describe(kVertex, shaders::kCheekSlimmerLargeOutlineFrag, nullptr, true, kPlanes)};
constexpr ProgramDescription kCheekSlimmerLargeHsi[] = {
    Describe(kVertex, shaders::kCheekSlimmerLargeHsiFrag,        nullptr, true, kHsi),
    Describe(kVertex, shaders::kCheekSlimmerLargeHsiOutlineFrag, nullptr, true, kHsi)};
// clang-format on

/// The capture programs' uploads, each checked; the edge fade is a constant of the program.
void UploadCaptureUniforms(const GLProgWarp& warp) {
  const int* locations = warp.m_nUniformLoc;
  const float* controller = warp.m_fvController;
  glUniform4f(locations[kController], controller[0], controller[1], controller[2], controller[3]);
  lumora::gl::CheckGlError("SetFaceDistShader - glUniform4f");
  glUniform1f(locations[kAspectRatio], warp.m_fAspectRatio);
  lumora::gl::CheckGlError("SetFaceDistShader - glUniform1f");
  const float* limiter = warp.m_fvAngleLimiter;
  glUniform3f(locations[kAngleLimiter], limiter[0], limiter[1], limiter[2]);
  lumora::gl::CheckGlError("SetFaceDistShader - glUniform3f");
  glUniform2f(locations[kScale], warp.m_fvScale[0], warp.m_fvScale[1]);
  lumora::gl::CheckGlError("SetFaceDistShader - glUniform2f");
  glUniform2f(locations[kShift], warp.m_fvShift[0], warp.m_fvShift[1]);
  lumora::gl::CheckGlError("SetFaceDistShader - glUniform2f");
  glUniform1f(locations[kEdgeFix], kCaptureEdgeFix);
  lumora::gl::CheckGlError("SetFaceDistShader - glUniform1f");
}

}  // namespace
}  // namespace lumora

GLProgWarp::~GLProgWarp() = default;
GLProgCheekSlimmer::~GLProgCheekSlimmer() = default;
GLProgCheekSlimmerLarge::~GLProgCheekSlimmerLarge() = default;
GLProgCheekSlimmerLarge_HSI::~GLProgCheekSlimmerLarge_HSI() = default;

bool GLProgCheekSlimmer::Load() {
  return lumora::LoadProgram(*this, lumora::kCheekSlimmer[m_bShowMask]);
}

bool GLProgCheekSlimmerLarge::Load() {
  return lumora::LoadProgram(*this, lumora::kCheekSlimmerLarge[m_bShowMask]);
}

bool GLProgCheekSlimmerLarge_HSI::Load() {
  return lumora::LoadProgram(*this, lumora::kCheekSlimmerLargeHsi[m_bShowMask]);
}

bool GLProgCheekSlimmer::Use() {
  if (!GLProgram::Use()) return false;
  BindInput(0);
  glUniform4f(m_nUniformLoc[lumora::kController], m_fvController[0], m_fvController[1],
              m_fvController[2], m_fvController[3]);
  glUniform1f(m_nUniformLoc[lumora::kAspectRatio], m_fAspectRatio);
  glUniform3f(m_nUniformLoc[lumora::kAngleLimiter], m_fvAngleLimiter[0], m_fvAngleLimiter[1],
              m_fvAngleLimiter[2]);
  glUniform1f(m_nUniformLoc[lumora::kEdgeFix], kEdgeFade);
  return true;
}

bool GLProgCheekSlimmerLarge::Use() {
  if (!GLProgram::Use()) return false;
  for (int unit = 0; unit < 2; ++unit) {
    BindInput(unit);
    lumora::gl::CheckGlError("SetFaceDistShader - glBindTexture");
  }
  lumora::UploadCaptureUniforms(*this);
  return true;
}

bool GLProgCheekSlimmerLarge_HSI::Use() {
  if (!GLProgram::Use()) return false;
  BindInput(0);
  lumora::gl::CheckGlError("SetFaceDistShader - glBindTexture");
  lumora::UploadCaptureUniforms(*this);
  return true;
}
