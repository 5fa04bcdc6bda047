// SPDX-License-Identifier: Apache-2.0
// The engines that whiten crops.
#ifndef LUMORA_PIPELINE_BACKENDS_GL_CROP_SETUPS_H_
#define LUMORA_PIPELINE_BACKENDS_GL_CROP_SETUPS_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "pipeline/backends/gl/engine_setup.h"

namespace lumora {

/// Engines that are set up for crops of a few sizes each: a face that trembles between two sizes,
/// and several faces of one frame, find theirs again. A set-up costs more than drawing a crop.
///
/// Thread: that of the engines, as EngineSetup says.
class CropSetups {
 public:
  static constexpr size_t kMost = 4;

  /// Finds or makes a set-up for crops of that size, and makes its context the thread's. Those that
  /// were used longest ago go where there are too many or where all of them together hold more than
  /// `most_pixels`. What is found holds until the next call.
  Status Find(int width, int height, int64_t most_pixels, EngineSetup** setup);

  /// How many set-ups were made so far.
  int made() const { return made_; }

  void Release() { engines_.clear(); }

 private:
  std::vector<std::unique_ptr<EngineSetup>> engines_;  // the one used last comes last
  int made_ = 0;
};

}  // namespace lumora

#endif  // LUMORA_PIPELINE_BACKENDS_GL_CROP_SETUPS_H_
