// SPDX-License-Identifier: Apache-2.0
// What a machine offers to the pipeline.
#ifndef LUMORA_PIPELINE_DEVICE_H_
#define LUMORA_PIPELINE_DEVICE_H_

#include <string>

#include "lumora/pipeline/export.h"

namespace lumora {

/// How CPU and GPU share the memory of images.
enum class BufferKind {
  None,            ///< nothing was shared
  Staged,          ///< not at all: images are copied from one to the other
  MemoryObject,    ///< Vulkan's memory, imported by the GL driver
  DmaBuf,          ///< buffers of the kernel, imported by EGL
  HardwareBuffer,  ///< Android's own
};

/// How the EGL display was found.
enum class DisplaySource {
  None,            ///< there is none
  Default,         ///< the system's default display
  Device,          ///< a graphics device
  SoftwareDevice,  ///< a device that computes on the CPU
  Surfaceless,     ///< Mesa's platform without surfaces
};

/// "staged", "memobj", "dmabuf" or "hardware buffer"; an empty text for None and for what is no
/// BufferKind. Thread-safety: any thread. Ownership: the text stays for ever. Failure: none.
LUMORA_PIPELINE_API const char* Name(BufferKind kind);

/// "none", "default display", "EGL device", "EGL device (software)" or "surfaceless platform"; an
/// empty text for what is no DisplaySource. Otherwise as above.
LUMORA_PIPELINE_API const char* Name(DisplaySource source);

/// What the machine offers, for diagnostics.
struct DeviceInfo {
  DisplaySource display = DisplaySource::None;
  std::string vendor, renderer, version;  ///< of the GL driver
  BufferKind buffer_kind = BufferKind::None;
  int max_texture_size = 0;  ///< pixels
  std::string cache_directory;
  bool program_binaries = false;  ///< whether the driver can cache programs
};

}  // namespace lumora

#endif  // LUMORA_PIPELINE_DEVICE_H_
