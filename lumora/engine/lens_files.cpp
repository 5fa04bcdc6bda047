#include "lumora/engine/lens_files.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "lumora/geometry/lens.h"
#include "lumora/platform/settings.h"

namespace lumora {
namespace {

constexpr size_t kTextSize = 100;

/// The first bytes of a file, always followed by a terminator.
struct FileText {
  char text[kTextSize + 1] = {};

  explicit FileText(const char* path) {
    char whole[PATH_MAX];
    if (!platform::SystemPath(path, whole, sizeof(whole))) return;
    if (std::FILE* file = std::fopen(whole, "rb")) {
      const size_t count = std::fread(text, 1, kTextSize, file);
      std::fclose(file);
      text[count] = '\0';
    }
  }
};

/// The first word after the first space of the sensor file; empty when there is none.
struct SensorName {
  char text[kTextSize + 1] = {};
};
SensorName ReadSensorName(bool second_camera) {
  const FileText file(second_camera ? "/sys/android_camera2/sensor" : "/sys/android_camera/sensor");
  SensorName name;
  if (const char* space = std::strchr(file.text, ' ')) std::sscanf(space, "%100s", name.text);
  return name;
}

}  // namespace

std::array<float, 4> ReadLensCoefficients(bool second_camera) {
  std::array<float, 4> k{};
  std::copy(std::begin(kDefaultLensCoefficients), std::end(kDefaultLensCoefficients), k.begin());

  char path[kTextSize];
  std::snprintf(path, sizeof(path), "/system/etc/%s_1", ReadSensorName(second_camera).text);
  const FileText file(path);
  constexpr char kKey[] = "r_param";
  const char* key = std::strstr(file.text, kKey);
  if (key == nullptr) return k;
  const char* separator = key + std::strlen(kKey);
  if (*separator == '\0') return k;
  std::sscanf(separator + 1, "%f %f %f %f", &k[0], &k[1], &k[2], &k[3]);
  return k;
}

}  // namespace lumora
