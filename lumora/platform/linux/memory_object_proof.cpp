// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/linux/memory_object_proof.h"

#include <mutex>
#include <vector>

#include "lumora/platform/gl_api.h"
#include "lumora/platform/immortal.h"
#include "lumora/platform/linux/memory_object.h"
#include "lumora/platform/linux/memory_object_rehearsal.h"
#include "lumora/platform/linux/pbuffer_config.h"
#include "lumora/platform/offscreen_context.h"
#include "lumora/platform/out_of_memory.h"

namespace lumora::platform {
namespace {

// A context of its own on the current display, current for the life of the object.
class PrivateContext {
 public:
  PrivateContext()
      : current_(ChoosePbufferConfig(display_, &config_) && MakeContextCurrent(Handles(), Ignore)) {
  }
  ~PrivateContext() {
    if (current_) eglMakeCurrent(display_, former_draw_, former_read_, former_context_);
    DestroyContext(Handles(), Ignore);
  }
  PrivateContext(const PrivateContext&) = delete;
  PrivateContext& operator=(const PrivateContext&) = delete;

  bool current() const { return current_; }

 private:
  static void Ignore(const char*) {}
  OffscreenHandles Handles() { return {display_, config_, surface_, context_}; }

  const EGLContext former_context_ = eglGetCurrentContext();
  const EGLSurface former_draw_ = eglGetCurrentSurface(EGL_DRAW);
  const EGLSurface former_read_ = eglGetCurrentSurface(EGL_READ);
  EGLDisplay display_ = eglGetCurrentDisplay();
  EGLConfig config_ = nullptr;
  EGLSurface surface_ = EGL_NO_SURFACE;
  EGLContext context_ = EGL_NO_CONTEXT;
  const bool current_;
};

const VulkanMemory* Prove() {
  const PrivateContext context;
  if (!context.current()) return nullptr;
  const VulkanMemory* const device = CurrentMemoryDevice();
  return device != nullptr && RehearseFrames(*device) ? device : nullptr;
}

struct Proof {
  EGLDisplay display;
  const VulkanMemory* device;
};

struct Proofs {
  std::mutex mutex;
  std::vector<Proof> known;
};

}  // namespace

const VulkanMemory* ProvenMemoryDevice() {
  const EGLDisplay display = eglGetCurrentDisplay();
  if (display == EGL_NO_DISPLAY) return nullptr;
  static Immortal<Proofs> proofs;
  const std::lock_guard<std::mutex> guard((*proofs).mutex);
  std::vector<Proof>& known = (*proofs).known;
  for (const Proof& proof : known) {
    if (proof.display == display) return proof.device;
  }
  return UnlessOutOfMemory<const VulkanMemory*>(nullptr, [&] {
    known.reserve(known.size() + 1);  // before anything is made
    known.push_back({display, Prove()});
    return known.back().device;
  });
}

}  // namespace lumora::platform
