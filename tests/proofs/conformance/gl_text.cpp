// SPDX-License-Identifier: Apache-2.0
#include "proofs/conformance/gl_text.h"

#include <EGL/eglext.h>
#include <GLES2/gl2ext.h>

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace lumora::test {
namespace {

struct Constant {
  GLenum value;
  const char* name;
};
#define LUMORA_CONSTANT(name) \
  { GL_##name, #name }
constexpr Constant kGl[] = {LUMORA_CONSTANT(TRIANGLES),
                            LUMORA_CONSTANT(TEXTURE_2D),
                            LUMORA_CONSTANT(FRAMEBUFFER),
                            LUMORA_CONSTANT(COLOR_ATTACHMENT0),
                            LUMORA_CONSTANT(TEXTURE_MIN_FILTER),
                            LUMORA_CONSTANT(TEXTURE_MAG_FILTER),
                            LUMORA_CONSTANT(TEXTURE_WRAP_S),
                            LUMORA_CONSTANT(TEXTURE_WRAP_T),
                            LUMORA_CONSTANT(NEAREST),
                            LUMORA_CONSTANT(LINEAR),
                            LUMORA_CONSTANT(REPEAT),
                            LUMORA_CONSTANT(MIRRORED_REPEAT),
                            LUMORA_CONSTANT(CLAMP_TO_EDGE),
                            LUMORA_CONSTANT(TEXTURE0),
                            LUMORA_CONSTANT(TEXTURE1),
                            LUMORA_CONSTANT(RGBA),
                            LUMORA_CONSTANT(LUMINANCE),
                            LUMORA_CONSTANT(LUMINANCE_ALPHA),
                            LUMORA_CONSTANT(UNSIGNED_BYTE),
                            LUMORA_CONSTANT(UNSIGNED_SHORT),
                            LUMORA_CONSTANT(FLOAT),
                            LUMORA_CONSTANT(VERTEX_SHADER),
                            LUMORA_CONSTANT(FRAGMENT_SHADER),
                            LUMORA_CONSTANT(COMPILE_STATUS),
                            LUMORA_CONSTANT(LINK_STATUS),
                            LUMORA_CONSTANT(INFO_LOG_LENGTH),
                            LUMORA_CONSTANT(PROGRAM_BINARY_LENGTH_OES)};
#undef LUMORA_CONSTANT

#define LUMORA_CONSTANT(name) \
  { EGL_##name, #name }
constexpr Constant kEgl[] = {LUMORA_CONSTANT(SURFACE_TYPE),
                             LUMORA_CONSTANT(RED_SIZE),
                             LUMORA_CONSTANT(GREEN_SIZE),
                             LUMORA_CONSTANT(BLUE_SIZE),
                             LUMORA_CONSTANT(ALPHA_SIZE),
                             LUMORA_CONSTANT(DEPTH_SIZE),
                             LUMORA_CONSTANT(STENCIL_SIZE),
                             LUMORA_CONSTANT(RENDERABLE_TYPE),
                             LUMORA_CONSTANT(WIDTH),
                             LUMORA_CONSTANT(HEIGHT),
                             LUMORA_CONSTANT(IMAGE_PRESERVED_KHR),
                             LUMORA_CONSTANT(CONTEXT_CLIENT_VERSION)};
#undef LUMORA_CONSTANT

template <size_t n>
std::string NameIn(const Constant (&table)[n], GLenum value) {
  const auto* const found = std::find_if(std::begin(table), std::end(table),
                                         [value](const Constant& c) { return c.value == value; });
  if (found != std::end(table)) return found->name;
  char text[16];
  std::snprintf(text, sizeof(text), "0x%x", value);
  return text;
}

}  // namespace

std::string GlName(GLenum value) {
  return NameIn(kGl, value);
}

std::string EglList(const EGLint* attributes) {
  std::string text;
  for (; attributes != nullptr && *attributes != EGL_NONE; attributes += 2) {
    text += (text.empty() ? "" : " ") + NameIn(kEgl, static_cast<GLenum>(attributes[0])) + " " +
            std::to_string(attributes[1]);
  }
  return "{" + text + "}";
}

std::string Numbers(const float* values, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) {
    char number[48];
    std::snprintf(number, sizeof(number), "%.4f", static_cast<double>(values[i]));
    std::string digits = number;
    digits.erase(digits.find_last_not_of('0') + 1);
    if (digits.back() == '.') digits.pop_back();
    text += (i == 0 ? "" : " ") + (digits == "-0" ? "0" : digits);
  }
  return text;
}

std::string Numbers(std::initializer_list<float> values) {
  return Numbers(values.begin(), static_cast<int>(values.size()));
}

std::string PositionsText(const float* positions) {
  constexpr float kUpright[16] = {-1, 1, 1, 1, -1, -1, 1, 1, 1, -1, 1, 1, 1, 1, 1, 1};
  constexpr float kTurned[16] = {1, 1, 1, 1, -1, 1, 1, 1, -1, -1, 1, 1, 1, -1, 1, 1};
  if (std::equal(kUpright, kUpright + 16, positions)) return "upright";
  if (std::equal(kTurned, kTurned + 16, positions)) return "turned";
  return Numbers(positions, 16);
}

std::string CoordinatesText(const float* coordinates) {
  const float s0 = coordinates[0];
  const float t0 = coordinates[3];
  const float s1 = coordinates[4];
  const float t1 = coordinates[1];
  const float rectangle[8] = {s0, t1, s0, t0, s1, t0, s1, t1};
  if (!std::equal(rectangle, rectangle + 8, coordinates)) return Numbers(coordinates, 8);
  return Numbers({s0, t0, s1, t1});
}

}  // namespace lumora::test
