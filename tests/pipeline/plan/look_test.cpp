// SPDX-License-Identifier: Apache-2.0
// Looks and presets.
#include "lumora/pipeline/look.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace lumora::test {
namespace {

Look Whitening(int whiten, int saturate, Effect effect) {
  Look look;
  look.whiten = whiten;
  look.saturate = saturate;
  look.effect = effect;
  return look;
}

TEST(Look, WhitensOnlyWithAStrengthThatItsEffectApplies) {
  for (const Effect effect :
       {Effect::Auto, Effect::Intensity, Effect::Saturation, Effect::Both, Effect::Mask}) {
    EXPECT_FALSE(Whitens(Whitening(0, 0, effect))) << static_cast<int>(effect);
    EXPECT_TRUE(Whitens(Whitening(1, 1, effect))) << static_cast<int>(effect);
  }
  EXPECT_FALSE(Whitens(Whitening(0, 100, Effect::Intensity)));
  EXPECT_FALSE(Whitens(Whitening(100, 0, Effect::Saturation)));
  EXPECT_TRUE(Whitens(Whitening(0, 1, Effect::Auto)));
  EXPECT_TRUE(Whitens(Whitening(1, 0, Effect::Both)));
}

TEST(Presets, AreFoundByTheirNamesAndLieWithinTheScales) {
  std::set<std::string> names;
  for (const Preset& preset : Presets()) {
    EXPECT_TRUE(names.insert(preset.name).second) << preset.name;
    EXPECT_STRNE(preset.description, "");
    for (const int value : {preset.look.slim, preset.look.whiten, preset.look.saturate}) {
      EXPECT_GE(value, 0) << preset.name;
      EXPECT_LE(value, 100) << preset.name;
    }
    const auto found = FindPreset(preset.name);
    ASSERT_TRUE(found.has_value()) << preset.name;
    EXPECT_EQ(found->slim, preset.look.slim);
    EXPECT_EQ(found->whiten, preset.look.whiten);
  }
  EXPECT_GE(names.size(), 3u);
  EXPECT_FALSE(FindPreset("no such preset").has_value());
  EXPECT_FALSE(FindPreset("").has_value());
}

TEST(Presets, GrowStronger) {
  int before = 0;
  for (const Preset& preset : Presets()) {
    const int strength = preset.look.slim + preset.look.whiten + preset.look.saturate;
    EXPECT_GT(strength, before) << preset.name;
    before = strength;
  }
}

}  // namespace
}  // namespace lumora::test
