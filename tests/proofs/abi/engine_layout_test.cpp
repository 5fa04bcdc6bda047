// SPDX-License-Identifier: Apache-2.0
// Sizes and offsets of the objects that applications and other code make and read in place.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <type_traits>
#include <vector>

#include "lumora/lumora.h"

namespace lumora::test {
namespace {

struct Member {
  const char* name;
  size_t offset;
  size_t size;
  size_t alignment;
};

// A pointer to a data member is its offset.
template <typename Class, typename Field>
Member Of(const char* name, Field Class::*pointer) {
  size_t offset;
  static_assert(sizeof(offset) == sizeof(pointer));
  std::memcpy(&offset, &pointer, sizeof(offset));
  return {name, offset, sizeof(Field), alignof(Field)};
}

size_t RoundUp(size_t value, size_t unit) {
  return (value + unit - 1) / unit * unit;
}

// Members follow each other from `start`, in the order of the list and with no gaps but those of
// alignment; behind the last lie `hidden` bytes of the class's own.
void ExpectInOrder(size_t start, const std::vector<Member>& members, size_t hidden, size_t size) {
  size_t end = start;
  for (const Member& member : members) {
    EXPECT_EQ(member.offset, RoundUp(end, member.alignment)) << member.name;
    end = member.offset + member.size;
  }
  EXPECT_EQ(size, RoundUp(end + hidden, alignof(void*)));
}

#define LUMORA_MEMBER(name) Of(#name, &Class::name)

TEST(EngineLayout, MembersLieInTheirOrder) {
  using Class = android::GPUBeautyFace;
  static_assert(!std::is_polymorphic_v<Class>);
  const std::vector<Member> members = {
      LUMORA_MEMBER(m_eglDisplay),
      LUMORA_MEMBER(m_eglConfig),
      LUMORA_MEMBER(m_eglSurface),
      LUMORA_MEMBER(m_eglContext),
      LUMORA_MEMBER(m_bEGLReady),
      LUMORA_MEMBER(m_nSrcWidth),
      LUMORA_MEMBER(m_nSrcHeight),
      LUMORA_MEMBER(m_nProcWidth),
      LUMORA_MEMBER(m_nProcHeight),
      LUMORA_MEMBER(m_nYYYYWidth),
      LUMORA_MEMBER(m_nYYYYHeight),
      LUMORA_MEMBER(m_nUVUVWidth),
      LUMORA_MEMBER(m_nUVUVHeight),
      LUMORA_MEMBER(m_nAlignedWidth),
      LUMORA_MEMBER(m_nAlignedHeight),
      LUMORA_MEMBER(m_nFullWidth),
      LUMORA_MEMBER(m_nFullHeight),
      LUMORA_MEMBER(m_hYYYYFbo),
      LUMORA_MEMBER(m_hUVUVFbo),
      LUMORA_MEMBER(m_hWorkFbo),
      LUMORA_MEMBER(m_hRGBFbo),
      LUMORA_MEMBER(m_pWorkImage),
      LUMORA_MEMBER(m_pRGBImage),
      LUMORA_MEMBER(m_pYYYYImage),
      LUMORA_MEMBER(m_pUVUVImage),
      LUMORA_MEMBER(m_spLargeBuffer),
      LUMORA_MEMBER(m_nResultIdx),
      LUMORA_MEMBER(m_pProgRGBtoY),
      LUMORA_MEMBER(m_pProgRGBtoUV),
      LUMORA_MEMBER(m_pProgCheekSlimmer),
      LUMORA_MEMBER(m_pProgYUV2RGB),
      LUMORA_MEMBER(m_pProgRGB2HSI),
      LUMORA_MEMBER(m_pProgHSI2YUV),
      LUMORA_MEMBER(m_pProgFaceWhitening),
      LUMORA_MEMBER(m_pProgYUV2HSI),
      LUMORA_MEMBER(m_pProgRectification),
      LUMORA_MEMBER(m_pProgRadialDistortion),
      LUMORA_MEMBER(m_bColorCvtMode),
      LUMORA_MEMBER(m_bRotate),
      LUMORA_MEMBER(m_bIsInit),
      LUMORA_MEMBER(m_bLargeCapture),
      LUMORA_MEMBER(m_hYTexture),
      LUMORA_MEMBER(m_hCbCrTexture),
      LUMORA_MEMBER(m_bShowMask),
      LUMORA_MEMBER(m_rcFaceProcess),
      LUMORA_MEMBER(m_nFaceWhiteRadius),
      LUMORA_MEMBER(m_nFaceWhiteHalfWidth),
      LUMORA_MEMBER(m_nFaceWhiteHalfHeight),
      LUMORA_MEMBER(m_nFaceWhiteCenterX),
      LUMORA_MEMBER(m_nFaceWhiteCenterY),
  };
  ExpectInOrder(0, members, sizeof(bool), sizeof(Class));
}

TEST(ConverterLayout, MembersLieInTheirOrder) {
  using Class = android::GPUColorConverter;
  static_assert(!std::is_polymorphic_v<Class>);
  const std::vector<Member> members = {
      LUMORA_MEMBER(m_eglDisplay),
      LUMORA_MEMBER(m_eglConfig),
      LUMORA_MEMBER(m_eglSurface),
      LUMORA_MEMBER(m_eglContext),
      LUMORA_MEMBER(m_bEGLReady),
      LUMORA_MEMBER(m_nSrcWidth),
      LUMORA_MEMBER(m_nSrcHeight),
      LUMORA_MEMBER(m_nProcWidth),
      LUMORA_MEMBER(m_nProcHeight),
      LUMORA_MEMBER(m_nYYYYWidth),
      LUMORA_MEMBER(m_nYYYYHeight),
      LUMORA_MEMBER(m_nUVUVWidth),
      LUMORA_MEMBER(m_nUVUVHeight),
      LUMORA_MEMBER(m_nAlignedWidth),
      LUMORA_MEMBER(m_nAlignedHeight),
      LUMORA_MEMBER(m_hFrameBuffer),
      LUMORA_MEMBER(m_pOutputImage),
      LUMORA_MEMBER(m_pInputImage),
      LUMORA_MEMBER(m_hYUV2RGBProgram),
      LUMORA_MEMBER(m_nYUV2RGBVerCoordLoc),
      LUMORA_MEMBER(m_nYUV2RGBTexCoordLoc),
      LUMORA_MEMBER(m_nYUV2RGBTextureSlot),
      LUMORA_MEMBER(m_nYUV2RGBMatrixSlot),
      LUMORA_MEMBER(m_hRGB2HSIProgram),
      LUMORA_MEMBER(m_nRGB2HSIVerCoordLoc),
      LUMORA_MEMBER(m_nRGB2HSITexCoordLoc),
      LUMORA_MEMBER(m_nRGB2HSITextureSlot),
      LUMORA_MEMBER(m_bCreated),
      LUMORA_MEMBER(m_bIsInit),
  };
  ExpectInOrder(0, members, sizeof(bool), sizeof(Class));
}

TEST(BufferLayout, HandleAndRectangleArePlainRecords) {
  {
    using Class = platform::PrivateHandle;
    static_assert(std::is_standard_layout_v<Class>);
    ExpectInOrder(0,
                  {LUMORA_MEMBER(fd), LUMORA_MEMBER(flags), LUMORA_MEMBER(size),
                   LUMORA_MEMBER(offset), LUMORA_MEMBER(base)},
                  0, sizeof(Class));
  }
  using Class = android::FaceProcessRect;
  static_assert(std::is_standard_layout_v<Class> && sizeof(Class) == 5 * sizeof(int));
  EXPECT_EQ(offsetof(Class, X), 0u);
  EXPECT_EQ(offsetof(Class, Y), 4u);
  EXPECT_EQ(offsetof(Class, Width), 8u);
  EXPECT_EQ(offsetof(Class, Height), 12u);
  EXPECT_EQ(offsetof(Class, nFlag), 16u);
}

TEST(BufferLayout, BufferIsATableACountAndItsState) {
  EXPECT_EQ(sizeof(platform::RefBase), 2 * sizeof(void*));
  EXPECT_EQ(sizeof(platform::GraphicBuffer), 3 * sizeof(void*));
  EXPECT_EQ(sizeof(platform::sp<platform::GraphicBuffer>), sizeof(void*));
  static_assert(!std::is_polymorphic_v<SEGLImage>);
}

// Enumerations cross the interface as plain numbers.
TEST(Enumerations, HaveFixedSizesAndValues) {
  static_assert(sizeof(BEAUTYSHOT_EFFECT_t) == 4);
  EXPECT_EQ(BEAUTYSHOT_EFFECT_INTENSITY, 3);
  EXPECT_EQ(BEAUTYSHOT_EFFECT_SATURATION, 4);
  EXPECT_EQ(BEAUTYSHOT_EFFECT_BOTH, 8);
  EXPECT_EQ(BEAUTYSHOT_EFFECT_MASK, 15);
  EXPECT_EQ(static_cast<int>(platform::BufferKind::Staged), 0);
  EXPECT_EQ(static_cast<int>(platform::BufferKind::MemoryObject), 1);
  EXPECT_EQ(static_cast<int>(platform::BufferKind::DmaBuf), 2);
  EXPECT_EQ(static_cast<int>(platform::BufferKind::HardwareBuffer), 3);
}

}  // namespace
}  // namespace lumora::test
