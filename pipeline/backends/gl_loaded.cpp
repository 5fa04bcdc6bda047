// SPDX-License-Identifier: Apache-2.0
// The gl backend as a module that is loaded on demand.
#include <dlfcn.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <string>
#include <string_view>

#include "pipeline/backends/gl_module.h"
#include "pipeline/support/failure.h"
#include "pipeline/support/guarded.h"

namespace lumora {
namespace {

/// Where the module lies: seen from the folder of this library, as built and as installed.
std::string ModulePlace() {
  Dl_info library = {};
  std::string_view file;
  if (dladdr(reinterpret_cast<const void*>(&FindGlModule), &library) != 0) file = library.dli_fname;
  return std::string(file.substr(0, file.rfind('/') + 1)) + LUMORA_GL_MODULE;
}

Status NotThere(const std::string& why) {
  return Failure(StatusCode::NoDisplay, "the part of the library that drives GL " + why);
}

/// Whether it was memory that the loader lacked, which it tells in many ways.
bool MemoryWasShort(int error) {
  constexpr size_t kRoom = size_t{32} << 20;  // more than the module takes with its libraries
  if (error == ENOMEM) return true;
  void* const room = mmap(nullptr, kRoom, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  return room == MAP_FAILED || munmap(room, kRoom) != 0;
}

/// Loads the module and keeps it, unless it is of another version.
Status Load(const GlModule** module) {
  const std::string place = ModulePlace();
  if (access(place.c_str(), F_OK) != 0) return NotThere("is missing: " + place);
  errno = 0;
  void* const library = dlopen(place.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    if (MemoryWasShort(errno)) return OutOfMemory();
    const char* const reason = dlerror();
    return NotThere("cannot be loaded: " + (reason != nullptr ? reason : place));
  }
  const auto entry =
      reinterpret_cast<decltype(&LumoraPipelineGl)>(dlsym(library, "LumoraPipelineGl"));
  const GlModule* const found = entry != nullptr ? entry() : nullptr;
  if (found == nullptr || found->version != std::string_view(LUMORA_VERSION)) {
    dlclose(library);
    return NotThere("belongs to another version of it: " + place);
  }
  *module = found;
  return {};
}

}  // namespace

Status FindGlModule(const GlModule** module) {
  static std::atomic<const GlModule*> loaded{nullptr};
  *module = loaded.load(std::memory_order_acquire);
  if (*module != nullptr) return {};
  // Several threads may do this at once: the loader counts, and finds the same module.
  if (Status status = Load(module); !status.ok()) return status;
  loaded.store(*module, std::memory_order_release);
  return {};
}

}  // namespace lumora
