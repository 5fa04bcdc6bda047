# SPDX-License-Identifier: Apache-2.0
# Options, warnings and sanitizers that every target of the project shares.

if(ANDROID)
  set(lumora_default_platform android)
else()
  set(lumora_default_platform linux)
endif()
set(LUMORA_PLATFORM ${lumora_default_platform} CACHE STRING "Body of the platform seam: linux or android")

option(LUMORA_BUILD_PIPELINE "Build libLumoraPipeline, the friendly front" ON)
option(LUMORA_BUILD_TOOLS "Build the lumora command" ON)
option(LUMORA_BUILD_TESTS "Build the tests" ON)
option(LUMORA_BUILD_FUZZERS "Build the fuzz targets as libFuzzer programs, not as tests" OFF)
option(LUMORA_BUILD_BENCHMARKS "Build bench_lumora, which needs Google Benchmark" OFF)
option(LUMORA_TEST_UNITY "Compile the sources of each test program in one go" ON)
option(LUMORA_WERROR "Treat warnings as errors" OFF)
option(LUMORA_COVERAGE "Count the executed lines of the libraries and the command" OFF)
set(LUMORA_SANITIZE "" CACHE STRING "Sanitizers to build with, e.g. address,undefined")

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()

# Optional: with a compiler cache, what was compiled once comes at no cost. It keeps nothing that uses a precompiled
# header, so the tests then do without theirs.
find_program(LUMORA_CCACHE ccache)
if(LUMORA_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${LUMORA_CCACHE}")
  set(CMAKE_DISABLE_PRECOMPILE_HEADERS ON)
endif()

add_library(lumora_warnings INTERFACE)
target_compile_options(lumora_warnings INTERFACE -Wall -Wextra -Wshadow -Wconversion)
if(LUMORA_WERROR)
  target_compile_options(lumora_warnings INTERFACE -Werror)
endif()

if(LUMORA_BUILD_FUZZERS)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES Clang)
    message(FATAL_ERROR "LUMORA_BUILD_FUZZERS needs clang: libFuzzer is part of it")
  endif()
  # Coverage of all code; the fuzzer itself is linked with the targets alone.
  set(LUMORA_SANITIZE "fuzzer-no-link,address,undefined")
endif()

if(LUMORA_SANITIZE)
  add_compile_options(-fsanitize=${LUMORA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  if(LUMORA_SANITIZE MATCHES undefined)
    add_compile_options(-fno-sanitize=vptr)  # the core is built without RTTI
  endif()
  add_link_options(-fsanitize=${LUMORA_SANITIZE})
  # In every executable: checkers need the driver to stay loaded.
  add_library(lumora_no_dlclose OBJECT "${PROJECT_SOURCE_DIR}/cmake/sanitizers/no_dlclose.cpp")
  link_libraries("$<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:$<TARGET_OBJECTS:lumora_no_dlclose>>")
endif()

# lumora_count_coverage(<target>...): counts what is executed of these, where that is wanted. The tests are
# built as ever.
if(LUMORA_COVERAGE)
  add_link_options(--coverage)
endif()
function(lumora_count_coverage)
  foreach(target IN LISTS ARGN)
    if(LUMORA_COVERAGE AND TARGET ${target})
      target_compile_options(${target} PRIVATE --coverage -fprofile-update=atomic -O0)
    endif()
  endforeach()
endfunction()
