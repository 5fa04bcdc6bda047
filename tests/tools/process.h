// SPDX-License-Identifier: Apache-2.0
// The command as users run it: a process with arguments, input, output and exit code.
#ifndef LUMORA_TESTS_TOOLS_PROCESS_H_
#define LUMORA_TESTS_TOOLS_PROCESS_H_

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace lumora::test {

struct Result {
  int exit_code = -1;  ///< 128 + signal for a process that was killed
  std::string out, err;
};

struct Environment {
  std::vector<std::pair<std::string, std::string>> set;
  std::string out_file = {};   ///< where standard output goes, instead of into the result
  bool terminal = false;       ///< standard error is a terminal; see TerminalsExist
  bool no_proc = false;        ///< nothing is mounted on /proc; see ProcCanBeHidden
  uint64_t address_space = 0;  ///< bytes; 0 is no limit. Sanitizers need more than there is
  std::string command = LUMORA_COMMAND;
};

/// Whether this system gives pseudo-terminals; some containers have none.
bool TerminalsExist();

/// Whether a limit of the address space says anything; where it does not, there is none.
constexpr bool kAddressSpaceCounts = LUMORA_TEST_SANITIZERS == 0;

/// Whether this process may hide /proc from its children.
bool ProcCanBeHidden();

/// The device that the command computes with in these tests: LUMORA_DEVICE, else gl.
std::string TestDevice();

/// Runs the lumora command of this build to its end, on that device unless the environment or the
/// arguments name another one.
Result RunLumora(const std::vector<std::string>& arguments, const std::string& input = {},
                 const Environment& environment = {});

/// How many lines a text has.
int Lines(const std::string& text);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_TOOLS_PROCESS_H_
