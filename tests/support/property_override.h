// SPDX-License-Identifier: Apache-2.0
// System properties that tests set. Link `lumora_property_override` (an object library): it puts
// `__system_property_get` into the test executable, in place of the library's own.
#ifndef LUMORA_TESTS_SUPPORT_PROPERTY_OVERRIDE_H_
#define LUMORA_TESTS_SUPPORT_PROPERTY_OVERRIDE_H_

#include <optional>
#include <string>

namespace lumora::test {

/// The property that selects the shader variants with diagnostic red pixels.
constexpr const char* kShowMaskProperty = "persist.debug.camera.showmask";

/// Gives a property a value while it lives; the earlier value, or absence, comes back after it.
/// Properties that nobody set are absent: length 0, empty value. Thread-safe.
class ScopedProperty {
 public:
  ScopedProperty(const std::string& name, const std::string& value);
  ~ScopedProperty();
  ScopedProperty(const ScopedProperty&) = delete;
  ScopedProperty& operator=(const ScopedProperty&) = delete;

 private:
  std::string name_;
  std::optional<std::string> previous_;
};

/// How often `name` was read since the start of the process.
int PropertyReads(const std::string& name);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_SUPPORT_PROPERTY_OVERRIDE_H_
