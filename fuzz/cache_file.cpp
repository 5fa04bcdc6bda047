// Files of the program binary cache. Most inputs change the file that this driver made itself,
// since one made of nothing is refused at its first bytes.
#include <fstream>
#include <iterator>
#include <string>

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

/// A context, a cache, and the file that the driver wants there; empty where it has no binaries.
struct Surroundings {
  lumora::fuzz::ScratchFolder folder;
  lumora::fuzz::MemoryFile memory;
  android::GPUBeautyFace& engine = *new android::GPUBeautyFace;  // outlives the driver's own end
  Bytes good_file;

  Surroundings() {
    Require(engine.m_bEGLReady, "there is a context");
    lumora::platform::SetCacheDirectory(folder.path());
    GLProgRGB2HSI program;
    Require(program.Load(), "the program can be built");
    std::ifstream file(folder.path() + "/" + kName, std::ios::binary);
    good_file.assign(std::istreambuf_iterator<char>(file), {});
  }
};

/// The good file with some bytes changed, cut or made longer.
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
  const Bytes file = input.flag() ? input.rest() : Changed(around.good_file, input);

  if (whole_load) {
    around.folder.write(kName, file);
    GLProgRGB2HSI program;
    Require(program.Load(), "a bad file never keeps a program from being built");
    Require(program.Use(), "the program can be used");
  } else {
    around.memory.set(file);
    std::string path = around.memory.path();
    GLProgRGB2HSI program;
    const bool loaded = program.LoadBinary(path.data());
    Require(!loaded || file.size() > 4, "a file without a binary is refused");
    Require(loaded || file != around.good_file || file.empty(), "the driver's own file is taken");
    lumora::FileBytes bytes;
    const auto read = lumora::ReadCacheFile(path.c_str(), 4, &bytes);
    Require((read == lumora::ReadResult::Ok) == (file.size() >= 4), "files of four bytes are read");
    Require(read != lumora::ReadResult::Ok ||
                Bytes(bytes.data.get(), bytes.data.get() + bytes.size) == file,
            "the file's bytes are read");
  }
  DeleteLeftovers();
  return 0;
}
