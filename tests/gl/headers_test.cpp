// SPDX-License-Identifier: Apache-2.0
// The one header that brings in everything: each exported function is declared and can be linked.
// That every public header compiles alone is proved by building this executable.
#include <gtest/gtest.h>

#include "lumora/lumora.h"

namespace {

template <typename Function>
bool Exists(Function* function) {
  Function* volatile address = function;  // the compiler knows no function is null
  return address != nullptr;
}

TEST(Umbrella, DeclaresTheExportedFunctions) {
  EXPECT_TRUE(Exists(&LogLine));
  EXPECT_TRUE(Exists(&printGLString));
  EXPECT_TRUE(Exists(&checkGlError));
  EXPECT_TRUE(Exists(&LocIsValid));
  EXPECT_TRUE(Exists(&loadShader));
  EXPECT_TRUE(Exists(&createProgram));
  EXPECT_TRUE(Exists(&SetColorAttachment));
  EXPECT_TRUE(Exists(&GenTexture));
  EXPECT_TRUE(Exists(&lumora::platform::CacheDirectory));
  EXPECT_TRUE(Exists(&lumora::platform::SetCacheDirectory));
  EXPECT_TRUE(Exists(&lumora::platform::BeforeDraw));
  EXPECT_EQ(g_cTimeStart, 0);
  EXPECT_EQ(g_cTimeFinish, 0);
  EXPECT_EQ(g_dCountTimeInterval, 0.0);
}

TEST(Umbrella, DeclaresTheProgramsAndTheImage) {
  EXPECT_EQ(GLProgYUV2RGB().m_nVerCoordLoc, -1);
  EXPECT_EQ(GLProgRGB2HSI().m_nVerCoordLoc, -1);
  EXPECT_EQ(GLProgYUV2HSI().m_nVerCoordLoc, -1);
  EXPECT_EQ(GLProgHSI2YUV().m_nVerCoordLoc, -1);
  EXPECT_EQ(GLProgRGBtoY().m_fShift[7], 0.0f);
  EXPECT_EQ(GLProgRGBtoUV().m_fShift[3], 0.0f);
  EXPECT_FALSE(GLProgCheekSlimmer().m_bShowMask);
  EXPECT_FALSE(GLProgCheekSlimmerLarge().m_bShowMask);
  EXPECT_FALSE(GLProgCheekSlimmerLarge_HSI().m_bShowMask);
  EXPECT_EQ(GLProgFaceWhitening().m_fEllipseController[6][8], 0.0f);
  EXPECT_EQ(GLProgFaceWhiteningLarge().m_fScaleController[3], 0.0f);
  EXPECT_FALSE(GLProgRectificaton().m_bShowMask);
  EXPECT_EQ(GLProgRadialDistortion().m_fvKval[3], 0.0f);
  EXPECT_EQ(SEGLImage(1).m_nFlag, 1);
  EXPECT_EQ(sizeof(FACE_INFO_t), 924u);
}

}  // namespace
