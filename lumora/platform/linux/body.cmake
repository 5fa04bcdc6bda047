# SPDX-License-Identifier: Apache-2.0
# The Linux body of the platform seam.

list(APPEND lumora_platform_sources
  platform/linux/backing_factory.cpp
  platform/linux/cache_levels.cpp
  platform/linux/display.cpp
  platform/linux/fresh_memory.cpp
  platform/linux/log.cpp
  platform/linux/memory_object.cpp
  platform/linux/memory_object_proof.cpp
  platform/linux/memory_object_rehearsal.cpp
  platform/linux/owned_texture.cpp
  platform/linux/paths.cpp
  platform/linux/pbuffer_config.cpp
  platform/linux/pixel_transfer.cpp
  platform/linux/property.cpp
  platform/linux/staged.cpp
  platform/linux/texture_image.cpp
  platform/linux/vulkan_loader.cpp
  platform/linux/vulkan_memory.cpp)

# lumora_require(<variable> <Debian package>): stops with a clear word when a look-up found nothing.
macro(lumora_require variable package)
  if(NOT ${variable})
    message(FATAL_ERROR "${variable} was not found; on Debian install ${package}")
  endif()
  mark_as_advanced(${variable})
endmacro()

find_library(LUMORA_EGL_LIBRARY EGL)
lumora_require(LUMORA_EGL_LIBRARY libegl-dev)
find_path(LUMORA_EGL_INCLUDE_DIR EGL/eglext.h)
lumora_require(LUMORA_EGL_INCLUDE_DIR libegl-dev)
find_library(LUMORA_GLES_LIBRARY GLESv2)
lumora_require(LUMORA_GLES_LIBRARY libgles-dev)
find_path(LUMORA_GLES_INCLUDE_DIR GLES2/gl2ext.h)
lumora_require(LUMORA_GLES_INCLUDE_DIR libgles-dev)
# Debian keeps Android's libraries in a directory of their own. A liblog elsewhere does as well.
find_library(LUMORA_LIBLOG_LIBRARY log PATH_SUFFIXES android "${CMAKE_LIBRARY_ARCHITECTURE}/android")
lumora_require(LUMORA_LIBLOG_LIBRARY android-liblog-dev)
# Vulkan's types only; its loader is opened at run time where it is installed.
find_path(LUMORA_VULKAN_INCLUDE_DIR vulkan/vulkan_core.h)
lumora_require(LUMORA_VULKAN_INCLUDE_DIR libvulkan-dev)
find_package(Threads REQUIRED)

list(APPEND lumora_platform_libraries
  ${LUMORA_EGL_LIBRARY} ${LUMORA_GLES_LIBRARY} ${LUMORA_LIBLOG_LIBRARY} Threads::Threads
  ${CMAKE_DL_LIBS})
get_filename_component(lumora_platform_rpath ${LUMORA_LIBLOG_LIBRARY} DIRECTORY)
