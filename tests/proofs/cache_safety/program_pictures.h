// SPDX-License-Identifier: Apache-2.0
// What every program of the library draws: wrong programs show as wrong pictures.
#ifndef LUMORA_TESTS_CACHE_SAFETY_PROGRAM_PICTURES_H_
#define LUMORA_TESTS_CACHE_SAFETY_PROGRAM_PICTURES_H_

#include <cstdint>
#include <string>
#include <vector>

#include "programs/program_cases.h"

namespace lumora::test {

struct ProgramPicture {
  std::string name;         ///< of the program's case
  uint64_t digest = 0;      ///< of the picture; 0 when the program could not be loaded
  bool from_cache = false;  ///< nothing was compiled
};

/// Loads a program by the library, through the cache, and draws noise with it. Needs a current
/// context.
ProgramPicture DrawCase(const ProgramCase& program);

/// Every program with a cache file, in the order of AllPrograms.
std::vector<ProgramCase> CachedPrograms();

/// DrawCase for each of them.
std::vector<ProgramPicture> DrawCachedPrograms();

}  // namespace lumora::test

#endif  // LUMORA_TESTS_CACHE_SAFETY_PROGRAM_PICTURES_H_
