# SPDX-License-Identifier: Apache-2.0
# The install components: cmake -DBUILD=... -DSCRATCH=... -DLIBRARIES=<file names> -P check_install.cmake
# Runtime alone has to be enough for a program that was built elsewhere, so it holds every library
# under the name that programs ask for, and nothing that only building needs.
function(install_component component)
  file(REMOVE_RECURSE "${SCRATCH}/${component}")
  execute_process(COMMAND "${CMAKE_COMMAND}" --install "${BUILD}" --component ${component}
    --prefix "${SCRATCH}/${component}" RESULT_VARIABLE result OUTPUT_QUIET)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "component ${component} cannot be installed: ${result}")
  endif()
  file(GLOB_RECURSE files LIST_DIRECTORIES false RELATIVE "${SCRATCH}/${component}"
    "${SCRATCH}/${component}/*")
  set(files "${files}" PARENT_SCOPE)
endfunction()

install_component(Runtime)
foreach(library IN LISTS LIBRARIES)
  if(NOT files MATCHES "/${library}(;|$)")
    message(SEND_ERROR "component Runtime lacks ${library}: ${files}")
  endif()
endforeach()
if(files MATCHES "\\.(h|cmake|pc|a)(;|$)" OR files MATCHES "\\.so(;|$)")
  message(SEND_ERROR "component Runtime holds what only building needs: ${files}")
endif()

install_component(Development)
foreach(part engine/gpu_beauty_face\\.h LumoraTargets\\.cmake LumoraConfig\\.cmake lumora\\.pc libLumora\\.so)
  if(NOT files MATCHES "/${part}(;|$)")
    message(SEND_ERROR "component Development lacks ${part}: ${files}")
  endif()
endforeach()
if(LIBRARIES MATCHES LumoraPipeline AND NOT files MATCHES "include/lumora/pipeline/pipeline\\.h(;|$)")
  message(SEND_ERROR "component Development lacks the pipeline's headers: ${files}")
endif()
if(files MATCHES "\\.so\\.")
  message(SEND_ERROR "component Development holds the libraries themselves: ${files}")
endif()

# An installed header finds every header of ours that it includes.
foreach(header IN LISTS files)
  if(NOT header MATCHES "\\.h$")
    continue()
  endif()
  file(STRINGS "${SCRATCH}/Development/${header}" includes REGEX "^#include [<\"]lumora/")
  string(REGEX REPLACE "/lumora/.*" "" folder "${header}")
  foreach(include IN LISTS includes)
    string(REGEX REPLACE "^#include .(.*).$" "\\1" included "${include}")
    if(NOT EXISTS "${SCRATCH}/Development/${folder}/${included}")
      message(SEND_ERROR "${header} includes ${included}, which is not installed")
    endif()
  endforeach()
endforeach()

if(TOOLS)
  # The command, and the modules that it looks for beside the libraries.
  install_component(Tools)
  foreach(part bin/lumora lumora/face_finder\\.so lumora/drawing\\.so)
    if(NOT files MATCHES "${part}(;|$)")
      message(SEND_ERROR "component Tools lacks ${part}: ${files}")
    endif()
  endforeach()
endif()
