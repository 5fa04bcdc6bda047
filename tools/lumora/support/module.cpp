// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/support/module.h"

#include <dlfcn.h>
#include <sys/auxv.h>
#include <sys/mman.h>

#include <filesystem>
#include <new>

#include "tools/lumora/support/failure.h"

namespace lumora::tools {

namespace {

namespace fs = std::filesystem;

/// Where the program lies; without /proc, as it was called.
fs::path Program() {
  std::error_code error;
  fs::path program = fs::read_symlink("/proc/self/exe", error);
  if (!error) return program;
  return fs::canonical(reinterpret_cast<const char*>(getauxval(AT_EXECFN)), error);
}

/// Whether the address space has room for a module and the libraries that it takes. Where it has
/// not, the loader says so in many ways.
bool HasRoomForModule() {
  constexpr size_t kLargest = size_t{128} << 20;  // three times what the face finder takes
  void* const room = mmap(nullptr, kLargest, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  return room != MAP_FAILED && munmap(room, kLargest) == 0;
}

}  // namespace

std::string ModulePlace(const std::string& name) {
  const fs::path folder_of_program = Program().parent_path();
  std::error_code error;
  fs::path first;
  // As installed, and as built.
  for (const char* folder : {LUMORA_MODULES, "../lib/lumora"}) {
    const fs::path place = (folder_of_program / folder / (name + ".so")).lexically_normal();
    if (fs::exists(place, error)) return place;
    if (first.empty()) first = place;
  }
  return first;
}

void* ModuleFunction(const std::string& name, const char* function) {
  const std::string place = ModulePlace(name);
  std::error_code error;
  if (!fs::exists(place, error)) throw Failure(ExitCode::Failed, place + " is missing");
  void* const module = dlopen(place.c_str(), RTLD_NOW | RTLD_LOCAL);
  void* const found = module != nullptr ? dlsym(module, function) : nullptr;
  if (found == nullptr) {
    const char* const reason = dlerror();
    if (!HasRoomForModule()) throw std::bad_alloc();
    throw Failure(ExitCode::Failed, reason != nullptr ? reason : place + " is damaged");
  }
  return found;
}

}  // namespace lumora::tools
