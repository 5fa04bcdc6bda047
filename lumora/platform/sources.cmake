# SPDX-License-Identifier: Apache-2.0
# Sources and libraries of the platform seam, for the body that LUMORA_PLATFORM names.
#   lumora_platform_sources    paths relative to the folder of the library's CMakeLists.txt
#   lumora_platform_libraries  what the body links to
#   lumora_platform_rpath      run-time directories of libraries outside the loader's path
#
# A body is a folder with body.cmake and a source for each header of the seam, of the same name:
# buffer/buffer_backing.h, display.h, log.h, paths.h, property.h. What else it needs lies beside them.

set(lumora_platform_sources
  platform/buffer/buffer_geometry.cpp
  platform/buffer/buffer_state.cpp
  platform/buffer/buffer_registry.cpp
  platform/buffer/coherence.cpp
  platform/buffer/cpu_access.cpp
  platform/buffer/gralloc.cpp
  platform/buffer/entry_points.cpp
  platform/buffer/pixel_digest.cpp
  platform/buffer_kind.cpp
  platform/byte_digest.cpp
  platform/driver_digest.cpp
  platform/gl_api.cpp
  platform/offscreen_context.cpp
  platform/settings.cpp)
set(lumora_platform_libraries "")
set(lumora_platform_rpath "")

if(LUMORA_PLATFORM STREQUAL "linux")
  include(${CMAKE_CURRENT_LIST_DIR}/linux/body.cmake)
else()
  message(FATAL_ERROR "LUMORA_PLATFORM=${LUMORA_PLATFORM}: there is no such platform body")
endif()
