// SPDX-License-Identifier: Apache-2.0
#include "engine/capture_scene.h"

#include <algorithm>
#include <cstring>

#include "reference/colour_bounds.h"

namespace lumora::test {

Frame FrameOf(const Bytes& planes, int width, int height) {
  Frame frame(width, height);
  std::copy_n(planes.begin(), frame.bytes.size(), frame.bytes.begin());
  return frame;
}

testing::AssertionResult WithinPlanes(const reference::PlaneBounds& expected, const Bytes& actual) {
  if (actual.size() != expected.low.size()) return testing::AssertionFailure() << "other sizes";
  const size_t luma = LumaSize(expected.width, expected.height);
  size_t wrong = 0;
  size_t first = 0;
  for (size_t i = 0; i < actual.size(); ++i) {
    if (expected.low[i] <= actual[i] && actual[i] <= expected.high[i]) continue;
    if (wrong++ == 0) first = i;
  }
  if (wrong == 0) return testing::AssertionSuccess();
  const size_t place = first < luma ? first : first - luma;
  const auto width = static_cast<size_t>(expected.width);
  return testing::AssertionFailure()
         << wrong << " bytes are out of range; the first: " << (first < luma ? "luma" : "chroma")
         << " row " << place / width << ", byte " << place % width << ": expected "
         << int{expected.low[first]} << " to " << int{expected.high[first]} << ", is "
         << int{actual[first]};
}

CaptureScene::CaptureScene(int width, int height) : width_(width), height_(height) {
  engine_.InitCapture(nullptr, nullptr, width, height, &stride_, true);
}

CaptureScene::~CaptureScene() {
  engine_.DeInitCapture();
}

testing::AssertionResult CaptureScene::whiten(const Bytes& frame,
                                              const std::vector<FaceRecord>& faces,
                                              const WhiteningRequest& request) {
  CallerFrame caller(width_, height_, frame);
  std::vector<FACE_INFO_t> records = RecordsFrom(faces);
  const int returned = engine_.DoFaceWhiteningLarge(
      caller.luma(), caller.chroma(), records.data(), static_cast<int>(records.size()),
      request.intensity_level, request.saturation_level,
      static_cast<BEAUTYSHOT_EFFECT_t>(request.effect));
  if (returned != 1) return testing::AssertionFailure() << "the call returned " << returned;
  if (engine_.m_nResultIdx != 1) return testing::AssertionFailure() << "another result index";
  if (!caller.intact() || caller.bytes() != frame) {
    return testing::AssertionFailure() << "the caller's frame was written to";
  }
  return testing::AssertionSuccess();
}

Image CaptureScene::store() {
  if (!engine_.m_bLargeCapture) return PixelsOf(*engine_.m_pWorkImage[1]);
  Image image(stride_, height_);
  void* memory = nullptr;
  engine_.m_spLargeBuffer->lock(0x33, &memory);
  std::memcpy(image.bytes.data(), memory, image.bytes.size());
  engine_.m_spLargeBuffer->unlock();
  return image;
}

void CaptureScene::set_store(const Image& store) {
  if (!engine_.m_bLargeCapture) return SetPixels(*engine_.m_pWorkImage[1], store);
  void* memory = nullptr;
  engine_.m_spLargeBuffer->lock(0x33, &memory);
  std::memcpy(memory, store.bytes.data(), store.bytes.size());
  engine_.m_spLargeBuffer->unlock();
}

Bytes CaptureScene::brought_back(const Bytes& planes, int faces) {
  CallerPlanes caller(width_, height_, planes);
  EXPECT_EQ(1, engine_.CopyMemYUVfromSrcTextureLarge(caller.luma(), caller.chroma(), 0, faces));
  EXPECT_TRUE(caller.intact());
  return caller.bytes();
}

void PutStore(const Image& store, const reference::CaptureSize& size, const Rectangle& face,
              reference::PlaneBounds* planes) {
  for (const Rectangle& block : BlocksOf(size, face, size.width)) {
    reference::ImageBounds drawn(size.block_width, size.block_height);
    for (int y = 0; y < size.block_height; ++y) {
      for (int x = 0; x < size.block_width; ++x) {
        // Beyond the store its edge is repeated.
        const reference::TexelBounds yuv = reference::HsiToYuvBounds(store.at(
            std::min(block.x + x, store.width - 1), std::min(block.y + y, store.height - 1)));
        drawn.low.set(x, y, yuv.low);
        drawn.high.set(x, y, yuv.high);
      }
    }
    planes->put(block, drawn);
  }
}

}  // namespace lumora::test
