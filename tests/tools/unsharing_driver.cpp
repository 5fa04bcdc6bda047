// SPDX-License-Identifier: Apache-2.0
// To be loaded before a driver: images of more than 200 rows do not get the memory that they
// import, but memory of their own.
#include <EGL/egl.h>
#include <GLES2/gl2.h>
#include <GLES2/gl2ext.h>

#include "support/driver_extensions.h"
#include "support/next_function.h"

namespace {

lumora::test::DriverExtensions g_driver;

void GL_APIENTRY StorageMemory(GLenum target, GLsizei levels, GLenum format, GLsizei width,
                               GLsizei height, GLuint memory, GLuint64 offset) {
  if (height <= 200) {
    g_driver.storage_memory(target, levels, format, width, height, memory, offset);
  } else {
    glTexImage2D(target, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
  }
}

}  // namespace

extern "C" __attribute__((visibility("default")))
__eglMustCastToProperFunctionPointerType EGLAPIENTRY
eglGetProcAddress(const char* name) {
  lumora::test::DriverExtensions replacements;
  replacements.storage_memory = &StorageMemory;
  return lumora::test::ReplaceExtension(name, LUMORA_NEXT(eglGetProcAddress)(name), g_driver,
                                        replacements);
}
