#include "lumora/platform/linux/memory_object_proof.h"

#include <array>
#include <mutex>
#include <vector>

#include "lumora/platform/gl_api.h"
#include "lumora/platform/immortal.h"
#include "lumora/platform/linux/memory_object.h"
#include "lumora/platform/linux/memory_object_rehearsal.h"
#include "lumora/platform/out_of_memory.h"

namespace lumora::platform {
namespace {

// A context of its own on the current display, current for the life of the object.
class PrivateContext {
 public:
  PrivateContext() {
    constexpr std::array<EGLint, 5> kConfig = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT,
                                               EGL_RENDERABLE_TYPE, EGL_OPENGL_ES2_BIT, EGL_NONE};
    constexpr std::array<EGLint, 3> kVersion = {EGL_CONTEXT_CLIENT_VERSION, 2, EGL_NONE};
    constexpr std::array<EGLint, 5> kSize = {EGL_WIDTH, 1, EGL_HEIGHT, 1, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (eglChooseConfig(display_, kConfig.data(), &config, 1, &count) != EGL_TRUE || count == 0) {
      return;
    }
    surface_ = eglCreatePbufferSurface(display_, config, kSize.data());
    context_ = eglCreateContext(display_, config, EGL_NO_CONTEXT, kVersion.data());
    current_ = eglMakeCurrent(display_, surface_, surface_, context_) == EGL_TRUE;
  }
  ~PrivateContext() {
    if (current_) eglMakeCurrent(display_, former_draw_, former_read_, former_context_);
    if (context_ != EGL_NO_CONTEXT) eglDestroyContext(display_, context_);
    if (surface_ != EGL_NO_SURFACE) eglDestroySurface(display_, surface_);
  }
  PrivateContext(const PrivateContext&) = delete;
  PrivateContext& operator=(const PrivateContext&) = delete;

  bool current() const { return current_; }

 private:
  const EGLDisplay display_ = eglGetCurrentDisplay();
  const EGLContext former_context_ = eglGetCurrentContext();
  const EGLSurface former_draw_ = eglGetCurrentSurface(EGL_DRAW);
  const EGLSurface former_read_ = eglGetCurrentSurface(EGL_READ);
  EGLSurface surface_ = EGL_NO_SURFACE;
  EGLContext context_ = EGL_NO_CONTEXT;
  bool current_ = false;
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
