// SPDX-License-Identifier: Apache-2.0
// The options that say how faces are to look, the same in every command.
#ifndef LUMORA_TOOLS_OPTIONS_LOOK_OPTIONS_H_
#define LUMORA_TOOLS_OPTIONS_LOOK_OPTIONS_H_

#include <optional>
#include <string>
#include <vector>

#include "lumora/pipeline/pipeline.h"
#include "tools/lumora/options/options.h"

namespace lumora::tools {

/// What was given on the command line. Without any of the scales and without a preset the look is
/// that of kUsualPreset; otherwise scales that are not named are those of the preset, or 0.
class LookOptions {
 public:
  static constexpr char kUsualPreset[] = "natural";

  /// Adds --slim, --whiten, --saturate, --effect and --preset; the object must outlive parsing.
  void AddTo(Options& options);

  Look Chosen() const;

  /// Sentences about options that have no effect beside the others.
  std::vector<std::string> Remarks() const;

 private:
  std::optional<int> slim_, whiten_, saturate_;
  Effect effect_ = Effect::Auto;
  std::string preset_;
};

/// Whether the look leaves every picture as it is.
bool IsOff(const Look& look);

/// As --effect names it.
std::string NameOf(Effect effect);

/// Adds --chain.
void AddChain(Options& options, Chain* chain);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_OPTIONS_LOOK_OPTIONS_H_
