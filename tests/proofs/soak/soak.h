// SPDX-License-Identifier: Apache-2.0
// Running something over and over, and saying what it left behind.
#ifndef LUMORA_TESTS_SOAK_SOAK_H_
#define LUMORA_TESTS_SOAK_SOAK_H_

#include <functional>
#include <string>

#include "proofs/soak/gl_census.h"

namespace lumora::test {

/// How long tests go on: LUMORA_SOAK_CYCLES cycles, else a brief 100. A case that costs `weight`
/// times as much as a bare set-up does as many times fewer, but some.
int Cycles(int weight = 1);

/// What a cycle leaves behind, on purpose or because the driver does.
struct Kept {
  Census objects;
  double bytes = 0;
  double descriptors = 0;     ///< open files
  bool ends_context = false;  ///< every cycle has a context of its own
};

/// Resident memory that may be gained however long it goes on: the driver's and the allocator's
/// pools fill up at times of their own.
constexpr long kSlackKb = 8192;

/// Calls `cycle` with 0, 1, ... for a while, then counts, calls it `cycles` times more and counts
/// again: GL objects grew by exactly what was kept, resident memory by no more than 1.5 times
/// the kept bytes and kSlackKb, open files by no more than was kept, threads not at all. Prints a
/// line for the table of scripts/soak. Memory is not judged where a memory checker holds it back,
/// nor within a context of a driver that gives the code of deleted programs back at its end only.
void Soak(const std::string& name, int cycles, const std::function<void(int)>& cycle,
          const Kept& kept = {});

/// The bytes of resident memory and the open files that a cycle keeps, measured over as many as
/// asked for, or some: what the driver itself takes for the same calls.
Kept MeasureKept(int asked, const std::function<void(int)>& cycle);
double BytesKept(int asked, const std::function<void(int)>& cycle);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_SOAK_SOAK_H_
