// SPDX-License-Identifier: Apache-2.0
#include "programs/program_cases.h"

#include <cstdlib>

#include "lumora/programs/programs.h"

namespace lumora::test {
namespace {

template <typename Program>
std::unique_ptr<GLProgram> Make() {
  return std::make_unique<Program>();
}

template <typename Program>
std::unique_ptr<GLProgram> MakeMask() {
  auto program = std::make_unique<Program>();
  program->m_bShowMask = true;
  return program;
}

constexpr Slot U(int index) {
  return {Slot::Uniform, index};
}
constexpr Slot S(int index) {
  return {Slot::Sampler, index};
}

using Lookups = std::vector<Lookup>;

Lookups operator+(Lookups first, const Lookups& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

// clang-format off
const Lookups kAttributes = {{"a_vertexCoord",  {Slot::Vertex},  "m_nVerCoordLoc"},
                             {"a_textureCoord", {Slot::Texture}, "m_nTexCoordLoc"}};
const Lookups kCommon = kAttributes + Lookups{{"s_texture0", S(0), "m_nSamplerLoc[SAMPLER_INPUT_TEX]"}};

const Lookups kMatrix = kCommon + Lookups{{"u_mat_yuv2rgb", S(7), "m_nSamplerLoc[SAMPLER_MAT_YUV2RGB]"}};
const Lookups kShift  = kCommon + Lookups{{"u_shift",       U(0), "m_nUniformLoc[UNIFORM_SHIFT]"}};

const Lookups kWarp = {{"g_fController",    U(0), "m_nFaceDistControllerSlot"},
                       {"g_fAspectRatio",   U(1), "m_nFaceDistAspectSlot"},
                       {"g_fvAngleLimiter", U(2), "m_nFaceDistAspectSlot"},
                       {"g_fEdgeFix",       U(3), "m_nFaceDistEdgeFixSlot"}};
const Lookups kBlock = {{"u_shift",         U(4), "m_nFaceDistScaleSlot"},
                        {"u_scale",         U(5), "m_nFaceDistScaleSlot"}};
// The check looks at the first sampler again.
const Lookups kChroma = {{"s_texture1",     S(1), nullptr}};

const Lookups kPrevious = {{"s_texture1",   S(1), "m_nSamplerLoc[1]"}};
// The checks of 2 to 6 look at 1 again.
const Lookups kEllipses = {{"g_fEllipseController",   U(0), "m_nFacewhiteControllerSlot"},
                           {"g_fEffectController",    U(1), "m_nFacewhiteEffectSlot"},
                           {"g_fEllipseController_1", U(2), "m_nFacewhiteControllerSlot1"},
                           {"g_fEllipseController_2", U(3), nullptr},
                           {"g_fEllipseController_3", U(4), nullptr},
                           {"g_fEllipseController_4", U(5), nullptr},
                           {"g_fEllipseController_5", U(6), nullptr},
                           {"g_fEllipseController_6", U(7), nullptr}};
const Lookups kTile = {{"g_fScaleController",         U(8), "m_nFacewhiteControllerSlot1"}};

const Lookups kQuad = {{"g_quad0",  U(0), "m_nUniformLoc[UNIFORM_POS_QUAD_0]"},
                       {"g_quad1",  U(1), "m_nUniformLoc[UNIFORM_POS_QUAD_1]"},
                       {"g_quad2",  U(2), "m_nUniformLoc[UNIFORM_POS_QUAD_2]"},
                       {"g_quad3",  U(3), "m_nUniformLoc[UNIFORM_POS_QUAD_3]"}};
const Lookups kDot  = {{"g_degree", U(4), "m_nUniformLoc[UNIFORM_POS_DEGREE]"}};
const Lookups kRadial = {{"s_texture0", S(0), "m_pnSamplerLoc[UNIFORM_INPUT_TEX]"},
                         {"g_kval0",    U(0), "m_nUniformLoc[UNIFORM_POS_KVAL]"}};

const std::vector<ProgramCase> kCases = {
    {"YUV2RGB",                  Make<GLProgYUV2RGB>,                   "prog_yuv2rgb.bin",                false, kMatrix},
    {"RGB2HSI",                  Make<GLProgRGB2HSI>,                   "prog_rgb2hsi.bin",                false, kCommon},
    {"YUV2HSI",                  Make<GLProgYUV2HSI>,                   "prog_yuv2hsi.bin",                false, kMatrix},
    {"HSI2YUV",                  Make<GLProgHSI2YUV>,                   "prog_hsi2yuv.bin",                false, kCommon},
    {"RGBtoY",                   Make<GLProgRGBtoY>,                    "prog_rgb2y.bin",                  false, kShift},
    {"RGBtoUV",                  Make<GLProgRGBtoUV>,                   "prog_rgb2uv.bin",                 true,  kShift},
    {"CheekSlimmer",             Make<GLProgCheekSlimmer>,              "prog_face_slim.bin",              true,  kCommon + kWarp},
    {"CheekSlimmerMask",         MakeMask<GLProgCheekSlimmer>,          "prog_face_slim_mask.bin",         true,  kCommon + kWarp},
    {"CheekSlimmerLarge",        Make<GLProgCheekSlimmerLarge>,         nullptr,                           true,  kCommon + kChroma + kWarp + kBlock},
    {"CheekSlimmerLargeMask",    MakeMask<GLProgCheekSlimmerLarge>,     nullptr,                           true,  kCommon + kChroma + kWarp + kBlock},
    {"CheekSlimmerLargeHsi",     Make<GLProgCheekSlimmerLarge_HSI>,     nullptr,                           true,  kCommon + kWarp + kBlock},
    {"CheekSlimmerLargeHsiMask", MakeMask<GLProgCheekSlimmerLarge_HSI>, nullptr,                           true,  kCommon + kWarp + kBlock},
    {"FaceWhitening",            Make<GLProgFaceWhitening>,             "prog_face_white.bin",             true,  kCommon + kEllipses},
    {"FaceWhiteningLarge",       Make<GLProgFaceWhiteningLarge>,        "prog_face_white_large.bin",       true,  kCommon + kPrevious + kEllipses + kTile},
    {"Rectification",            Make<GLProgRectificaton>,              "prog_rectification.bin",          true,  kCommon + kQuad},
    {"RectificationMask",        MakeMask<GLProgRectificaton>,          "prog_rectification_mask.bin",     true,  kCommon + kQuad + kDot},
    {"RadialDistortion",         Make<GLProgRadialDistortion>,          "prog_radial_distortion_mask.bin", true,  kAttributes + kRadial},
};
// clang-format on

}  // namespace

int Slot::value(const GLProgram& program) const {
  switch (table) {
    case Vertex:
      return program.m_nVerCoordLoc;
    case Texture:
      return program.m_nTexCoordLoc;
    case Sampler:
      return program.m_nSamplerLoc[index];
    case Uniform:
      break;
  }
  return program.m_nUniformLoc[index];
}

const std::vector<ProgramCase>& AllPrograms() {
  return kCases;
}

const ProgramCase& ProgramNamed(const std::string& name) {
  for (const ProgramCase& one : kCases) {
    if (one.name == name) return one;
  }
  std::abort();
}

}  // namespace lumora::test
