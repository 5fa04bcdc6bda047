// SPDX-License-Identifier: Apache-2.0
#include "lumora/engine/internal/lens_files.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "lumora/geometry/lens.h"
#include "lumora/platform/c_locale.h"
#include "lumora/platform/regular_file.h"

namespace lumora::engine {
namespace {

constexpr size_t kTextSize = 100;

/// The first bytes of a file, always followed by a terminator.
struct FileText {
  char text[kTextSize + 1] = {};

  FileText(const char* path, SystemPathFunction system_path) {
    char whole[PATH_MAX];
    if (!system_path(path, whole, sizeof(whole))) return;
    text[platform::ReadRegularFile(whole, text, kTextSize)] = '\0';
  }
};

/// The first word after the first space of the sensor file; empty when there is none.
struct SensorName {
  char text[kTextSize + 1] = {};
};
SensorName ReadSensorName(bool second_camera, SystemPathFunction system_path) {
  const FileText file(second_camera ? "/sys/android_camera2/sensor" : "/sys/android_camera/sensor",
                      system_path);
  SensorName name;
  if (const char* space = std::strchr(file.text, ' ')) std::sscanf(space, "%100s", name.text);
  return name;
}

}  // namespace

std::array<float, 4> ReadLensCoefficients(bool second_camera, SystemPathFunction system_path) {
  std::array<float, 4> k{};
  std::copy(std::begin(kDefaultLensCoefficients), std::end(kDefaultLensCoefficients), k.begin());

  const platform::CLocale locale;
  if (!locale.ok()) return k;
  char path[kTextSize];
  std::snprintf(path, sizeof(path), "/system/etc/%s_1",
                ReadSensorName(second_camera, system_path).text);
  const FileText file(path, system_path);
  constexpr char kKey[] = "r_param";
  const char* key = std::strstr(file.text, kKey);
  if (key == nullptr) return k;
  const char* separator = key + std::strlen(kKey);
  if (*separator == '\0') return k;
  float told[4];
  const int count =
      std::sscanf(separator + 1, "%f %f %f %f", &told[0], &told[1], &told[2], &told[3]);
  // What is no finite number ends them, as what is none at all does.
  for (int i = 0; i < count && std::isfinite(told[i]); ++i) k[static_cast<size_t>(i)] = told[i];
  return k;
}

}  // namespace lumora::engine
