// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/options/look_options.h"

#include <map>

#include "tools/lumora/support/failure.h"

namespace lumora::tools {
namespace {

const std::map<std::string, Effect> kEffects = {{"auto", Effect::Auto},
                                                {"intensity", Effect::Intensity},
                                                {"saturation", Effect::Saturation},
                                                {"both", Effect::Both},
                                                {"mask", Effect::Mask}};
const std::map<std::string, Chain> kChains = {
    {"auto", Chain::Auto}, {"preview", Chain::Preview}, {"capture", Chain::Capture}};

Look PresetNamed(const std::string& name) {
  const std::optional<Look> look = FindPreset(name);
  if (!look) throw Failure(ExitCode::Usage, "there is no preset \"" + name + "\"");
  return *look;
}

}  // namespace

void LookOptions::AddTo(Options& options) {
  const auto scale = [&options](const char* name, std::optional<int>* value, const char* help) {
    options.Whole(name, value, 0, 100, help);
  };
  scale("--slim", &slim_, "how much cheeks and chin are narrowed, 0 (exactly off) to 100");
  scale("--whiten", &whiten_, "how much the skin is brightened, 0 (exactly off) to 100");
  scale("--saturate", &saturate_, "how much richer its colour gets, 0 (exactly off) to 100");
  options.Choice("--effect", &effect_, kEffects,
                 "parts of whitening to apply; mask: every pass is drawn, and nothing is shifted");
  std::string presets = "a look with a name:";
  std::vector<std::string> names;
  for (const lumora::Preset& preset : Presets()) {
    const Look& look = preset.look;
    names.emplace_back(preset.name);
    presets += std::string("\n  ") + preset.name + ": " + preset.description + " (" +
               std::to_string(look.slim) + ", " + std::to_string(look.whiten) + ", " +
               std::to_string(look.saturate) + ")";
  }
  presets += "\nScales that are given replace the preset's. Without a preset and a scale: ";
  options.Choice("--preset", Need::Optional, &preset_, names, presets + kUsualPreset);
}

Look LookOptions::Chosen() const {
  const bool named = slim_ || whiten_ || saturate_;
  Look look;
  if (!preset_.empty()) {
    look = PresetNamed(preset_);
  } else if (!named) {
    look = PresetNamed(kUsualPreset);
  }
  look.slim = slim_.value_or(look.slim);
  look.whiten = whiten_.value_or(look.whiten);
  look.saturate = saturate_.value_or(look.saturate);
  if (effect_ != Effect::Auto) look.effect = effect_;
  return look;
}

bool IsOff(const Look& look) {
  return look.slim == 0 && !Whitens(look);
}

std::vector<std::string> LookOptions::Remarks() const {
  std::vector<std::string> remarks;
  const std::string effect = "--effect " + NameOf(effect_);
  const auto ignored = [&](const char* option, std::optional<int> value, Effect other) {
    if (effect_ == other && value.value_or(0) > 0) {
      remarks.push_back(option + std::string(" does nothing: ") + effect + " leaves it out");
    }
  };
  ignored("--whiten", whiten_, Effect::Saturation);
  ignored("--saturate", saturate_, Effect::Intensity);
  if (remarks.empty() && effect_ != Effect::Auto && !Whitens(Chosen())) {
    remarks.push_back(effect + " does nothing: the scale that it applies is 0");
  }
  return remarks;
}

std::string NameOf(Effect effect) {
  for (const auto& [name, named] : kEffects) {
    if (named == effect) return name;
  }
  return {};
}

void AddChain(Options& options, Chain* chain) {
  options.Choice(
      "--chain", chain, kChains,
      "way through the engine: preview (the whole picture at once), capture (only the blocks "
      "around faces), auto (preview up to 1280 pixels across)");
}

}  // namespace lumora::tools
