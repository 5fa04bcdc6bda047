# SPDX-License-Identifier: Apache-2.0
# Turns shader files into C++ constants.
#
#   cmake -DOUTPUT=<file.cpp> -DHEADER=<file.h> -DEDITION=<file.h> -DVERSION=<library's version>
#         -DDIRECTORY=<shaders> -DSHADERS=<name:file[:outline],...> -P
#
# The edition header says which library this is: its version and a digest of all texts.
#
# A line `#include "part"` is replaced by that part; `#outline "part"` by that part in an outline variant
# and by nothing otherwise. Lines that hold only a // comment are left out: they are for readers.
cmake_minimum_required(VERSION 3.25)

# Reads `file` with its parts put in place. The text is cut by position, never treated as a list, since
# it is full of semicolons.
function(compose file outline result)
  file(READ "${DIRECTORY}/${file}" text)
  set(composed "")
  while(NOT text STREQUAL "")
    string(FIND "${text}" "\n" end)
    if(end EQUAL -1)
      set(line "${text}")
      set(text "")
    else()
      string(SUBSTRING "${text}" 0 ${end} line)
      math(EXPR next "${end} + 1")
      string(SUBSTRING "${text}" ${next} -1 text)
    endif()
    if(line MATCHES "^ *//")
      continue()
    elseif(line MATCHES "^#(include|outline) \"([^\"]+)\"$")
      if(CMAKE_MATCH_1 STREQUAL "include" OR outline)
        compose("${CMAKE_MATCH_2}" "${outline}" part)
        string(APPEND composed "${part}")
      endif()
    else()
      string(APPEND composed "${line}\n")
    endif()
  endwhile()
  set(${result} "${composed}" PARENT_SCOPE)
endfunction()

set(declarations "")
set(definitions "")
string(REPLACE "," ";" shaders "${SHADERS}")
foreach(shader IN LISTS shaders)
  string(REPLACE ":" ";" fields "${shader}")
  list(GET fields 0 name)
  list(GET fields 1 file)
  list(LENGTH fields count)
  set(outline FALSE)
  if(count GREATER 2)
    set(outline TRUE)
  endif()
  compose("${file}" ${outline} text)
  string(APPEND declarations "extern const char ${name}[];\n")
  string(APPEND definitions "const char ${name}[] = R\"glsl(${text})glsl\";\n")
endforeach()

file(WRITE "${HEADER}" "// Made by the build from the shader files.
#ifndef LUMORA_PROGRAMS_SHADER_TEXTS_H_
#define LUMORA_PROGRAMS_SHADER_TEXTS_H_

namespace lumora::shaders {

${declarations}
}  // namespace lumora::shaders

#endif  // LUMORA_PROGRAMS_SHADER_TEXTS_H_
")
file(WRITE "${OUTPUT}" "// Made by the build from the shader files.
#include \"lumora/programs/shader_texts.h\"

namespace lumora::shaders {

${definitions}
}  // namespace lumora::shaders
")

string(SHA256 digest "${definitions}")
file(WRITE "${EDITION}" "// Made by the build from the shader files.
#ifndef LUMORA_PLATFORM_EDITION_H_
#define LUMORA_PLATFORM_EDITION_H_

namespace lumora::platform {

constexpr char kLibraryVersion[] = \"${VERSION}\";
/// SHA-256 of all shader texts.
constexpr char kShaderTextsDigest[] = \"${digest}\";

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_EDITION_H_
")
