// The program binary cache of GLProgram: a file is the 32-bit binary format in the machine's byte
// order, then the driver's bytes. A stale or foreign binary is noticed by the driver refusing it.
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "lumora/gl/cache_file.h"
#include "lumora/gl/gl_program.h"
#include "lumora/gl/log.h"
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

}  // namespace

bool GLProgram::SaveBinary(char* path) {
  if (!DriverHasBinaries()) return false;
  if (glIsProgram(m_hProgram) == GL_FALSE) {
    LOGE("[%s] invalid program id %d", "SaveBinary", static_cast<int>(m_hProgram));
    return false;
  }
  GLint length = 0;
  glGetProgramiv(m_hProgram, GL_PROGRAM_BINARY_LENGTH_OES, &length);
  LOGI("[%s] binary length %d bytes", "SaveBinary", length);

  const size_t size = length > 0 ? static_cast<size_t>(length) : 0;
  const std::unique_ptr<unsigned char[]> binary(new (std::nothrow) unsigned char[size]());
  if (binary == nullptr) return false;
  GLenum driver_format = 0;
  lumora::gl::Extensions().glGetProgramBinaryOES(m_hProgram, length, nullptr, &driver_format,
                                                 binary.get());
  LOGI("[%s] proram id %d, binary format is 0x%X", "SaveBinary", static_cast<int>(m_hProgram),
       driver_format);

  lumora::platform::MakeCacheDirectory();
  const BinaryFormat format = driver_format;
  switch (lumora::WriteCacheFile(path, &format, sizeof(format), binary.get(), size)) {
    case lumora::WriteResult::Ok:
      return true;
    case lumora::WriteResult::CannotOpen:
      LOGE("[%s] can't open %s for writing", "SaveBinary", path);
      return false;
    case lumora::WriteResult::CannotWrite:
      break;
  }
  LOGE("[%s] can't write %s", "SaveBinary", path);
  return false;
}

bool GLProgram::LoadBinary(char* path) {
  if (!DriverHasBinaries()) return false;
  lumora::FileBytes file;
  switch (lumora::ReadCacheFile(path, sizeof(BinaryFormat), &file)) {
    case lumora::ReadResult::CannotOpen:
      LOGE("[%s] can't open binary shader file %s", "LoadBinary", path);
      return false;
    case lumora::ReadResult::BadLength:
      LOGE("[%s] invalid shader length", "LoadBinary");
      return false;
    case lumora::ReadResult::Ok:
      break;
  }
  BinaryFormat format = 0;
  std::memcpy(&format, file.data.get(), sizeof(format));

  if (glIsProgram(m_hProgram) != GL_FALSE) glDeleteProgram(m_hProgram);
  m_hProgram = glCreateProgram();
  if (m_hProgram == 0) {
    LOGE("[%s] can't create program\n", "LoadBinary");
    return false;
  }
  lumora::gl::Extensions().glProgramBinaryOES(m_hProgram, format, file.data.get() + sizeof(format),
                                              static_cast<GLint>(file.size - sizeof(format)));
  GLint linked = GL_FALSE;
  glGetProgramiv(m_hProgram, GL_LINK_STATUS, &linked);
  if (linked != GL_FALSE) return true;
  // The refused program object stays; compiling from source takes its place in m_hProgram.
  LOGE("[%s] can't load binary shader", "LoadBinary");
  return false;
}
