// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "lumora/platform/out_of_memory.h"
#include "lumora/platform/property.h"
#include "lumora/platform/regular_file.h"

namespace {

/// The file of a stream that is closed at the end.
struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

/// Reads a line of "name=value" from its start, and says whether it is that of `name`. The value,
/// as far as it fits, and whatever else the line holds, has then been read.
bool ReadLine(std::FILE* file, const std::string& name, std::string* value) {
  constexpr size_t kKept = lumora::platform::kPropertyValueMax;  // one more than a value has
  size_t matched = 0;
  bool fits = true, cut = false;
  value->clear();
  int c = std::getc(file);
  for (; c != EOF && c != '\n'; c = std::getc(file)) {
    if (matched <= name.size()) {
      fits = fits && c == (matched < name.size() ? static_cast<unsigned char>(name[matched]) : '=');
      ++matched;
    } else if (value->size() < kKept) {
      value->push_back(static_cast<char>(c));
    } else {
      cut = true;
    }
  }
  if (!cut && !value->empty() && value->back() == '\r') value->pop_back();
  return fits && matched > name.size();
}

// The value in a file of "name=value" lines; empty when absent.
std::string FromFile(const char* path, const std::string& name) {
  const std::unique_ptr<std::FILE, CloseFile> file(lumora::platform::OpenRegularFile(path));
  std::string value;
  while (file != nullptr && std::feof(file.get()) == 0 && std::ferror(file.get()) == 0) {
    if (ReadLine(file.get(), name, &value)) return value;
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
