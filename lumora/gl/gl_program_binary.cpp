// SPDX-License-Identifier: Apache-2.0
// The program binary cache of GLProgram: a file is the 32-bit binary format in the machine's byte
// order, then the driver's bytes. The driver gets to see no bytes but those that it gave itself:
// the file's seal tells.
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "lumora/gl/gl_program.h"
#include "lumora/gl/log.h"
#include "lumora/gl/program_binary.h"
#include "lumora/platform/gl_api.h"
#include "lumora/platform/settings.h"

LUMORA_LOG_TAG("GLProgram");

namespace {

using BinaryFormat = uint32_t;

/// Whether the driver can give and take program binaries. Some offer the extension with no format.
bool DriverHasBinaries() {
  const auto* extensions = reinterpret_cast<const char*>(glGetString(GL_EXTENSIONS));
  if (!lumora::gl::HasExtension(extensions, "GL_OES_get_program_binary")) return false;
  GLint formats = 0;
  glGetIntegerv(GL_NUM_PROGRAM_BINARY_FORMATS_OES, &formats);
  const auto& api = lumora::gl::Extensions();
  return formats > 0 && api.glGetProgramBinaryOES != nullptr && api.glProgramBinaryOES != nullptr;
}

/// Whether the driver makes a program of the bytes behind a file's format word.
bool DriverTakes(GLuint program, const lumora::FileBytes& file) {
  BinaryFormat format = 0;
  std::memcpy(&format, file.data.get(), sizeof(format));
  lumora::gl::Extensions().glProgramBinaryOES(program, format, file.data.get() + sizeof(format),
                                              static_cast<GLint>(file.size - sizeof(format)));
  GLint linked = GL_FALSE;
  glGetProgramiv(program, GL_LINK_STATUS, &linked);
  return linked != GL_FALSE;
}

}  // namespace

namespace lumora {

bool SaveProgramBinary(const GLProgram& program, const char* path, const ShaderTexts* texts) {
  if (!DriverHasBinaries()) return false;
  const GLuint name = program.m_hProgram;
  if (glIsProgram(name) == GL_FALSE) {
    LOGE("[%s] invalid program id %d", "SaveBinary", static_cast<int>(name));
    return false;
  }
  GLint length = 0;
  glGetProgramiv(name, GL_PROGRAM_BINARY_LENGTH_OES, &length);
  LOGI("[%s] binary length %d bytes", "SaveBinary", length);

  const size_t size = length > 0 ? static_cast<size_t>(length) : 0;
  const std::unique_ptr<unsigned char[]> binary(new (std::nothrow) unsigned char[size]());
  if (binary == nullptr) return false;
  GLenum driver_format = 0;
  gl::Extensions().glGetProgramBinaryOES(name, length, nullptr, &driver_format, binary.get());
  LOGI("[%s] proram id %d, binary format is 0x%X", "SaveBinary", static_cast<int>(name),
       driver_format);
  // The driver kept its binary to itself: there is nothing to vouch for.
  if (size == 0 || driver_format == 0) return false;

  platform::MakeCacheDirectory();
  const BinaryFormat format = driver_format;
  const ByteSpan head = {&format, sizeof(format)};
  const ByteSpan body = {binary.get(), size};
  const BinarySeal seal = SealOf(head, body, texts);
  switch (WriteCacheFile(path, head, body, {seal.text, seal.size})) {
    case WriteResult::Ok:
      return true;
    case WriteResult::CannotOpen:
      LOGE("[%s] can't open %s for writing", "SaveBinary", path);
      return false;
    case WriteResult::CannotWrite:
      break;
  }
  LOGE("[%s] can't write %s", "SaveBinary", path);
  return false;
}

bool LoadProgramBinary(GLProgram& program, const char* path, const ShaderTexts* texts) {
  if (!DriverHasBinaries()) return false;
  FileBytes file;
  switch (ReadCacheFile(path, sizeof(BinaryFormat), &file)) {
    case ReadResult::CannotOpen:
      LOGE("[%s] can't open binary shader file %s", "LoadBinary", path);
      return false;
    case ReadResult::BadLength:
      LOGE("[%s] invalid shader length", "LoadBinary");
      return false;
    case ReadResult::Ok:
      break;
  }

  if (glIsProgram(program.m_hProgram) != GL_FALSE) glDeleteProgram(program.m_hProgram);
  program.m_hProgram = glCreateProgram();
  if (program.m_hProgram == 0) {
    LOGE("[%s] can't create program\n", "LoadBinary");
    return false;
  }
  if (IsVouchedFor(file, texts) && DriverTakes(program.m_hProgram, file)) return true;
  // The refused program object stays; compiling from source takes its place in m_hProgram.
  LOGE("[%s] can't load binary shader", "LoadBinary");
  return false;
}

}  // namespace lumora

bool GLProgram::SaveBinary(char* path) {
  return lumora::SaveProgramBinary(*this, path, nullptr);
}

bool GLProgram::LoadBinary(char* path) {
  return lumora::LoadProgramBinary(*this, path, nullptr);
}
