// SPDX-License-Identifier: Apache-2.0
#include "support/property_override.h"

#include <cstring>
#include <map>
#include <mutex>

#include "lumora/platform/settings.h"

namespace lumora::test {
namespace {

struct PropertyState {
  std::mutex mutex;
  std::map<std::string, std::string> values;
  std::map<std::string, int> reads;
};

PropertyState& State() {
  static PropertyState* state = new PropertyState;
  return *state;
}

}  // namespace

ScopedProperty::ScopedProperty(const std::string& name, const std::string& value) : name_(name) {
  const std::lock_guard<std::mutex> lock(State().mutex);
  auto& values = State().values;
  const auto found = values.find(name);
  if (found != values.end()) previous_ = found->second;
  values[name] = value;
}

ScopedProperty::~ScopedProperty() {
  const std::lock_guard<std::mutex> lock(State().mutex);
  State().values.erase(name_);
  if (previous_) State().values[name_] = *previous_;
}

int PropertyReads(const std::string& name) {
  const std::lock_guard<std::mutex> lock(State().mutex);
  return State().reads[name];
}

}  // namespace lumora::test

// What the library calls; visible, so that a shared library finds it in the executable first.
extern "C" __attribute__((visibility("default"))) int __system_property_get(const char* name,
                                                                            char* value) {
  lumora::test::PropertyState& state = lumora::test::State();
  const std::lock_guard<std::mutex> lock(state.mutex);
  ++state.reads[name];
  const auto found = state.values.find(name);
  const std::string text = found == state.values.end() ? "" : found->second.substr(0, 91);
  std::memcpy(value, text.c_str(), text.size() + 1);
  return static_cast<int>(text.size());
}
