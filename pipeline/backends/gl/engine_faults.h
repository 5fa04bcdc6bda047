// SPDX-License-Identifier: Apache-2.0
// What an engine of the library may lack after its set-up, which itself does not tell.
#ifndef LUMORA_PIPELINE_BACKENDS_GL_ENGINE_FAULTS_H_
#define LUMORA_PIPELINE_BACKENDS_GL_ENGINE_FAULTS_H_

#include <initializer_list>

#include "lumora/gl/gl_program.h"
#include "lumora/gl/segl_image.h"
#include "lumora/pipeline/status.h"
#include "lumora/platform/gl_api.h"

namespace lumora {

inline constexpr char kNoContext[] = "the driver gives it no context";
inline constexpr char kNoProgram[] = "a shader program could not be loaded";
inline constexpr char kNoMemory[] = "there is not enough memory for its images";
inline constexpr char kNotDrawable[] = "the driver cannot draw into its images";

/// The first reason why an engine cannot work with these parts, null when there is none.
const char* FaultOf(std::initializer_list<const GLProgram*> programs,
                    std::initializer_list<const SEGLImage*> images,
                    std::initializer_list<GLuint> framebuffers);

/// The failure for such a reason.
Status NotSetUp(const char* fault);

/// The failure of an operation of the engine that came back with 0.
Status EngineRefused();

/// The failure of an engine that has got no context.
Status NoDisplay();

}  // namespace lumora

#endif  // LUMORA_PIPELINE_BACKENDS_GL_ENGINE_FAULTS_H_
