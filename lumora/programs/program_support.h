// SPDX-License-Identifier: Apache-2.0
// What the program classes share among themselves.
#ifndef LUMORA_PROGRAMS_PROGRAM_SUPPORT_H_
#define LUMORA_PROGRAMS_PROGRAM_SUPPORT_H_

#include "lumora/gl/gl_program.h"
#include "lumora/gl/program_loader.h"
#include "lumora/programs/shader_texts.h"

namespace lumora {

// The look-ups that every program begins with.
constexpr ProgramLocation kVertexCoord{"a_vertexCoord", VertexCoordSlot(), "m_nVerCoordLoc"};
constexpr ProgramLocation kTextureCoord{"a_textureCoord", TextureCoordSlot(), "m_nTexCoordLoc"};
constexpr ProgramLocation kInputTexture{"s_texture0", SamplerSlot(GLProgram::SAMPLER_INPUT_TEX),
                                        "m_nSamplerLoc[SAMPLER_INPUT_TEX]"};

template <size_t N>
constexpr ProgramDescription Describe(const char* vertex_source, const char* fragment_source,
                                      const char* cache_file, bool announces_use,
                                      const ProgramLocation (&locations)[N]) {
  return {vertex_source, fragment_source, cache_file, announces_use, locations, N};
}

}  // namespace lumora

#endif  // LUMORA_PROGRAMS_PROGRAM_SUPPORT_H_
