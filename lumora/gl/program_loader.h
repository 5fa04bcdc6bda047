// SPDX-License-Identifier: Apache-2.0
// How a shader program describes itself, and the one Load body that all of them share.
#ifndef LUMORA_GL_PROGRAM_LOADER_H_
#define LUMORA_GL_PROGRAM_LOADER_H_

#include <cstddef>

class GLProgram;

namespace lumora {

/// A place in GLProgram's location tables.
struct LocationSlot {
  enum Table { kVertexCoord, kTextureCoord, kUniform, kSampler };
  Table table;
  int index;
};

constexpr LocationSlot VertexCoordSlot() {
  return {LocationSlot::kVertexCoord, 0};
}
constexpr LocationSlot TextureCoordSlot() {
  return {LocationSlot::kTextureCoord, 0};
}
constexpr LocationSlot UniformSlot(int index) {
  return {LocationSlot::kUniform, index};
}
constexpr LocationSlot SamplerSlot(int index) {
  return {LocationSlot::kSampler, index};
}

/// One look-up: the GLSL name, where its location goes, under which label it is checked, and which
/// slot's value is checked. The last differs from `slot` only where a program re-checks an earlier
/// location in place of the new one, which then goes unchecked.
struct ProgramLocation {
  constexpr ProgramLocation(const char* name, LocationSlot location_slot, const char* check_label)
      : ProgramLocation(name, location_slot, check_label, location_slot) {}
  constexpr ProgramLocation(const char* name, LocationSlot location_slot, const char* check_label,
                            LocationSlot checked_slot)
      : glsl_name(name), slot(location_slot), label(check_label), checked(checked_slot) {}

  const char* glsl_name;
  LocationSlot slot;
  const char* label;
  LocationSlot checked;
};

/// Everything Load needs to know of a program.
struct ProgramDescription {
  const char* vertex_source;
  const char* fragment_source;
  const char* cache_file;  ///< format with one %s for the cache directory; null: never cached
  bool announces_use;      ///< whether Load logs "use program"
  const ProgramLocation* locations;  ///< in look-up order
  size_t location_count;
};

/// Loads `program` from its cached binary, or compiles it and caches the binary, then looks up its
/// locations. False when it cannot be built or a checked location is missing; later locations then
/// stay as they were.
bool LoadProgram(GLProgram& program, const ProgramDescription& description);

}  // namespace lumora

#endif  // LUMORA_GL_PROGRAM_LOADER_H_
