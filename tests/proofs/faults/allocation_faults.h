// SPDX-License-Identifier: Apache-2.0
// Memory that runs out: any one request of operator new, or every one from a number on, is refused.
//
// The linker leads all forms of operator new here that anything asks for which is linked statically
// into the executable, the C++ library with it (see faults/CMakeLists.txt); drivers have another
// one. The executable keeps the library's log to itself, so that nothing of it asks for memory.
#ifndef LUMORA_TESTS_FAULTS_ALLOCATION_FAULTS_H_
#define LUMORA_TESTS_FAULTS_ALLOCATION_FAULTS_H_

#include <functional>
#include <ostream>

namespace lumora::test {

/// How long memory is short.
enum class Shortage {
  Once,    ///< the one request is refused
  Lasting  ///< and all that follow
};

/// Which requests are refused: the number-th, from 1 on, and perhaps what follows. None at 0.
struct Refusal {
  int number = 0;
  Shortage shortage = Shortage::Once;
};
std::ostream& operator<<(std::ostream& out, const Refusal& refusal);

/// What came of a piece of work.
struct Requests {
  int made = 0;  ///< of any thread
  int refused = 0;
  bool thrown = false;  ///< it ended with an exception
};

/// Does `work` with requests refused. Work that never ends ends the process.
Requests WithRefusal(const Refusal& refusal, const std::function<void()>& work);

/// Calls `check` with every single refusal that fits `requests` requests, and with some lasting
/// ones; with all of them where the environment has LUMORA_TEST_EVERY_FAULT. A check that never
/// ends ends the process.
void ForEachRefusal(int requests, const std::function<void(const Refusal&)>& check);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_FAULTS_ALLOCATION_FAULTS_H_
