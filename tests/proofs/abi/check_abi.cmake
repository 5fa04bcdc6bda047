# SPDX-License-Identifier: Apache-2.0
# Compares one aspect of a shared library with what is committed, or renews that with UPDATE.
#
#   cmake -DKIND=<symbols|pages|drivers|types> -DLIBRARY=<file> -DNAME=<target> -DCOMMITTED=<folder> -DTOOLCHAIN=<text>
#         -DHEADERS=<folder> -DNM= -DREADELF= -DABIDW= -DABIDIFF= -DSCRATCH=<folder> [-DUPDATE=ON] -P
cmake_minimum_required(VERSION 3.25)

# Runs a command and stops where it fails.
function(run result)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
  set(${result} "${output}" PARENT_SCOPE)
endfunction()

# Leaves the script where the committed files were made with another compiler.
macro(skip_other_toolchains)
  if(UPDATE)
    file(WRITE "${COMMITTED}/toolchain" "${TOOLCHAIN}\n")
  else()
    file(STRINGS "${COMMITTED}/toolchain" made_with)
    if(NOT made_with STREQUAL TOOLCHAIN)
      message("SKIPPED: abi/ is for ${made_with}, this is ${TOOLCHAIN}")
      return()
    endif()
  endif()
endmacro()

# The names in the dynamic symbol table, one a line.
function(check_symbols)
  skip_other_toolchains()
  run(table "${NM}" -D --defined-only --format=posix "${LIBRARY}")
  string(REGEX REPLACE " [^\n]*" "" names "${table}")
  string(REGEX MATCHALL "[^\n]+" names "${names}")
  list(SORT names)
  set(list "${COMMITTED}/${NAME}.symbols")
  if(UPDATE)
    list(JOIN names "\n" text)
    file(WRITE "${list}" "${text}\n")
    return()
  endif()
  file(STRINGS "${list}" expected)
  set(added "${names}")
  list(REMOVE_ITEM added ${expected})
  set(lost "${expected}")
  list(REMOVE_ITEM lost ${names})
  if(added OR lost)
    list(JOIN added "\n  " added)
    list(JOIN lost "\n  " lost)
    message(FATAL_ERROR "${NAME} exports other names than abi/${NAME}.symbols (see docs/abi.md)\n"
      "new:\n  ${added}\ngone:\n  ${lost}")
  endif()
endfunction()

# Every loaded segment can be mapped by a kernel with pages of 16 KiB.
function(check_pages)
  run(table "${READELF}" -lW "${LIBRARY}")
  string(REGEX MATCHALL "  LOAD [^\n]*" segments "${table}")
  if(NOT segments)
    message(FATAL_ERROR "no segments in ${LIBRARY}")
  endif()
  foreach(segment IN LISTS segments)
    string(REGEX MATCH "0x[0-9a-f]+ *$" alignment "${segment}")
    math(EXPR remainder "${alignment} % 0x4000")
    if(NOT remainder EQUAL 0 OR alignment EQUAL 0)
      message(FATAL_ERROR "${NAME}: not aligned to 0x4000:${segment}")
    endif()
  endforeach()
endfunction()

# The library itself takes no driver along.
function(check_drivers)
  run(table "${READELF}" -dW "${LIBRARY}")
  string(REGEX MATCHALL "\\(NEEDED\\)[^\n]*" needed "${table}")
  if(NOT needed)
    message(FATAL_ERROR "nothing is known of what ${LIBRARY} needs")
  endif()
  if(needed MATCHES "libLumora\\.|EGL|GL|vulkan")
    message(FATAL_ERROR "${NAME} needs what only its module may: ${needed}")
  endif()
endfunction()

# Types, functions and variables that the headers declare: abidiff's view of a changed layout.
function(check_types)
  if(NOT ABIDW OR NOT ABIDIFF)
    message("SKIPPED: abidw and abidiff are not installed (Debian: abigail-tools)")
    return()
  endif()
  skip_other_toolchains()
  set(committed "${COMMITTED}/${NAME}.abi")
  set(dump "${SCRATCH}/${NAME}.abi")
  if(UPDATE)
    set(dump "${committed}")
  endif()
  run(text "${ABIDW}" --exported-interfaces-only --drop-private-types --drop-undefined-syms --no-corpus-path
    --no-comp-dir-path --no-elf-needed --no-parameter-names --no-show-locs --no-write-default-sizes
    --headers-dir "${HEADERS}" --out-file "${dump}" "${LIBRARY}")
  if(UPDATE)
    return()
  endif()
  # The status is a set of bits: 1 and 2 an error, 4 a change, 8 a change that breaks programs. A moved member
  # is only 4. What was merely added is no change here: the list of symbols tells of it.
  execute_process(COMMAND "${ABIDIFF}" --no-added-syms "${committed}" "${dump}"
    OUTPUT_VARIABLE report ERROR_VARIABLE errors RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${NAME} differs from abi/${NAME}.abi, abidiff ${status}\n${report}${errors}")
  endif()
endfunction()

cmake_language(CALL check_${KIND})
