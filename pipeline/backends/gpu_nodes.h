// SPDX-License-Identifier: Apache-2.0
// Whether a machine can have a GPU, without starting a driver.
#ifndef LUMORA_PIPELINE_BACKENDS_GPU_NODES_H_
#define LUMORA_PIPELINE_BACKENDS_GPU_NODES_H_

#include <string>

namespace lumora {

/// Whether a GPU driver of the kernel shows a node below <root>/dev, or that cannot be looked at.
bool HasGpuNode(const std::string& root);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_BACKENDS_GPU_NODES_H_
