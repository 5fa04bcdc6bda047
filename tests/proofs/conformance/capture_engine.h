// SPDX-License-Identifier: Apache-2.0
// Captures for recorded operations.
#ifndef LUMORA_TESTS_CONFORMANCE_CAPTURE_ENGINE_H_
#define LUMORA_TESTS_CONFORMANCE_CAPTURE_ENGINE_H_

#include "proofs/conformance/operations.h"
#include "support/caller_memory.h"

namespace lumora::test {

struct Rect {
  int x, y, width, height;
};

/// An engine after InitCapture, with a grey frame that has nothing to shift; released at the end.
class CaptureEngine {
 public:
  CaptureEngine(int width, int height, bool block_mode)
      : frame_(reference::Frame(width, height, 150, 128, 128)) {
    engine_.InitCapture(frame_.luma(), frame_.chroma(), width, height, nullptr, block_mode);
  }
  ~CaptureEngine() { engine_.DeInitCapture(); }
  CaptureEngine(const CaptureEngine&) = delete;
  CaptureEngine& operator=(const CaptureEngine&) = delete;

  GPUBeautyFace& engine() { return engine_; }
  void expect(const Operation& operation) {
    ExpectTranscript(operation, engine_, frame_.luma(), frame_.chroma());
    EXPECT_TRUE(frame_.intact());
  }

 private:
  GPUBeautyFace engine_;
  CallerFrame frame_;
};

inline float Ratio(int a, int b) {
  return static_cast<float>(a) / static_cast<float>(b);
}

}  // namespace lumora::test

#endif  // LUMORA_TESTS_CONFORMANCE_CAPTURE_ENGINE_H_
