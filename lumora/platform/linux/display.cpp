// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/display.h"

#include <array>
#include <mutex>
#include <vector>

#include "lumora/platform/gl_api.h"
#include "lumora/platform/immortal.h"
#include "lumora/platform/linux/pbuffer_config.h"
#include "lumora/platform/out_of_memory.h"

namespace lumora::platform {
namespace {

// What the library has to do with one display.
struct Display {
  EGLDisplay handle;
  int references;
  bool initialised_here;  ///< by the library, so that the library may terminate it
  bool kept;              ///< for the life of the process
};

// The displays that the library touched, and the one that GetDisplay chose.
struct Displays {
  std::mutex mutex;
  std::vector<Display> known;
  EGLDisplay chosen = EGL_NO_DISPLAY;
  const char* origin = "none";

  Display* Find(EGLDisplay handle) {
    for (Display& display : known) {
      if (display.handle == handle) return &display;
    }
    return nullptr;
  }
  Display& Entry(EGLDisplay handle) {
    if (Display* const display = Find(handle)) return *display;
    known.push_back({handle, 0, false, false});
    return known.back();
  }
};

Displays& TheDisplays() {
  static Immortal<Displays> displays;
  return *displays;
}

bool IsInitialised(EGLDisplay handle) {
  return eglQueryString(handle, EGL_VERSION) != nullptr;
}

// eglInitialize, remembering whether somebody else had been there before.
EGLBoolean Start(Display& display, EGLint* major, EGLint* minor) {
  const bool foreign = !display.initialised_here && IsInitialised(display.handle);
  const EGLBoolean started = eglInitialize(display.handle, major, minor);
  if (started == EGL_TRUE && !foreign) display.initialised_here = true;
  return started;
}

EGLBoolean Stop(Display& display) {
  if (!display.initialised_here || display.kept) return EGL_TRUE;
  display.initialised_here = false;
  return eglTerminate(display.handle);
}

// Whether the display can be used. A usable one is left initialised for the Initialize that
// follows; another one is left as it was found.
bool Works(Displays& displays, EGLDisplay handle) {
  if (handle == EGL_NO_DISPLAY) return false;
  Display& display = displays.Entry(handle);
  if (Start(display, nullptr, nullptr) != EGL_TRUE) return false;
  EGLConfig config = nullptr;
  if (ChoosePbufferConfig(handle, &config)) return true;
  if (display.references == 0) Stop(display);
  return false;
}

constexpr size_t kMostDevices = 16;
using DisplayList = std::array<EGLDisplay, kMostDevices>;  // EGL_NO_DISPLAY behind the last one

// The displays of the EGL devices, software or hardware ones.
DisplayList DeviceDisplays(bool software) {
  const gl::ExtensionApi& api = gl::Extensions();
  DisplayList found{};
  std::array<EGLDeviceEXT, kMostDevices> devices{};
  EGLint count = 0;
  if (api.eglQueryDevicesEXT(static_cast<EGLint>(devices.size()), devices.data(), &count) !=
      EGL_TRUE) {
    return found;
  }
  auto next = found.begin();
  for (EGLint i = 0; i < count; ++i) {
    EGLDeviceEXT const device = devices[static_cast<size_t>(i)];
    const char* const extensions = api.eglQueryDeviceStringEXT(device, EGL_EXTENSIONS);
    if (gl::HasExtension(extensions, "EGL_MESA_device_software") != software) continue;
    EGLDisplay const display =
        api.eglGetPlatformDisplayEXT(EGL_PLATFORM_DEVICE_EXT, device, nullptr);
    if (display != EGL_NO_DISPLAY) *next++ = display;
  }
  return found;
}

struct Candidate {
  const char* origin;
  bool (*offered)(const char* client_extensions);
  DisplayList (*displays)();
};

bool OffersDevices(const char* client_extensions) {
  return gl::HasExtension(client_extensions, "EGL_EXT_platform_device") &&
         (gl::HasExtension(client_extensions, "EGL_EXT_device_base") ||
          (gl::HasExtension(client_extensions, "EGL_EXT_device_enumeration") &&
           gl::HasExtension(client_extensions, "EGL_EXT_device_query")));
}

// In the order of preference.
constexpr std::array<Candidate, 4> kCandidates = {{
    {"default display", [](const char*) { return true; },
     [] { return DisplayList{eglGetDisplay(EGL_DEFAULT_DISPLAY)}; }},
    {"EGL device", OffersDevices, [] { return DeviceDisplays(false); }},
    {"EGL device (software)", OffersDevices, [] { return DeviceDisplays(true); }},
    {"surfaceless platform",
     [](const char* client_extensions) {
       return gl::HasExtension(client_extensions, "EGL_MESA_platform_surfaceless");
     },
     [] {
       return DisplayList{gl::Extensions().eglGetPlatformDisplayEXT(EGL_PLATFORM_SURFACELESS_MESA,
                                                                    nullptr, nullptr)};
     }},
}};

// The attribute list with `bits` removed from the surface type. A list that names none asks for
// windows, so it gets an entry of its own.
std::vector<EGLint> WithoutSurfaceBits(const EGLint* attributes, EGLint bits) {
  std::vector<EGLint> list;
  bool named = false;
  for (const EGLint* at = attributes; at != nullptr && *at != EGL_NONE; at += 2) {
    const bool surface_type = at[0] == EGL_SURFACE_TYPE;
    named = named || surface_type;
    list.push_back(at[0]);
    list.push_back(surface_type ? at[1] & ~bits : at[1]);
  }
  if (!named) list.insert(list.end(), {EGL_SURFACE_TYPE, EGL_WINDOW_BIT & ~bits});
  list.push_back(EGL_NONE);
  return list;
}

// With the lock held.
EGLDisplay FindDisplay(Displays& displays) {
  if (Works(displays, displays.chosen)) return displays.chosen;

  const char* const client_extensions = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
  for (const Candidate& candidate : kCandidates) {
    if (!candidate.offered(client_extensions)) continue;
    for (EGLDisplay const handle : candidate.displays()) {
      if (!Works(displays, handle)) continue;
      displays.chosen = handle;
      displays.origin = candidate.origin;
      return handle;
    }
  }
  displays.chosen = EGL_NO_DISPLAY;
  displays.origin = "none";
  return EGL_NO_DISPLAY;
}

}  // namespace

EGLDisplay GetDisplay() {
  Displays& displays = TheDisplays();
  const std::lock_guard<std::mutex> guard(displays.mutex);
  return UnlessOutOfMemory(EGL_NO_DISPLAY, [&] { return FindDisplay(displays); });
}

EGLBoolean Initialize(EGLDisplay display, EGLint* major, EGLint* minor) {
  Displays& displays = TheDisplays();
  const std::lock_guard<std::mutex> guard(displays.mutex);
  if (display == EGL_NO_DISPLAY) return eglInitialize(display, major, minor);
  return UnlessOutOfMemory<EGLBoolean>(EGL_FALSE, [&] {
    Display& entry = displays.Entry(display);
    const EGLBoolean started = Start(entry, major, minor);
    if (started == EGL_TRUE) {
      ++entry.references;
    } else if (entry.references == 0) {
      Stop(entry);  // GetDisplay left it initialised for this call
    }
    return started;
  });
}

EGLBoolean ChooseConfig(EGLDisplay display, const EGLint* attributes, EGLConfig* configs,
                        EGLint capacity, EGLint* count) {
  const EGLBoolean answered = eglChooseConfig(display, attributes, configs, capacity, count);
  if (answered != EGL_TRUE || *count > 0) return answered;
  return UnlessOutOfMemory(answered, [&] {
    const std::vector<EGLint> list = WithoutSurfaceBits(attributes, EGL_WINDOW_BIT);
    return eglChooseConfig(display, list.data(), configs, capacity, count);
  });
}

EGLBoolean Terminate(EGLDisplay display) {
  Displays& displays = TheDisplays();
  const std::lock_guard<std::mutex> guard(displays.mutex);
  if (display == EGL_NO_DISPLAY) return eglTerminate(display);
  Display* const entry = displays.Find(display);
  if (entry == nullptr) return EGL_TRUE;
  if (entry->references > 0 && --entry->references > 0) return EGL_TRUE;
  return Stop(*entry);
}

void Forget(EGLDisplay display) {
  Displays& displays = TheDisplays();
  const std::lock_guard<std::mutex> guard(displays.mutex);
  Display* const entry = displays.Find(display);
  if (entry != nullptr && entry->references > 0) --entry->references;
}

void KeepDisplay(EGLDisplay display) {
  Displays& displays = TheDisplays();
  const std::lock_guard<std::mutex> guard(displays.mutex);
  Display* const entry = displays.Find(display);
  if (entry != nullptr && entry->initialised_here) entry->kept = true;
}

const char* DisplayOrigin() {
  Displays& displays = TheDisplays();
  const std::lock_guard<std::mutex> guard(displays.mutex);
  return displays.origin;
}

}  // namespace lumora::platform
