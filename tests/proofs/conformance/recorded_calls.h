// SPDX-License-Identifier: Apache-2.0
// How the functions that stand before the driver's write down their calls.
#ifndef LUMORA_TESTS_CONFORMANCE_RECORDED_CALLS_H_
#define LUMORA_TESTS_CONFORMANCE_RECORDED_CALLS_H_

#include <EGL/egl.h>
#include <GLES2/gl2.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "proofs/conformance/gl_recorder.h"
#include "proofs/conformance/gl_text.h"
#include "support/next_function.h"

namespace lumora::test::recorded {

using Arguments = std::vector<CallArgument>;

/// What the process has made so far, followed whether or not anybody records.
struct Tracker {
  std::map<std::pair<ObjectKind, uint64_t>, uint64_t> serials;  ///< by name
  uint64_t last_serial = 0;
  std::map<GLuint, std::string> shaders;                                   ///< by name: its type
  std::map<std::pair<uint64_t, GLint>, std::string> attributes, uniforms;  ///< by program, location
  std::map<GLuint, const float*> pointers;  ///< by attribute location
  uint64_t program = 0;                     ///< the current one's serial
  Bindings bindings;
  GLint configs_answered = 1;
  std::vector<std::string> display_calls;
};
Tracker& Now();

/// Writes a call down, if anybody records.
void Record(const char* function, Arguments arguments);
/// Whether a recorder wants the check behind the last call to find an error. Once a call.
bool CheckFails();

/// A new object of this name.
ObjectId Make(ObjectKind kind, uint64_t name);

CallArgument Object(ObjectKind kind, uint64_t name);
CallArgument Texture(GLuint name);
CallArgument Framebuffer(GLuint name);
CallArgument Program(GLuint name);
CallArgument Egl(ObjectKind kind, const void* handle);
CallArgument Name(GLenum value);
CallArgument Number(int64_t value);
CallArgument Shader(GLuint name);
/// By location in the current program.
CallArgument Uniform(GLint location);
CallArgument Attribute(GLuint location);

}  // namespace lumora::test::recorded

#endif  // LUMORA_TESTS_CONFORMANCE_RECORDED_CALLS_H_
