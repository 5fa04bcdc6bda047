// SPDX-License-Identifier: Apache-2.0
// The GL and EGL objects of the process, counted where they are made and deleted.
//
// Link `lumora_gl_census` (an object library): the executable then defines the functions that make
// and delete objects in place of the driver's. They pass every call on and remember its names.
#ifndef LUMORA_TESTS_SOAK_GL_CENSUS_H_
#define LUMORA_TESTS_SOAK_GL_CENSUS_H_

#include <map>
#include <string>

namespace lumora::test {

/// How many objects there are of each kind; kinds with none are left out. The kinds: "texture",
/// "framebuffer", "shader", "program", "memory object", "EGL image", "context", "surface".
using Census = std::map<std::string, long>;

/// The objects that exist now, those of all contexts and threads. Names that are deleted count
/// once, names that never existed do not, and a context takes what is left in it with it.
Census LivingObjects();

/// The objects that were ever made.
Census MadeObjects();

/// What is more in `after` than in `before`; what is less comes out negative.
Census Growth(const Census& before, const Census& after);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_SOAK_GL_CENSUS_H_
