// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/gl_api.h"

#include <cstring>

namespace lumora::gl {
namespace {

template <typename Function>
void Look(Function& function, const char* name) {
  function = reinterpret_cast<Function>(eglGetProcAddress(name));
}

ExtensionApi LookUpAll() {
  ExtensionApi api{};
  Look(api.eglCreateImageKHR, "eglCreateImageKHR");
  Look(api.eglDestroyImageKHR, "eglDestroyImageKHR");
  Look(api.glEGLImageTargetTexture2DOES, "glEGLImageTargetTexture2DOES");
  Look(api.glGetProgramBinaryOES, "glGetProgramBinaryOES");
  Look(api.glProgramBinaryOES, "glProgramBinaryOES");
  Look(api.eglGetPlatformDisplayEXT, "eglGetPlatformDisplayEXT");
  Look(api.eglQueryDevicesEXT, "eglQueryDevicesEXT");
  Look(api.eglQueryDeviceStringEXT, "eglQueryDeviceStringEXT");
  Look(api.glCreateMemoryObjectsEXT, "glCreateMemoryObjectsEXT");
  Look(api.glDeleteMemoryObjectsEXT, "glDeleteMemoryObjectsEXT");
  Look(api.glGetUnsignedBytevEXT, "glGetUnsignedBytevEXT");
  Look(api.glGetUnsignedBytei_vEXT, "glGetUnsignedBytei_vEXT");
  Look(api.glImportMemoryFdEXT, "glImportMemoryFdEXT");
  Look(api.glTexStorageMem2DEXT, "glTexStorageMem2DEXT");
  Look(api.glObjectLabelKHR, "glObjectLabelKHR");
  Look(api.glGetObjectLabelKHR, "glGetObjectLabelKHR");
  return api;
}

}  // namespace

const ExtensionApi& Extensions() {
  static const ExtensionApi api = LookUpAll();
  return api;
}

bool HasExtension(const char* extensions, const char* name) {
  const size_t length = std::strlen(name);
  if (extensions == nullptr || length == 0) return false;
  for (const char* word = std::strstr(extensions, name); word != nullptr;
       word = std::strstr(word + length, name)) {
    const bool starts = word == extensions || word[-1] == ' ';
    const bool ends = word[length] == ' ' || word[length] == '\0';
    if (starts && ends) return true;
  }
  return false;
}

bool ContextHasExtension(const char* name) {
  return HasExtension(reinterpret_cast<const char*>(glGetString(GL_EXTENSIONS)), name);
}

}  // namespace lumora::gl
