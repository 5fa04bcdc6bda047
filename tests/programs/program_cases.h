// SPDX-License-Identifier: Apache-2.0
// Every program class with each of its variants, as a table: how to make it and what Load does.
#ifndef LUMORA_TESTS_PROGRAMS_PROGRAM_CASES_H_
#define LUMORA_TESTS_PROGRAMS_PROGRAM_CASES_H_

#include <memory>
#include <string>
#include <vector>

#include "lumora/gl/gl_program.h"

namespace lumora::test {

/// Where a location is kept.
struct Slot {
  enum Table { Vertex, Texture, Sampler, Uniform };
  Table table;
  int index = 0;

  int value(const GLProgram& program) const;
};

/// One look-up of Load.
struct Lookup {
  const char* name;   ///< in the shader
  Slot slot;          ///< where its location goes
  const char* label;  ///< under which a missing one is reported; null: it passes unnoticed
};

struct ProgramCase {
  const char* name;  ///< the class, with "Mask" behind it for the variant that paints marks
  std::unique_ptr<GLProgram> (*make)();
  const char* cache_file;  ///< null: compiled every time
  bool announces_use;      ///< whether Load says "use program"
  std::vector<Lookup> lookups;
};

const std::vector<ProgramCase>& AllPrograms();
/// The case of this name; there has to be one.
const ProgramCase& ProgramNamed(const std::string& name);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_PROGRAMS_PROGRAM_CASES_H_
