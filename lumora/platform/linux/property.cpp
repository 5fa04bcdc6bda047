#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

#include "lumora/platform/out_of_memory.h"
#include "lumora/platform/settings.h"

namespace {

// The value in a file of "name=value" lines; empty when absent.
std::string FromFile(const char* path, const std::string& name) {
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.size() > name.size() && line[name.size()] == '=' && line.rfind(name, 0) == 0) {
      return line.substr(name.size() + 1);
    }
  }
  return {};
}

std::string PropertyValue(const std::string& name) {
  std::string variable = "LUMORA_PROP_" + name;
  std::replace(variable.begin(), variable.end(), '.', '_');
  if (const char* value = std::getenv(variable.c_str())) return value;
  const char* const path = std::getenv("LUMORA_PROP_FILE");
  return path != nullptr ? FromFile(path, name) : std::string();
}

}  // namespace

// Weak, so that a host program's own definition replaces it.
extern "C" __attribute__((weak)) int __system_property_get(const char* name, char* value) {
  const std::string text =
      lumora::platform::UnlessOutOfMemory(std::string(), [name] { return PropertyValue(name); });
  const size_t length = std::min<size_t>(text.size(), lumora::platform::kPropertyValueMax - 1);
  std::memcpy(value, text.data(), length);
  value[length] = '\0';
  return static_cast<int>(length);
}
