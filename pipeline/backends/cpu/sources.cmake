# SPDX-License-Identifier: Apache-2.0
# The cpu backend, for lumora_pipeline_objects. Paths are relative to pipeline/.
find_package(hwy REQUIRED)
find_package(TBB REQUIRED)

# Kernels: the same bytes on every instruction set, so every operation is rounded by itself. The plain forms are what
# runs where no vector unit is known: -O3 makes GCC vectorise what it can.
set(lumora_cpu_kernels
  backends/cpu/kernels/colour_rows.cpp
  backends/cpu/kernels/colour_rows_scalar.cpp
  backends/cpu/kernels/instruction_set.cpp
  backends/cpu/kernels/mask_weights.cpp
  backends/cpu/kernels/mask_weights_scalar.cpp
  backends/cpu/kernels/remap_rows.cpp
  backends/cpu/kernels/remap_rows_scalar.cpp
  backends/cpu/kernels/warp_rows.cpp
  backends/cpu/kernels/warp_rows_scalar.cpp
  backends/cpu/kernels/whiten_rows.cpp
  backends/cpu/kernels/whiten_rows_scalar.cpp)
set_source_files_properties(${lumora_cpu_kernels} PROPERTIES
  COMPILE_OPTIONS "-ffp-contract=off;$<$<NOT:$<CONFIG:Debug>>:-O3>")

set(lumora_cpu_sources
  ${lumora_cpu_kernels}
  backends/cpu/cpu_backend.cpp
  backends/cpu/cpu_converter.cpp
  backends/cpu/rectification.cpp
  backends/cpu/slimming.cpp
  backends/cpu/tile.cpp
  backends/cpu/whitening.cpp
  backends/cpu/workers.cpp
  support/camera_lens.cpp)
