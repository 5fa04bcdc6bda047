// SPDX-License-Identifier: Apache-2.0
// Lenses for tests to try.
#ifndef LUMORA_TESTS_PIPELINE_BACKENDS_CPU_RANDOM_LENS_H_
#define LUMORA_TESTS_PIPELINE_BACKENDS_CPU_RANDOM_LENS_H_

#include <random>

#include "lumora/pipeline/lens.h"

namespace lumora::test {

/// A lens as there are some: pixels move by up to a fifth of the frame, inwards or outwards.
inline LensCoefficients RandomLens(std::mt19937& random) {
  const auto within = [&random](float most) {
    return std::uniform_real_distribution<float>(-most, most)(random);
  };
  return {1 + within(0.1f), within(0.1f), within(0.05f), within(0.05f)};
}

}  // namespace lumora::test

#endif  // LUMORA_TESTS_PIPELINE_BACKENDS_CPU_RANDOM_LENS_H_
