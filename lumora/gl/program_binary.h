// SPDX-License-Identifier: Apache-2.0
// Programs to and from the files of the binary cache. GLProgram's own SaveBinary and LoadBinary are
// these without the texts.
#ifndef LUMORA_GL_PROGRAM_BINARY_H_
#define LUMORA_GL_PROGRAM_BINARY_H_

#include "lumora/gl/binary_seal.h"

class GLProgram;

namespace lumora {

/// GLProgram::SaveBinary for a program that was compiled from `texts`; null where nobody knows.
bool SaveProgramBinary(const GLProgram& program, const char* path, const ShaderTexts* texts);

/// GLProgram::LoadBinary, for a file that was compiled from `texts`; null takes any.
bool LoadProgramBinary(GLProgram& program, const char* path, const ShaderTexts* texts);

}  // namespace lumora

#endif  // LUMORA_GL_PROGRAM_BINARY_H_
