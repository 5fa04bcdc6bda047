// SPDX-License-Identifier: Apache-2.0
// A capture in block mode, and what a caller holds of it.
#ifndef LUMORA_TESTS_EFFECTS_CAPTURE_SCENE_H_
#define LUMORA_TESTS_EFFECTS_CAPTURE_SCENE_H_

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine/engine_images.h"
#include "reference/capture_blocks.h"
#include "reference/whitening_capture.h"
#include "support/caller_memory.h"
#include "support/faces.h"
#include "support/guarded_buffer.h"

namespace lumora::test {

using reference::Frame;
using reference::Image;
using reference::Rectangle;
using reference::WhiteningRequest;

/// The bytes of two planes as a frame, whose height is even.
Frame FrameOf(const Bytes& planes, int width, int height);

/// Whether every byte lies in its range.
testing::AssertionResult WithinPlanes(const reference::PlaneBounds& expected, const Bytes& actual);

/// An engine after InitCapture in block mode, released at the end.
class CaptureScene {
 public:
  CaptureScene(int width, int height);
  ~CaptureScene();
  CaptureScene(const CaptureScene&) = delete;
  CaptureScene& operator=(const CaptureScene&) = delete;

  GPUBeautyFace& engine() { return engine_; }
  int stride() const { return stride_; }

  /// Whitens faces of a frame that lies in guarded memory; `source` is not written to. Returns
  /// whether the call says 1 and kept to its memory.
  testing::AssertionResult whiten(const Bytes& frame, const std::vector<FaceRecord>& faces,
                                  const WhiteningRequest& request);
  /// The HSI store of the whole frame now.
  Image store();
  /// Replaces the store.
  void set_store(const Image& store);
  /// What CopyMemYUVfromSrcTextureLarge leaves of two planes.
  Bytes brought_back(const Bytes& planes, int faces);

 private:
  int width_, height_;
  int stride_ = 0;
  GPUBeautyFace engine_;
};

/// The planes after the processed blocks of an HSI store were brought back into them.
void PutStore(const Image& store, const reference::CaptureSize& size, const Rectangle& face,
              reference::PlaneBounds* planes);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_EFFECTS_CAPTURE_SCENE_H_
