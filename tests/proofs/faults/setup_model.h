// SPDX-License-Identifier: Apache-2.0
// What a set-up calls, part by part, and what has to be told of each call that fails.
#ifndef LUMORA_TESTS_FAULTS_SETUP_MODEL_H_
#define LUMORA_TESTS_FAULTS_SETUP_MODEL_H_

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "proofs/faults/fault_layer.h"
#include "support/log_capture.h"

namespace lumora::test {

/// How program binaries are kept.
enum class Cache {
  Off,   ///< not at all
  Cold,  ///< the directory is empty
  Warm   ///< every file is there
};
const char* NameOf(Cache cache);

enum class After {
  Works,   ///< the fault was got round: everything works as without it
  Broken,  ///< something is missing, and was told
  Silent   ///< something is missing and nobody looks: it may show in pictures
};

/// What a fault leads to.
struct Consequence {
  std::vector<LogLine> errors = {};  ///< ERROR lines of the part, in order
  After after = After::Works;
  bool ends_group = false;  ///< the following parts of the group are not made
};

/// One thing that a set-up makes.
struct Part {
  std::string name;
  std::map<Call, int> calls;  ///< how often it makes each, when nothing fails
  /// What follows when the ordinal-th call of a kind fails, from 1 on.
  std::function<Consequence(Call call, int ordinal)> failing;
  std::vector<LogLine> errors = {};  ///< ERROR lines that it prints anyway
  int group = 0;
};

using Parts = std::vector<Part>;
Parts operator+(Parts first, const Parts& second);

/// The parts, by what they are. `staged` is the kind of shared memory in use.
Part BufferedImage(const char* name, bool staged);
Part PlainImage(const char* name);
Part PlaneTexture(const char* name);
Part LargeStore(bool staged);
/// The programs of a step ("InitShader"), by their names in the table of programs.
Parts Programs(const std::vector<const char*>& names, const char* step, int group, Cache cache,
               const std::string& directory);
/// A program that is loaded by itself.
Part LoneProgram(const char* name, Cache cache, const std::string& directory);

/// All calls of the parts.
CallCounts CountsOf(const Parts& parts);

/// All of the set-up's ERROR lines, and the state after it.
Consequence Predict(const Parts& parts, const Fault& fault);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_FAULTS_SETUP_MODEL_H_
