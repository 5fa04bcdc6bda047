// SPDX-License-Identifier: Apache-2.0
// One engine and its model, slimming the same frames.
#ifndef LUMORA_TESTS_ENGINE_SLIMMING_SCENE_H_
#define LUMORA_TESTS_ENGINE_SLIMMING_SCENE_H_

#include <gtest/gtest.h>

#include <vector>

#include "engine/engine_images.h"
#include "reference/engine_model.h"
#include "support/caller_memory.h"

namespace lumora::test {

using reference::FaceRecord;

/// The records as the engine takes them.
std::vector<FACE_INFO_t> RecordsOf(const std::vector<FaceRecord>& faces);

class SlimmingScene {
 public:
  /// Frames of src size, results of proc size; the engine's images start as zeros, as the model's
  /// do.
  SlimmingScene(int src_width, int src_height, int proc_width, int proc_height,
                bool show_mask = false);
  SlimmingScene(int width, int height, bool show_mask = false)
      : SlimmingScene(width, height, width, height, show_mask) {}

  /// Whether the engine's result is one that the model allows. Pixels whose sample falls on the
  /// border of two texels, up to the model's slack, may come from either; mask marks within the
  /// model's ratio slack of their limits may be there or not. Nothing else is excused.
  testing::AssertionResult slims(const reference::Frame& frame, int level, const FaceRecord& face);
  testing::AssertionResult slims_all(const reference::Frame& frame, int level,
                                     const std::vector<FaceRecord>& faces);

  GPUBeautyFace& engine() { return engine_; }
  reference::PreviewModel& model() { return model_; }
  /// The result of the last call.
  const reference::Frame& result() const { return result_; }

 private:
  testing::AssertionResult compared(const reference::FrameBounds& expected, int returned,
                                    const CallerFrame& caller);

  int width_, height_;
  GPUBeautyFace engine_;
  reference::PreviewModel model_;
  reference::Frame result_;
};

}  // namespace lumora::test

#endif  // LUMORA_TESTS_ENGINE_SLIMMING_SCENE_H_
