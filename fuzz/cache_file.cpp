// SPDX-License-Identifier: Apache-2.0
// Files of the program binary cache and what vouches for them. Most inputs change what this driver
// and the library made themselves. Whatever is not theirs to the last byte stays away from the
// driver: it is told as refused, and the program is compiled.
#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz/support/files.h"
#include "fuzz/support/input.h"
#include "fuzz/support/require.h"
#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/gl/cache_file.h"
#include "lumora/platform/gl_api.h"
#include "lumora/platform/settings.h"
#include "lumora/programs/colour_programs.h"

namespace {

using lumora::fuzz::Input;
using lumora::fuzz::Require;
using Bytes = std::vector<uint8_t>;

constexpr char kName[] = "prog_rgb2hsi.bin";
constexpr char kSealName[] = "prog_rgb2hsi.bin.seal";

/// A context, a cache, and the files that belong there; empty where the driver has no binaries.
struct Surroundings {
  lumora::fuzz::ScratchFolder folder;
  android::GPUBeautyFace& engine = *new android::GPUBeautyFace;  // outlives the driver's own end
  Bytes good_file;
  Bytes good_seal;

  Surroundings() {
    Require(engine.m_bEGLReady, "there is a context");
    lumora::platform::SetCacheDirectory(folder.path());
    GLProgRGB2HSI program;
    Require(program.Load(), "the program can be built");
    good_file = read(kName);
    good_seal = read(kSealName);
  }

  Bytes read(const char* name) const {
    std::ifstream file(folder.path() + "/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
};

/// The part of a seal that vouches for the file, whatever it was compiled from: two lines.
Bytes WithoutTexts(const Bytes& seal) {
  auto end = seal.begin();
  for (int line = 0; line < 2; ++line) {
    end = std::find(end, seal.end(), uint8_t{'\n'});
    if (end != seal.end()) ++end;
  }
  return {seal.begin(), end};
}

bool StartsWith(const Bytes& bytes, const Bytes& start) {
  return bytes.size() >= start.size() && std::equal(start.begin(), start.end(), bytes.begin());
}

/// A good file with some bytes changed, cut or made longer.
Bytes Changed(Bytes file, Input& input) {
  if (input.flag()) file.resize(input.take<uint16_t>() % (2 * file.size() + 2));
  while (!input.empty() && !file.empty()) {
    const size_t at = input.take<uint16_t>() % file.size();
    file[at] = static_cast<uint8_t>(file[at] + input.take<uint8_t>());
  }
  return file;
}

/// A refused program stays behind, and shaders always do: without this the context would fill up.
void DeleteLeftovers() {
  for (GLuint name = 1; name < 64; ++name) {
    if (glIsProgram(name) == GL_TRUE) glDeleteProgram(name);
    if (glIsShader(name) == GL_TRUE) glDeleteShader(name);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static Surroundings around;  // its folder is removed at the end
  Input input(data, size);
  const bool whole_load = input.between(0, 7) == 0;
  const auto kind = input.take<uint8_t>() % 4;
  Bytes file = around.good_file;
  Bytes seal = around.good_seal;
  Bytes& changed = kind < 2 ? file : seal;
  changed = kind % 2 == 1 ? input.rest() : Changed(changed, input);
  around.folder.write(kName, file);
  around.folder.write(kSealName, seal);

  GLProgRGB2HSI program;
  if (whole_load) {
    Require(program.Load(), "a bad file never keeps a program from being built");
    Require(program.Use(), "the program can be used");
  } else {
    std::string path = around.folder.path() + "/" + kName;
    const bool good = !around.good_file.empty() && file == around.good_file &&
                      StartsWith(seal, WithoutTexts(around.good_seal)) &&
                      seal.size() <= lumora::kMaxSealSize;
    Require(program.LoadBinary(path.data()) == good, "the driver's own file is taken, no other");
    lumora::FileBytes bytes;
    const auto read = lumora::ReadCacheFile(path.c_str(), 4, &bytes);
    Require((read == lumora::ReadResult::Ok) == (file.size() >= 4), "files of four bytes are read");
    if (read == lumora::ReadResult::Ok) {
      Require(Bytes(bytes.data.get(), bytes.data.get() + bytes.size) == file, "the file is read");
      const bool short_enough = seal.size() <= lumora::kMaxSealSize;
      Require(Bytes(bytes.seal, bytes.seal + bytes.seal_size) == (short_enough ? seal : Bytes()),
              "its seal is read");
    }
  }
  DeleteLeftovers();
  return 0;
}
