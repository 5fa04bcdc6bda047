// SPDX-License-Identifier: Apache-2.0
// The files that tell a camera's lens coefficients.
#ifndef LUMORA_ENGINE_INTERNAL_LENS_FILES_H_
#define LUMORA_ENGINE_INTERNAL_LENS_FILES_H_

#include <array>
#include <cstddef>

#include "lumora/platform/settings.h"

namespace lumora::engine {

/// Puts the system root before a path, as platform::SystemPath does.
using SystemPathFunction = bool (*)(const char* path, char* text, size_t size);

/// Coefficients k0 .. k3 of the lens of the first or second camera. The camera's sensor name is the
/// first word after the first space in "/sys/android_camera/sensor" ("/sys/android_camera2/sensor"
/// for the second); the coefficients are the numbers after "r_param" and one separator in
/// "/system/etc/<name>_1", with a decimal point whatever the host's locale. Only regular files and
/// their first 100 bytes count. Whatever is missing, does not parse or is not finite, and all that
/// follows it, keeps the default of kDefaultLensCoefficients. Paths lie below the system root.
std::array<float, 4> ReadLensCoefficients(bool second_camera, SystemPathFunction system_path);

/// The same below the engine's own system root.
inline std::array<float, 4> ReadLensCoefficients(bool second_camera) {
  return ReadLensCoefficients(second_camera, platform::SystemPath);
}

}  // namespace lumora::engine

#endif  // LUMORA_ENGINE_INTERNAL_LENS_FILES_H_
