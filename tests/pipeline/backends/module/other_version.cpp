// SPDX-License-Identifier: Apache-2.0
// A module of a version that there is not, which offers nothing else.
#include "pipeline/backends/gl_module.h"

const lumora::GlModule* LumoraPipelineGl() {
  static constexpr lumora::GlModule kModule = {"0.0.0", nullptr, nullptr};
  return &kModule;
}
