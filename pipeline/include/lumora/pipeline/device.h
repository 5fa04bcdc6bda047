// SPDX-License-Identifier: Apache-2.0
// What a machine offers to the pipeline.
#ifndef LUMORA_PIPELINE_DEVICE_H_
#define LUMORA_PIPELINE_DEVICE_H_

#include <optional>
#include <string>
#include <string_view>

#include "lumora/pipeline/export.h"

namespace lumora {

/// What computes the pictures.
enum class Device {
  Auto,  ///< the pipeline's choice
  Gl,    ///< a GPU, or a software renderer in its place, by OpenGL ES
  Cpu,   ///< the processor, without any driver
};

/// The largest number of threads that a pipeline works with.
inline constexpr int kMostThreads = 256;

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

/// "auto", "gl" or "cpu"; an empty text for what is no Device. Otherwise as below.
LUMORA_PIPELINE_API const char* Name(Device device);

/// The device of such a name, none for any other text. Thread-safety: any thread. Failure: none.
LUMORA_PIPELINE_API std::optional<Device> FindDevice(std::string_view name);

/// "staged", "memobj", "dmabuf" or "hardware buffer"; an empty text for None and for what is no
/// BufferKind. Thread-safety: any thread. Ownership: the text stays for ever. Failure: none.
LUMORA_PIPELINE_API const char* Name(BufferKind kind);

/// "none", "default display", "EGL device", "EGL device (software)" or "surfaceless platform"; an
/// empty text for what is no DisplaySource. Otherwise as above.
LUMORA_PIPELINE_API const char* Name(DisplaySource source);

/// What a pipeline computes on, for diagnostics. What belongs to the other device stays empty.
struct DeviceInfo {
  Device device = Device::Auto;  ///< Gl or Cpu; Auto: nothing is known
  std::string reason;            ///< why this one: a sentence without its full stop

  std::string simd;  ///< cpu: the instruction set, such as "AVX2"
  int threads = 0;   ///< cpu: how many work on one frame

  // gl
  DisplaySource display = DisplaySource::None;
  std::string vendor, renderer, version;  ///< of the GL driver
  BufferKind buffer_kind = BufferKind::None;
  int max_texture_size = 0;  ///< pixels
  std::string cache_directory;
  bool program_binaries = false;  ///< whether the driver can cache programs
};

}  // namespace lumora

#endif  // LUMORA_PIPELINE_DEVICE_H_
