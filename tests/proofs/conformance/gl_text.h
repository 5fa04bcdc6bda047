// SPDX-License-Identifier: Apache-2.0
// Arguments of EGL and GL calls as short texts.
#ifndef LUMORA_TESTS_CONFORMANCE_GL_TEXT_H_
#define LUMORA_TESTS_CONFORMANCE_GL_TEXT_H_

#include <EGL/egl.h>
#include <GLES2/gl2.h>

#include <initializer_list>
#include <string>

namespace lumora::test {

/// A constant of GL without its prefix; numbers that stand for none in hexadecimal.
std::string GlName(GLenum value);
/// An attribute list of EGL, without its end: "{WIDTH 1 HEIGHT 1}".
std::string EglList(const EGLint* attributes);
/// Numbers with four decimals at most, a blank between.
std::string Numbers(const float* values, int count);
std::string Numbers(std::initializer_list<float> values);
/// Four corners of x, y, z, w: "upright", "turned", or their numbers.
std::string PositionsText(const float* positions);
/// Four corners of s, t: "s0 t0 s1 t1" of a rectangle that starts at its top left, or all numbers.
std::string CoordinatesText(const float* coordinates);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_CONFORMANCE_GL_TEXT_H_
