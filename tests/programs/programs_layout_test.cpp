// SPDX-License-Identifier: Apache-2.0
// The members that each program class adds lie behind the base's, in a fixed order without gaps
// but those of alignment: other code writes them in place.
#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "lumora/programs/programs.h"

namespace lumora::test {
namespace {

struct Member {
  const char* name;
  size_t offset;
  size_t size;      ///< bytes that it takes
  size_t expected;  ///< bytes that it has to take
};

template <typename Program, typename Field>
Member Of(const char* name, const Program& program, const Field& field, size_t expected) {
  const auto offset =
      reinterpret_cast<const char*>(&field) - reinterpret_cast<const char*>(&program);
  return {name, static_cast<size_t>(offset), sizeof(field), expected};
}

constexpr size_t RoundUp(size_t value, size_t unit) {
  return (value + unit - 1) / unit * unit;
}

// The end of the base's last field: the table pointer and 59 words.
constexpr size_t kBaseEnd = sizeof(void*) + size_t{59} * 4;

// `size` is the whole class's.
void ExpectLayout(const std::vector<Member>& members, size_t size) {
  size_t end = kBaseEnd;
  for (const Member& member : members) {
    EXPECT_EQ(member.size, member.expected) << member.name;
    EXPECT_EQ(member.offset, RoundUp(end, member.size == 1 ? 1 : 4)) << member.name;
    end = member.offset + member.size;
  }
  EXPECT_EQ(size, RoundUp(end, sizeof(void*)));
}

constexpr size_t kFloat = 4;

// Names of location slots.
static_assert(GLProgRGBtoY::UNIFORM_SHIFT == 0 && GLProgRGBtoUV::UNIFORM_SHIFT == 0);
static_assert(GLProgRectificaton::UNIFORM_POS_QUAD_0 == 0 &&
              GLProgRectificaton::UNIFORM_POS_QUAD_1 == 1 &&
              GLProgRectificaton::UNIFORM_POS_QUAD_2 == 2 &&
              GLProgRectificaton::UNIFORM_POS_QUAD_3 == 3 &&
              GLProgRectificaton::UNIFORM_POS_DEGREE == 4);
static_assert(GLProgRadialDistortion::UNIFORM_POS_KVAL == 0);

TEST(ProgramLayout, ColourProgramsAddNothingButThePackersShifts) {
  ExpectLayout({}, sizeof(GLProgYUV2RGB));
  ExpectLayout({}, sizeof(GLProgRGB2HSI));
  ExpectLayout({}, sizeof(GLProgYUV2HSI));
  ExpectLayout({}, sizeof(GLProgHSI2YUV));
  const GLProgRGBtoY luma;
  ExpectLayout({Of("m_fShift", luma, luma.m_fShift, 8 * kFloat)}, sizeof(luma));
  const GLProgRGBtoUV chroma;
  ExpectLayout({Of("m_fShift", chroma, chroma.m_fShift, 4 * kFloat)}, sizeof(chroma));
}

template <typename Program>
void ExpectWarpLayout() {
  const Program p;
  ExpectLayout(
      {Of("m_bShowMask", p, p.m_bShowMask, 1),
       Of("m_fvController", p, p.m_fvController, 4 * kFloat),
       Of("m_fAspectRatio", p, p.m_fAspectRatio, kFloat),
       Of("m_fvAngleLimiter", p, p.m_fvAngleLimiter, 3 * kFloat),
       Of("m_fvScale", p, p.m_fvScale, 2 * kFloat), Of("m_fvShift", p, p.m_fvShift, 2 * kFloat)},
      sizeof(p));
}

TEST(ProgramLayout, SlimmersAllHaveTheSameMembers) {
  ExpectWarpLayout<GLProgCheekSlimmer>();
  ExpectWarpLayout<GLProgCheekSlimmerLarge>();
  ExpectWarpLayout<GLProgCheekSlimmerLarge_HSI>();
}

template <typename Program>
std::vector<Member> WhiteningMembers(const Program& p) {
  return {Of("m_fAspectRatio", p, p.m_fAspectRatio, kFloat), Of("m_fDiffI", p, p.m_fDiffI, kFloat),
          Of("m_fDiffS", p, p.m_fDiffS, kFloat),
          Of("m_fEllipseController", p, p.m_fEllipseController, 7 * 9 * kFloat)};
}

TEST(ProgramLayout, WhiteningForTilesAddsItsMapping) {
  const GLProgFaceWhitening whole;
  ExpectLayout(WhiteningMembers(whole), sizeof(whole));
  const GLProgFaceWhiteningLarge tile;
  std::vector<Member> members = WhiteningMembers(tile);
  members.push_back(Of("m_fScaleController", tile, tile.m_fScaleController, 4 * kFloat));
  ExpectLayout(members, sizeof(tile));
}

TEST(ProgramLayout, RectificationHasItsQuadBeforeItsMask) {
  const GLProgRectificaton quad;
  ExpectLayout(
      {Of("m_fvQuad", quad, quad.m_fvQuad, 4 * 2 * kFloat),
       Of("m_bShowMask", quad, quad.m_bShowMask, 1), Of("m_fDegree", quad, quad.m_fDegree, kFloat)},
      sizeof(quad));
  const GLProgRadialDistortion radial;
  ExpectLayout({Of("m_fvKval", radial, radial.m_fvKval, 4 * kFloat)}, sizeof(radial));
}

TEST(ProgramLayout, MembersStartAsZeros) {
  const GLProgCheekSlimmer slimmer;
  EXPECT_FALSE(slimmer.m_bShowMask);
  for (const float value : slimmer.m_fvController) EXPECT_EQ(value, 0.0f);
  const GLProgFaceWhiteningLarge whitening;
  for (const auto& ellipse : whitening.m_fEllipseController) {
    for (const float value : ellipse) EXPECT_EQ(value, 0.0f);
  }
  const GLProgRectificaton quad;
  EXPECT_FALSE(quad.m_bShowMask);
  EXPECT_EQ(quad.m_fDegree, 0.0f);
}

}  // namespace
}  // namespace lumora::test
