// SPDX-License-Identifier: Apache-2.0
// The one place that brings in EGL and OpenGL ES: the linked entry points by their headers, those
// of extensions by eglGetProcAddress, looked up once. An entry point that the driver lacks is null,
// but a present one proves nothing: dispatch libraries hand out stubs, so ask the extension string
// as well.
#ifndef LUMORA_PLATFORM_GL_API_H_
#define LUMORA_PLATFORM_GL_API_H_

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GLES2/gl2.h>
#include <GLES2/gl2ext.h>

// NV_pack_subimage, which the Khronos header leaves out.
constexpr GLenum GL_PACK_ROW_LENGTH_NV = 0x0D02;
constexpr GLenum GL_PACK_SKIP_ROWS_NV = 0x0D03;
constexpr GLenum GL_PACK_SKIP_PIXELS_NV = 0x0D04;

namespace lumora::gl {

/// The extension entry points that the library uses; members carry the names of the functions.
struct ExtensionApi {
  // EGL_KHR_image_base, OES_EGL_image
  PFNEGLCREATEIMAGEKHRPROC eglCreateImageKHR;
  PFNEGLDESTROYIMAGEKHRPROC eglDestroyImageKHR;
  PFNGLEGLIMAGETARGETTEXTURE2DOESPROC glEGLImageTargetTexture2DOES;
  // OES_get_program_binary
  PFNGLGETPROGRAMBINARYOESPROC glGetProgramBinaryOES;
  PFNGLPROGRAMBINARYOESPROC glProgramBinaryOES;
  // EGL_EXT_platform_base, EGL_EXT_device_base
  PFNEGLGETPLATFORMDISPLAYEXTPROC eglGetPlatformDisplayEXT;
  PFNEGLQUERYDEVICESEXTPROC eglQueryDevicesEXT;
  PFNEGLQUERYDEVICESTRINGEXTPROC eglQueryDeviceStringEXT;
  // EXT_memory_object, EXT_memory_object_fd
  PFNGLCREATEMEMORYOBJECTSEXTPROC glCreateMemoryObjectsEXT;
  PFNGLDELETEMEMORYOBJECTSEXTPROC glDeleteMemoryObjectsEXT;
  PFNGLGETUNSIGNEDBYTEVEXTPROC glGetUnsignedBytevEXT;
  PFNGLGETUNSIGNEDBYTEI_VEXTPROC glGetUnsignedBytei_vEXT;
  PFNGLIMPORTMEMORYFDEXTPROC glImportMemoryFdEXT;
  PFNGLTEXSTORAGEMEM2DEXTPROC glTexStorageMem2DEXT;
  // KHR_debug
  PFNGLOBJECTLABELKHRPROC glObjectLabelKHR;
  PFNGLGETOBJECTLABELKHRPROC glGetObjectLabelKHR;
};

/// The table, filled on first use. Thread-safe.
const ExtensionApi& Extensions();

/// Whether the space-separated list `extensions` (null counts as empty) holds `name` as a whole
/// word.
bool HasExtension(const char* extensions, const char* name);

/// Whether the current context's extension string holds `name`; false without a context.
bool ContextHasExtension(const char* name);

}  // namespace lumora::gl

#endif  // LUMORA_PLATFORM_GL_API_H_
