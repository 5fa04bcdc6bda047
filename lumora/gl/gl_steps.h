// SPDX-License-Identifier: Apache-2.0
// What every part of the library does with OpenGL ES 2.0 and the log: the bodies of the exported
// helpers (gl_helpers.h says what each does), under names that no application has. The library
// calls these, so that an application's own loadShader or checkGlError stays out of it.
#ifndef LUMORA_GL_GL_STEPS_H_
#define LUMORA_GL_GL_STEPS_H_

#include <cstdarg>

namespace lumora::gl {

/// LogLine.
int LogUnmasked(const char* fmt, ...) __attribute__((format(printf, 1, 2)));
int LogUnmaskedList(const char* fmt, va_list arguments) __attribute__((format(printf, 1, 0)));

/// printGLString.
void PrintGlString(const char* name, unsigned int id);

/// checkGlError.
int CheckGlError(const char* op);

/// LocIsValid.
bool LocationIsValid(const char* name, int loc);

/// loadShader.
unsigned int LoadShader(unsigned int type, const char* source);

/// createProgram.
unsigned int CreateProgram(const char* vertexSource, const char* fragmentSource);

/// SetColorAttachment.
bool AttachColour(unsigned int target, unsigned int texture);

}  // namespace lumora::gl

#endif  // LUMORA_GL_GL_STEPS_H_
