// SPDX-License-Identifier: Apache-2.0
// The driver's extension functions that the library asks for by name, for files that stand before
// eglGetProcAddress.
#ifndef LUMORA_TESTS_SUPPORT_DRIVER_EXTENSIONS_H_
#define LUMORA_TESTS_SUPPORT_DRIVER_EXTENSIONS_H_

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GLES2/gl2.h>
#include <GLES2/gl2ext.h>

#include <cstring>
#include <type_traits>

namespace lumora::test {

struct DriverExtensions {
  PFNEGLCREATEIMAGEKHRPROC create_image = nullptr;
  PFNEGLDESTROYIMAGEKHRPROC destroy_image = nullptr;
  PFNGLEGLIMAGETARGETTEXTURE2DOESPROC image_target = nullptr;
  PFNGLGETPROGRAMBINARYOESPROC get_binary = nullptr;
  PFNGLPROGRAMBINARYOESPROC program_binary = nullptr;
  PFNGLCREATEMEMORYOBJECTSEXTPROC create_memory = nullptr;
  PFNGLDELETEMEMORYOBJECTSEXTPROC delete_memory = nullptr;
  PFNGLIMPORTMEMORYFDEXTPROC import_memory = nullptr;
  PFNGLTEXSTORAGEMEM2DEXTPROC storage_memory = nullptr;
};

/// What eglGetProcAddress is to give for `name`: the replacement, with the driver's function kept
/// in `driver`; or what was found, where there is no replacement. What is missing stays missing.
inline __eglMustCastToProperFunctionPointerType ReplaceExtension(
    const char* name, __eglMustCastToProperFunctionPointerType found, DriverExtensions& driver,
    const DriverExtensions& replacements) {
  using Procedure = decltype(found);
  const auto offer = [&](const char* extension, auto DriverExtensions::*function) {
    if (replacements.*function == nullptr || std::strcmp(name, extension) != 0) return;
    driver.*function = reinterpret_cast<std::decay_t<decltype(driver.*function)>>(found);
    if (found != nullptr) found = reinterpret_cast<Procedure>(replacements.*function);
  };
  offer("eglCreateImageKHR", &DriverExtensions::create_image);
  offer("eglDestroyImageKHR", &DriverExtensions::destroy_image);
  offer("glEGLImageTargetTexture2DOES", &DriverExtensions::image_target);
  offer("glGetProgramBinaryOES", &DriverExtensions::get_binary);
  offer("glProgramBinaryOES", &DriverExtensions::program_binary);
  offer("glCreateMemoryObjectsEXT", &DriverExtensions::create_memory);
  offer("glDeleteMemoryObjectsEXT", &DriverExtensions::delete_memory);
  offer("glImportMemoryFdEXT", &DriverExtensions::import_memory);
  offer("glTexStorageMem2DEXT", &DriverExtensions::storage_memory);
  return found;
}

}  // namespace lumora::test

#endif  // LUMORA_TESTS_SUPPORT_DRIVER_EXTENSIONS_H_
