// SPDX-License-Identifier: Apache-2.0
// What cache tests expect, and the surroundings that they make for processes.
#ifndef LUMORA_TESTS_CACHE_SAFETY_CACHE_SETTING_H_
#define LUMORA_TESTS_CACHE_SAFETY_CACHE_SETTING_H_

#include <string>
#include <vector>

#include "proofs/cache_safety/cache_process.h"

namespace lumora::test {

/// How often a test repeats what needs luck: `brief` times, or so many of `thorough` as
/// LUMORA_SOAK_CYCLES is of 10,000.
int Repeats(int brief, int thorough);

/// Names of the files in a directory: those of programs, their seals, and all others.
struct Listing {
  std::vector<std::string> programs, seals, others;
};
Listing ListingOf(const std::string& directory);

/// How many programs have a cache file.
constexpr int kCachedPrograms = 13;

/// Removes a program's file and its seal.
void RemoveProgram(const std::string& path);

/// Gives the calling process mounts that no other process sees. False where the system forbids it.
bool UnshareMounts();
/// Puts a file system of `pages` pages of memory in a directory's place, for this process alone.
bool MountSmallDisk(const std::string& directory, int pages);
/// Makes a directory unwritable for this process, for root as well.
bool MountReadOnly(const std::string& directory);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_CACHE_SAFETY_CACHE_SETTING_H_
