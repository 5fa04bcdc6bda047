// SPDX-License-Identifier: Apache-2.0
// Free functions that every part of the library uses to talk to OpenGL ES 2.0 and to the log.
//
// Context: every function but LogLine, LocIsValid and GenTexture needs the library's context
// current on the calling thread. Nothing throws; failures come back as 0 or false and are told to
// the log under the tag "EGLImageTest".
#ifndef LUMORA_GL_GL_HELPERS_H_
#define LUMORA_GL_GL_HELPERS_H_

#include "lumora/export.h"

/// Prints the formatted text at INFO, whatever the tag's level mask says. Returns what the
/// platform's log call returns.
LUMORA_API int LogLine(const char* fmt, ...) __attribute__((format(printf, 1, 2)));

/// Prints "GL <name> = <glGetString(id)>" at INFO.
LUMORA_API void printGLString(const char* name, unsigned int id);

/// Empties the GL error queue; prints "after <op>() glError (0x<code>)" at INFO for each error, in
/// queue order. Always returns 0: errors are reported here, never acted on.
LUMORA_API int checkGlError(const char* op);

/// Whether an attribute or uniform location was found (0 or greater). An invalid one is reported at
/// ERROR under `name`.
LUMORA_API bool LocIsValid(const char* name, int loc);

/// Compiles one shader of `type` (GL_VERTEX_SHADER or GL_FRAGMENT_SHADER). Returns its name, owned
/// by the caller, or 0 with the compiler's log at ERROR. A failed compile whose log is empty is
/// returned as if it had succeeded; linking it will then fail.
LUMORA_API unsigned int loadShader(unsigned int type, const char* source);

/// Builds a program from two sources. Returns its name, owned by the caller, or 0 with the linker's
/// log at ERROR. The shaders stay attached for the program's lifetime and are never deleted.
LUMORA_API unsigned int createProgram(const char* vertexSource, const char* fragmentSource);

/// Makes level 0 of `texture` the colour attachment of the bound framebuffer. Returns whether the
/// framebuffer is complete; an incomplete one is reported at ERROR, and the texture stays attached.
/// `texture` is bound to `target` afterwards.
LUMORA_API bool SetColorAttachment(unsigned int target, unsigned int texture);

/// A new buffer of width x height RGBA pixels, 4 bytes each without padding, to be released with
/// free(). Despite the name it makes no GL texture. `colour`: 0 fills it with opaque red, 1 green,
/// 2 blue; any other value leaves it unfilled.
LUMORA_API unsigned char* GenTexture(unsigned int width, unsigned int height, int colour);

#endif  // LUMORA_GL_GL_HELPERS_H_
