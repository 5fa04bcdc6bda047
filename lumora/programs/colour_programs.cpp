// SPDX-License-Identifier: Apache-2.0
#include "lumora/programs/colour_programs.h"

#include "lumora/platform/gl_api.h"
#include "lumora/programs/program_support.h"

namespace lumora {
namespace {

constexpr ProgramLocation kColourMatrix{"u_mat_yuv2rgb",
                                        SamplerSlot(GLProgram::SAMPLER_MAT_YUV2RGB),
                                        "m_nSamplerLoc[SAMPLER_MAT_YUV2RGB]"};
constexpr ProgramLocation kShift{"u_shift", UniformSlot(0), "m_nUniformLoc[UNIFORM_SHIFT]"};

constexpr ProgramLocation kPlain[] = {kVertexCoord, kTextureCoord, kInputTexture};
constexpr ProgramLocation kWithMatrix[] = {kVertexCoord, kTextureCoord, kInputTexture,
                                           kColourMatrix};
constexpr ProgramLocation kWithShift[] = {kVertexCoord, kTextureCoord, kInputTexture, kShift};

// clang-format off
constexpr const char* kVertex = shaders::kPassThroughVert;
constexpr ProgramDescription kYuv2Rgb = Describe(kVertex, shaders::kYuvToRgbFrag, "%s/prog_yuv2rgb.bin", false, kWithMatrix);
constexpr ProgramDescription kRgb2Hsi = Describe(kVertex, shaders::kRgbToHsiFrag, "%s/prog_rgb2hsi.bin", false, kPlain);
constexpr ProgramDescription kYuv2Hsi = Describe(kVertex, shaders::kYuvToHsiFrag, "%s/prog_yuv2hsi.bin", false, kWithMatrix);
constexpr ProgramDescription kHsi2Yuv = Describe(kVertex, shaders::kHsiToYuvFrag, "%s/prog_hsi2yuv.bin", false, kPlain);
constexpr ProgramDescription kRgb2Y   = Describe(kVertex, shaders::kRgbToYFrag,   "%s/prog_rgb2y.bin",   false, kWithShift);
constexpr ProgramDescription kRgb2Uv  = Describe(kVertex, shaders::kRgbToUvFrag,  "%s/prog_rgb2uv.bin",  true,  kWithShift);
// clang-format on

}  // namespace
}  // namespace lumora

GLProgYUV2RGB::~GLProgYUV2RGB() = default;
GLProgRGB2HSI::~GLProgRGB2HSI() = default;
GLProgYUV2HSI::~GLProgYUV2HSI() = default;
GLProgHSI2YUV::~GLProgHSI2YUV() = default;
GLProgRGBtoY::~GLProgRGBtoY() = default;
GLProgRGBtoUV::~GLProgRGBtoUV() = default;

bool GLProgYUV2RGB::Load() {
  return lumora::LoadProgram(*this, lumora::kYuv2Rgb);
}
bool GLProgRGB2HSI::Load() {
  return lumora::LoadProgram(*this, lumora::kRgb2Hsi);
}
bool GLProgYUV2HSI::Load() {
  return lumora::LoadProgram(*this, lumora::kYuv2Hsi);
}
bool GLProgHSI2YUV::Load() {
  return lumora::LoadProgram(*this, lumora::kHsi2Yuv);
}
bool GLProgRGBtoY::Load() {
  return lumora::LoadProgram(*this, lumora::kRgb2Y);
}
bool GLProgRGBtoUV::Load() {
  return lumora::LoadProgram(*this, lumora::kRgb2Uv);
}

bool GLProgYUV2RGB::Use() {
  if (!GLProgram::Use()) return false;
  BindInput(0);
  UploadColourMatrix();
  return true;
}

bool GLProgRGB2HSI::Use() {
  if (!GLProgram::Use()) return false;
  BindInput(0);
  return true;
}

bool GLProgYUV2HSI::Use() {
  if (!GLProgram::Use()) return false;
  BindInput(0);
  UploadColourMatrix();
  return true;
}

bool GLProgHSI2YUV::Use() {
  if (!GLProgram::Use()) return false;
  BindInput(0);
  return true;
}

bool GLProgRGBtoY::Use() {
  if (!GLProgram::Use()) return false;
  BindInput(0);
  glUniform2fv(m_nUniformLoc[UNIFORM_SHIFT], 4, m_fShift);
  return true;
}

bool GLProgRGBtoUV::Use() {
  if (!GLProgram::Use()) return false;
  BindInput(0);
  glUniform2fv(m_nUniformLoc[UNIFORM_SHIFT], 2, m_fShift);
  return true;
}
