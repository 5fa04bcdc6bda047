// SPDX-License-Identifier: Apache-2.0
// Everything that the renderer computes, in pieces: single passes from fixed pictures, and whole
// operations of the engine from a fixed frame.
#ifndef LUMORA_TESTS_DETERMINISM_STAGES_H_
#define LUMORA_TESTS_DETERMINISM_STAGES_H_

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace lumora::test {

/// A piece and the bytes that it gives.
struct Stage {
  std::string name;  ///< also a file name
  std::function<std::vector<uint8_t>()> render;
};

/// Single passes of the shader programs. They draw in the current context.
std::vector<Stage> PassStages();
/// Operations of an engine, from the caller's planes to the caller's planes. They make contexts of
/// their own.
std::vector<Stage> OperationStages();

}  // namespace lumora::test

#endif  // LUMORA_TESTS_DETERMINISM_STAGES_H_
