# SPDX-License-Identifier: Apache-2.0
# The CPU side of the colour conversions. Paths are relative to lumora/.
find_package(hwy REQUIRED)

set(lumora_convert_sources
  convert/gpu_color_converter.cpp
  convert/gpu_color_converter_passes.cpp
  convert/sp2yuvxs.cpp
  convert/sp2yuvxs_scalar.cpp
  convert/sp2yuvxs_simd.cpp)
set(lumora_convert_libraries hwy::hwy)

# The plain form is what runs where no vector unit is known: -O3 makes GCC vectorise it.
set_source_files_properties(convert/sp2yuvxs_scalar.cpp PROPERTIES
  COMPILE_OPTIONS "$<$<NOT:$<CONFIG:Debug>>:-O3>")
