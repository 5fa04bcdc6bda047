// SPDX-License-Identifier: Apache-2.0
// What the process holds of the system.
#ifndef LUMORA_TESTS_SOAK_PROCESS_USE_H_
#define LUMORA_TESTS_SOAK_PROCESS_USE_H_

namespace lumora::test {

struct ProcessUse {
  long resident_kb = 0;
  long descriptors = 0;  ///< open files
  long threads = 0;
};

/// The use at this moment. Memory that the allocator keeps in reserve is given back first.
ProcessUse CurrentUse();

}  // namespace lumora::test

#endif  // LUMORA_TESTS_SOAK_PROCESS_USE_H_
