# SPDX-License-Identifier: Apache-2.0
# The shader texts: constant name and file; "outline" builds the variant that paints diagnostic marks.
set(lumora_shaders
  kPassThroughVert:pass_through.vert
  kPassThroughEffectsVert:pass_through_effects.vert
  kYuvToRgbFrag:yuv_to_rgb.frag
  kRgbToHsiFrag:rgb_to_hsi.frag
  kRgbToOpaqueHsiFrag:rgb_to_opaque_hsi.frag
  kYuvToHsiFrag:yuv_to_hsi.frag
  kHsiToYuvFrag:hsi_to_yuv.frag
  kRgbToYFrag:rgb_to_y.frag
  kRgbToUvFrag:rgb_to_uv.frag
  kCheekSlimmerFrag:cheek_slimmer.frag
  kCheekSlimmerOutlineFrag:cheek_slimmer.frag:outline
  kCheekSlimmerLargeFrag:cheek_slimmer_large.frag
  kCheekSlimmerLargeOutlineFrag:cheek_slimmer_large.frag:outline
  kCheekSlimmerLargeHsiFrag:cheek_slimmer_large_hsi.frag
  kCheekSlimmerLargeHsiOutlineFrag:cheek_slimmer_large_hsi.frag:outline
  kFaceWhiteningFrag:face_whitening.frag
  kFaceWhiteningLargeFrag:face_whitening_large.frag
  kRectificationFrag:rectification.frag
  kRectificationOutlineFrag:rectification.frag:outline
  kRadialDistortionFrag:radial_distortion.frag)

set(lumora_shader_directory "${CMAKE_CURRENT_SOURCE_DIR}/programs/shaders")
set(lumora_generated_directory "${CMAKE_CURRENT_BINARY_DIR}/generated")
set(lumora_shader_source "${lumora_generated_directory}/lumora/programs/shader_texts.cpp")
set(lumora_shader_header "${lumora_generated_directory}/lumora/programs/shader_texts.h")
set(lumora_edition_header "${lumora_generated_directory}/lumora/platform/edition.h")
file(GLOB lumora_shader_files CONFIGURE_DEPENDS
  "${lumora_shader_directory}/*.vert" "${lumora_shader_directory}/*.frag"
  "${lumora_shader_directory}/*.glsl")
list(JOIN lumora_shaders "," lumora_shader_list)

add_custom_command(
  OUTPUT "${lumora_shader_source}" "${lumora_shader_header}" "${lumora_edition_header}"
  COMMAND "${CMAKE_COMMAND}" "-DOUTPUT=${lumora_shader_source}" "-DHEADER=${lumora_shader_header}"
          "-DEDITION=${lumora_edition_header}" "-DVERSION=${PROJECT_VERSION}"
          "-DDIRECTORY=${lumora_shader_directory}" "-DSHADERS=${lumora_shader_list}"
          -P "${PROJECT_SOURCE_DIR}/cmake/EmbedShaders.cmake"
  DEPENDS ${lumora_shader_files} "${PROJECT_SOURCE_DIR}/cmake/EmbedShaders.cmake"
  COMMENT "Embedding shaders"
  VERBATIM)
