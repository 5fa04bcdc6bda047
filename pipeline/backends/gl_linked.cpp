// SPDX-License-Identifier: Apache-2.0
// The gl backend as a part that is linked in.
#include "pipeline/backends/gl_module.h"

namespace lumora {

Status FindGlModule(const GlModule** module) {
  *module = LumoraPipelineGl();
  return {};
}

}  // namespace lumora
