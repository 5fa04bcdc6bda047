// SPDX-License-Identifier: Apache-2.0
#include "proofs/cache_safety/program_pictures.h"

#include <algorithm>
#include <iterator>

#include "lumora/platform/buffer/pixel_digest.h"
#include "programs/program_draw.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

constexpr int kSide = 16;

}  // namespace

ProgramPicture DrawCase(const ProgramCase& program) {
  ProgramPicture picture = {program.name};
  const auto loaded = program.make();
  if (!loaded->Load()) return picture;
  GLsizei shaders = 0;
  GLuint names[2] = {};
  glGetAttachedShaders(loaded->m_hProgram, 2, &shaders, names);
  picture.from_cache = shaders == 0;
  TakeGlErrors();  // what the driver had to say about a file that it refused

  const Texture first(NoiseImage(kSide, kSide, 1));
  const Texture second(NoiseImage(kSide, kSide, 2));
  const Image drawn = DrawProgram(*loaded, {first.name(), second.name()}, kSide, kSide);
  picture.digest = platform::PixelDigest(drawn.bytes.data(), drawn.bytes.size(), 1, 0);
  return picture;
}

std::vector<ProgramCase> CachedPrograms() {
  std::vector<ProgramCase> cached;
  std::copy_if(AllPrograms().begin(), AllPrograms().end(), std::back_inserter(cached),
               [](const ProgramCase& program) { return program.cache_file != nullptr; });
  return cached;
}

std::vector<ProgramPicture> DrawCachedPrograms() {
  std::vector<ProgramPicture> pictures;
  for (const ProgramCase& program : CachedPrograms()) pictures.push_back(DrawCase(program));
  return pictures;
}

}  // namespace lumora::test
