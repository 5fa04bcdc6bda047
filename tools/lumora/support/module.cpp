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
using namespace std::string_literals;

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

[[noreturn]] void Reject(const Module& module, const std::string& why) {
  throw Failure(ExitCode::Failed, "cannot "s + module.purpose + ": " + why);
}

}  // namespace

std::string ModulePlace(const Module& module) {
  const fs::path folder_of_program = Program().parent_path(), file = module.name + ".so"s;
  std::error_code error;
  fs::path first;
  // As installed, and as built.
  for (const char* folder : {LUMORA_MODULES, "../lib/lumora"}) {
    const fs::path place = (folder_of_program / folder / file).lexically_normal();
    if (fs::exists(place, error)) return place;
    if (first.empty()) first = place;
  }
  return first;
}

void* ModuleFunction(const Module& module) {
  const std::string place = ModulePlace(module), remedy = "; "s + module.remedy;
  std::error_code error;
  if (!fs::exists(place, error)) Reject(module, place + " is missing" + remedy);
  void* const library = dlopen(place.c_str(), RTLD_NOW | RTLD_LOCAL);
  void* const found = library != nullptr ? dlsym(library, module.function) : nullptr;
  if (found == nullptr) {
    const char* const reason = dlerror();
    if (!HasRoomForModule()) throw std::bad_alloc();
    Reject(module, (reason != nullptr ? reason : place + " is damaged") + remedy);
  }
  return found;
}

void RejectVersionOf(const Module& module) {
  Reject(module, ModulePlace(module) + " belongs to another version of the command");
}

}  // namespace lumora::tools
