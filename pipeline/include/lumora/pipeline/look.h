// SPDX-License-Identifier: Apache-2.0
// How faces are to look.
#ifndef LUMORA_PIPELINE_LOOK_H_
#define LUMORA_PIPELINE_LOOK_H_

#include <optional>
#include <string_view>
#include <vector>

#include "lumora/pipeline/export.h"

namespace lumora {

/// Which parts of whitening are applied.
enum class Effect {
  Auto,        ///< whatever of the two is not 0
  Intensity,   ///< `whiten` alone
  Saturation,  ///< `saturate` alone
  Both,        ///< the same as Auto, but the engine is told to apply both
  Mask,        ///< neither: faces are measured and every pass is drawn, and nothing is shifted
};

/// Scales run from 0 to 100; 0 is exactly off and costs nothing.
struct Look {
  int slim = 0;      ///< narrowing of cheeks and chin: 50 is visible but natural, 100 is strong
  int whiten = 0;    ///< brightening of the skin, by about the same step for every skin tone
  int saturate = 0;  ///< richer colour of the skin
  Effect effect = Effect::Auto;
};

/// Whether a look whitens at all: some strength is not 0, and its effect does not leave it out.
LUMORA_PIPELINE_API bool Whitens(const Look& look);

/// A look with a name.
struct Preset {
  const char* name;         ///< one lower-case word
  const char* description;  ///< half a sentence for a user
  Look look;
};

/// All presets, the gentlest first; none at a first call for which memory is short.
LUMORA_PIPELINE_API const std::vector<Preset>& Presets();

/// The look of a preset; nothing where no preset has that name.
LUMORA_PIPELINE_API std::optional<Look> FindPreset(std::string_view name);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_LOOK_H_
