// SPDX-License-Identifier: Apache-2.0
// The preview operations.
#ifndef LUMORA_TESTS_CONFORMANCE_PREVIEW_OPERATIONS_H_
#define LUMORA_TESTS_CONFORMANCE_PREVIEW_OPERATIONS_H_

#include <vector>

#include "proofs/conformance/operations.h"

namespace lumora::test {

/// Those that every set-up has: single passes and small ones, slimming and rectification,
/// whitening.
std::vector<Operation> PreviewOperations();
/// Those of colour-convert mode.
std::vector<Operation> ColourOperations();

}  // namespace lumora::test

#endif  // LUMORA_TESTS_CONFORMANCE_PREVIEW_OPERATIONS_H_
