// A frame like the one before it needs no memory that the one before did not have.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <new>
#include <vector>

#include "effects/faces.h"
#include "lumora/lumora.h"
#include "support/pictures.h"

namespace {

// The allocations of this thread while they are counted. The library is linked statically, so that
// its own are among them.
thread_local bool g_counting = false;
thread_local int g_allocations = 0;

void* Allocate(size_t size) {
  if (g_counting) ++g_allocations;
  return std::malloc(size == 0 ? 1 : size);
}

}  // namespace

void* operator new(size_t size) {
  void* const memory = Allocate(size);
  if (memory == nullptr) std::abort();
  return memory;
}
void* operator new(size_t size, const std::nothrow_t&) noexcept {
  return Allocate(size);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, size_t) noexcept {
  std::free(memory);
}

namespace lumora::test {
namespace {

using android::GPUBeautyFace;

constexpr int kWidth = 160;
constexpr int kHeight = 120;

int AllocationsOf(const std::function<void()>& frame) {
  constexpr int kWarmUp = 4;  // programs, filters and digests settle
  for (int i = 0; i < kWarmUp; ++i) frame();
  g_allocations = 0;
  g_counting = true;
  for (int i = 0; i < 5; ++i) frame();
  g_counting = false;
  return g_allocations;
}

TEST(SteadyState, CountsAllocations) {
  EXPECT_EQ(5, AllocationsOf([] { ::operator delete(::operator new(1)); }));
}

TEST(SteadyState, SlimmedFramesAllocateNothing) {
  GPUBeautyFace engine;
  engine.Init(kWidth, kHeight, kWidth, kHeight, nullptr, false);
  std::vector<uint8_t> frame = TextureFrame(kWidth, kHeight).bytes;
  std::vector<FACE_INFO_t> faces =
      RecordsFrom({PortraitFace(50, 60, 20), PortraitFace(110, 60, 25)});
  uint8_t* const chroma = frame.data() + kWidth * kHeight;
  EXPECT_EQ(0, AllocationsOf([&] { engine.FaceProcess(frame.data(), chroma, 5, faces[0], 0); }));
  EXPECT_EQ(0, AllocationsOf([&] {
              engine.FaceProcessMultiface(frame.data(), chroma, 5, faces.data(), 2, 0);
            }));
  EXPECT_EQ(0, AllocationsOf([&] { engine.Rectification(frame.data(), chroma, 2, 0); }));
}

TEST(SteadyState, WhitenedFramesAllocateNothing) {
  GPUBeautyFace engine;
  engine.Init(kWidth, kHeight, kWidth, kHeight, nullptr, true);
  std::vector<uint8_t> frame = TextureFrame(kWidth, kHeight).bytes;
  std::vector<FACE_INFO_t> faces = RecordsFrom({PortraitFace(80, 60, 30)});
  EXPECT_EQ(0, AllocationsOf([&] {
              engine.LoadPreviewFrameBuffer(frame.data());
              engine.ConvertYUV();
              engine.DoFaceWhitening(faces.data(), 1, 40, 20, BEAUTYSHOT_EFFECT_BOTH);
              engine.ConvertHSItoYUV();
              engine.CopyMemYUVfromSrcTexture(frame.data(), frame.data() + kWidth * kHeight);
            }));
}

}  // namespace
}  // namespace lumora::test
