// SPDX-License-Identifier: Apache-2.0
#include "lumora/pipeline/look.h"

#include <iterator>
#include <new>

namespace lumora {

bool Whitens(const Look& look) {
  switch (look.effect) {
    case Effect::Intensity:
      return look.whiten > 0;
    case Effect::Saturation:
      return look.saturate > 0;
    case Effect::Auto:
    case Effect::Both:
    case Effect::Mask:
      break;
  }
  return look.whiten > 0 || look.saturate > 0;
}

namespace {

constexpr Preset kPresets[] = {
    {"natural", "a fresh face that nobody takes for retouched", {25, 30, 0, Effect::Auto}},
    {"studio", "even, bright skin and a narrower face", {40, 50, 10, Effect::Auto}},
    {"strong", "as much as still looks like the same person", {70, 80, 20, Effect::Auto}},
};

}  // namespace

const std::vector<Preset>& Presets() {
  static const std::vector<Preset> kNone;
  try {
    static const std::vector<Preset> kAll(std::begin(kPresets), std::end(kPresets));
    return kAll;
  } catch (const std::bad_alloc&) {
    return kNone;
  }
}

std::optional<Look> FindPreset(std::string_view name) {
  for (const Preset& preset : kPresets) {
    if (name == preset.name) return preset.look;
  }
  return std::nullopt;
}

}  // namespace lumora
