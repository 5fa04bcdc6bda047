// SPDX-License-Identifier: Apache-2.0
// Operations of an engine as rows of a table: what to call, what is to come of it.
#ifndef LUMORA_TESTS_CONFORMANCE_OPERATIONS_H_
#define LUMORA_TESTS_CONFORMANCE_OPERATIONS_H_

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "engine/engine_images.h"
#include "proofs/conformance/contract.h"
#include "reference/face_record.h"
#include "reference/warp_parameters.h"

namespace lumora::test {

/// An operation on an engine that is set up, and the planes of a caller's frame.
struct Operation {
  std::string name;
  std::function<int(GPUBeautyFace&, unsigned char* luma, unsigned char* chroma)> run;
  std::function<Script(const GPUBeautyFace&)> expected;  ///< asked for behind the call
  int result = 1;
};
inline void PrintTo(const Operation& operation, std::ostream* out) {
  *out << operation.name;
}

/// Runs an operation and compares its result and its transcript.
void ExpectTranscript(const Operation& operation, GPUBeautyFace& engine, unsigned char* luma,
                      unsigned char* chroma);

// ---- Parts of operations ------------------------------------------------------------------------

/// A pass over the engine's whole viewport.
Pass WholePass(const GPUBeautyFace& engine, const std::string& program, const std::string& source,
               const std::string& target);

/// The lines of measuring one face for slimming, and the warp that it gives. `warp` keeps what a
/// rejected face leaves.
Script SlimmingMeasured(const GPUBeautyFace& engine, const reference::FaceRecord& face, int level,
                        bool capture, reference::WarpMembers* warp);
Uniforms UniformsOf(const reference::WarpMembers& warp);
/// The lines of measuring one face for whitening that has nothing to shift.
Script WhiteningMeasured(int effect);
/// The whitening's uniforms without shifts.
Uniforms NothingShifted(const GPUBeautyFace& engine);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_CONFORMANCE_OPERATIONS_H_
