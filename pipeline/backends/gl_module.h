// SPDX-License-Identifier: Apache-2.0
// The gl backend is a part of its own, which only who needs it loads: with it come the engine's
// library, EGL and OpenGL ES, and nothing else of the pipeline knows them.
#ifndef LUMORA_PIPELINE_BACKENDS_GL_MODULE_H_
#define LUMORA_PIPELINE_BACKENDS_GL_MODULE_H_

#include <memory>

#include "lumora/pipeline/status.h"
#include "pipeline/backends/backend.h"

namespace lumora {

/// What the module offers. One of another version is not asked for more than its version, which
/// therefore stays the first member.
struct GlModule {
  const char* version;
  Status (*make_backend)(std::unique_ptr<Backend>* backend);
  Status (*make_converter)(std::unique_ptr<ConverterBackend>* converter);
};

/// The module, which then stays for the life of the process, or a sentence that tells why there is
/// none: NoDisplay, or EngineFailed where memory is short. Where the build links it in (gl_linked)
/// there always is; else it is loaded (gl_loaded) from the folder lumora beside the library.
///
/// Thread-safety: any thread.
Status FindGlModule(const GlModule** module);

}  // namespace lumora

/// The module's one name.
extern "C" __attribute__((visibility("default"))) const lumora::GlModule* LumoraPipelineGl();

#endif  // LUMORA_PIPELINE_BACKENDS_GL_MODULE_H_
