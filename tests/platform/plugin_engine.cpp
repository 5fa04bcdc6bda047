// SPDX-License-Identifier: Apache-2.0
// A plug-in of some application: it slims a frame with an engine of its own.
#include <cstdint>
#include <vector>

#include "lumora/lumora.h"

extern "C" __attribute__((visibility("default"))) int Work() {
  constexpr int kWidth = 64;
  constexpr int kHeight = 48;
  android::GPUBeautyFace engine;
  engine.Init(kWidth, kHeight, kWidth, kHeight, nullptr, false);
  std::vector<uint8_t> frame(kWidth * kHeight * 3 / 2, 100);
  return engine.FaceProcess(frame.data(), frame.data() + kWidth * kHeight, 5, FACE_INFO_t{}, 0);
}
