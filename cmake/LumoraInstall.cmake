# SPDX-License-Identifier: Apache-2.0
# CMake package and pkg-config files: find_package(Lumora) gives Lumora::Lumora and, where built,
# Lumora::Pipeline; pkg-config knows lumora and lumora-pipeline.
#
# Components: Runtime has the libraries, Development what programs are built with, Tools the command.

set(lumora_package_directory "${CMAKE_INSTALL_LIBDIR}/cmake/Lumora")

install(EXPORT LumoraTargets NAMESPACE Lumora:: DESTINATION "${lumora_package_directory}"
  COMPONENT Development)
configure_package_config_file(cmake/LumoraConfig.cmake.in
  "${PROJECT_BINARY_DIR}/LumoraConfig.cmake" INSTALL_DESTINATION "${lumora_package_directory}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/LumoraConfigVersion.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/LumoraConfig.cmake"
  "${PROJECT_BINARY_DIR}/LumoraConfigVersion.cmake"
  DESTINATION "${lumora_package_directory}" COMPONENT Development)

file(RELATIVE_PATH lumora_pc_to_include
  "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/${CMAKE_INSTALL_INCLUDEDIR}")

function(lumora_install_pkg_config name)
  configure_file("cmake/${name}.pc.in" "${PROJECT_BINARY_DIR}/${name}.pc" @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/${name}.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
    COMPONENT Development)
endfunction()

lumora_install_pkg_config(lumora)
if(TARGET LumoraPipeline)
  lumora_install_pkg_config(lumora-pipeline)
endif()
