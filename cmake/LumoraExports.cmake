# SPDX-License-Identifier: Apache-2.0
# What both shared libraries share: which names they export, how their segments are aligned, and the
# description of their types that the tests read.

# lumora_finish_exports(<target> <version script>): exports nothing but the names of the script.
# Sanitizers bring names of their own, which have to stay visible.
function(lumora_finish_exports target script)
  target_link_options(${target} PRIVATE -Wl,-z,max-page-size=16384)  # for kernels with 16 KiB pages
  if(NOT LUMORA_SANITIZE)
    target_link_options(${target} PRIVATE "-Wl,--version-script=${script}" -Wl,--no-undefined)
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${script}")
  endif()
endfunction()

# lumora_bind_inside(<target> <list>): what the library defines is what the library uses, whatever an
# application defines under the same names, but for the names in the list.
function(lumora_bind_inside target list)
  target_link_options(${target} PRIVATE "-Wl,--dynamic-list=${list}")
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${list}")
endfunction()

# lumora_describe_types(<object library>): keeps the types in the library where tests compare them.
# `cmake --install --strip` leaves them out again.
function(lumora_describe_types target)
  if(LUMORA_BUILD_TESTS)
    target_compile_options(${target} PRIVATE -g)
  endif()
endfunction()
