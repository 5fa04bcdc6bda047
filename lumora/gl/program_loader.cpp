// SPDX-License-Identifier: Apache-2.0
#include "lumora/gl/program_loader.h"

#include <cstdio>
#include <string>

#include "lumora/gl/gl_program.h"
#include "lumora/gl/log.h"
#include "lumora/gl/program_binary.h"
#include "lumora/platform/gl_api.h"
#include "lumora/platform/settings.h"
// Messages of Load carry no tag: the platform log then shows the process's own name.
LUMORA_LOG_TAG(nullptr);

namespace lumora {
namespace {

int& ValueAt(GLProgram& program, LocationSlot slot) {
  switch (slot.table) {
    case LocationSlot::kVertexCoord:
      return program.m_nVerCoordLoc;
    case LocationSlot::kTextureCoord:
      return program.m_nTexCoordLoc;
    case LocationSlot::kUniform:
      return program.m_nUniformLoc[slot.index];
    case LocationSlot::kSampler:
      break;
  }
  return program.m_nSamplerLoc[slot.index];
}

int LookUp(GLuint program, const ProgramLocation& location) {
  const bool is_attribute = location.slot.table == LocationSlot::kVertexCoord ||
                            location.slot.table == LocationSlot::kTextureCoord;
  return is_attribute ? glGetAttribLocation(program, location.glsl_name)
                      : glGetUniformLocation(program, location.glsl_name);
}

bool CompileSource(GLProgram& program, const ProgramDescription& description) {
  if (program.Load(description.vertex_source, description.fragment_source)) return true;
  LOGE("[%s] can't load shader", "Load");
  return false;
}

bool LoadThroughCache(GLProgram& program, const ProgramDescription& description) {
  char path[256];
  const std::string directory = platform::CacheDirectory();
  const int length = std::snprintf(path, sizeof(path), description.cache_file, directory.c_str());
  // A directory too long for the path would name another file: such a cache is not used.
  const bool has_cache =
      !directory.empty() && length > 0 && length < static_cast<int>(sizeof(path));
  const ShaderTexts texts = {description.vertex_source, description.fragment_source};
  if (has_cache) platform::NoteCacheUse();
  if (has_cache && LoadProgramBinary(program, path, &texts)) return true;

  LOGD("[%s] load program binary fail, switch to normal compile mode", "Load");
  if (!CompileSource(program, description)) return false;
  LOGD("[%s] load shader success, cache the binary in file system for further usages", "Load");
  if (has_cache) SaveProgramBinary(program, path, &texts);
  return true;
}

}  // namespace

bool LoadProgram(GLProgram& program, const ProgramDescription& description) {
  const bool built = description.cache_file != nullptr ? LoadThroughCache(program, description)
                                                       : CompileSource(program, description);
  if (!built) return false;
  if (description.announces_use) LOGI("[%s] use program", "Load");

  LOGI("[%s] get locations", "Load");
  for (size_t i = 0; i < description.location_count; ++i) {
    const ProgramLocation& location = description.locations[i];
    ValueAt(program, location.slot) = LookUp(program.m_hProgram, location);
    if (!program.LocIsValid(location.label, ValueAt(program, location.checked))) return false;
  }

  LOGI("[%s] program id %d", "Load", static_cast<int>(program.m_hProgram));
  LOGI("[%s] SAMPLER_INPUT_TEX %d", "Load", program.m_nSamplerLoc[GLProgram::SAMPLER_INPUT_TEX]);
  return true;
}

}  // namespace lumora
