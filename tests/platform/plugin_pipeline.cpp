// SPDX-License-Identifier: Apache-2.0
// A plug-in of some application: it asks a pipeline of its own what it works with.
#include "lumora/pipeline/pipeline.h"

extern "C" __attribute__((visibility("default"))) int Work() {
  const auto pipeline = lumora::Pipeline::Create({lumora::Device::Gl}, nullptr);
  return pipeline != nullptr && !pipeline->Device().renderer.empty() ? 1 : 0;
}
