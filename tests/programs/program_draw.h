// SPDX-License-Identifier: Apache-2.0
// Drawing with the library's programs, and the pictures to draw from.
#ifndef LUMORA_TESTS_PROGRAMS_PROGRAM_DRAW_H_
#define LUMORA_TESTS_PROGRAMS_PROGRAM_DRAW_H_

#include <vector>

#include "lumora/gl/gl_program.h"
#include "reference/quad.h"
#include "support/gl_objects.h"

namespace lumora::test {

using reference::Geometry;

/// Draws the quad with a loaded program into a new target of width x height and returns the target.
/// `inputs` are the textures of units 0, 1, ... Reports what fails to the running test, GL errors
/// included.
Image DrawProgram(GLProgram& program, const std::vector<GLuint>& inputs, int width, int height,
                  const Geometry& geometry = {});

/// What the model makes of the same draw.
Image DrawModel(const reference::Shader& shader, int width, int height,
                const Geometry& geometry = {});

/// A quad that shows one texture coordinate everywhere.
Geometry EverywhereAt(double s, double t);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_PROGRAMS_PROGRAM_DRAW_H_
