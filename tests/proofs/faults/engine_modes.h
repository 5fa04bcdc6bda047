// SPDX-License-Identifier: Apache-2.0
// The ways in which an engine is set up, and what is done with it then.
#ifndef LUMORA_TESTS_FAULTS_ENGINE_MODES_H_
#define LUMORA_TESTS_FAULTS_ENGINE_MODES_H_

#include <string>
#include <vector>

#include "lumora/engine/gpu_beauty_face.h"
#include "proofs/faults/setup_model.h"
#include "support/caller_memory.h"
#include "support/log_capture.h"

namespace lumora::test {

using android::GPUBeautyFace;

/// One public operation of an engine that is set up.
struct Step {
  const char* name;
  int (*run)(GPUBeautyFace& engine, CallerFrame& frame);
};

struct Mode {
  const char* name;
  int width, height;
  std::vector<const char*> images;           ///< with shared memory
  std::vector<const char*> colour_programs;  ///< made by InitColorCvtShader
  std::vector<const char*> programs;
  const char* program_step;  ///< the function that makes them
  int (*set_up)(GPUBeautyFace& engine);
  int (*release)(GPUBeautyFace& engine);
  std::vector<Step> steps;
};

const std::vector<Mode>& AllModes();

/// What the mode's set-up calls, in order.
Parts PartsOf(const Mode& mode, Cache cache, const std::string& directory, bool staged);

/// The frame that every step gets.
const Bytes& PicturePlanes(const Mode& mode);

/// What a step leaves: its result, the caller's frame, and the ERROR lines.
struct Outcome {
  int result = 0;
  Bytes frame;
  std::vector<LogLine> errors;
};
/// Whether two outcomes are the same to the caller.
bool SameForCaller(const Outcome& a, const Outcome& b);

/// Runs one step on a fresh frame. Reports results other than 0 and 1 and writes outside the frame.
Outcome RunStep(const Step& step, const Mode& mode, GPUBeautyFace& engine);
std::vector<Outcome> RunAll(const Mode& mode, GPUBeautyFace& engine);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_FAULTS_ENGINE_MODES_H_
