// SPDX-License-Identifier: Apache-2.0
// What the gl backend shows of itself.
#include "pipeline/backends/gl_module.h"

const lumora::GlModule* LumoraPipelineGl() {
  static constexpr lumora::GlModule kModule = {LUMORA_VERSION, lumora::MakeGlBackend,
                                               lumora::MakeGlConverter};
  return &kModule;
}
