// SPDX-License-Identifier: Apache-2.0
// lumora: face effects on pictures and clips, on the command line.
#include <exception>
#include <new>
#include <string>

#include "tools/lumora/command_line.h"
#include "tools/lumora/support/failure.h"
#include "tools/lumora/support/memory.h"
#include "tools/lumora/support/talk.h"

int main(int argc, char** argv) {
  using lumora::tools::Complain;
  using lumora::tools::ExitCode;
  try {
    try {
      return lumora::tools::RunCommandLine(argc, argv);
    } catch (...) {
      lumora::tools::RethrowIfOutOfMemory();
      throw;
    }
  } catch (const lumora::tools::Failure& failure) {
    Complain(failure.what());
    if (!failure.remedy().empty()) lumora::tools::Say("  " + failure.remedy());
    return static_cast<int>(failure.code());
  } catch (const std::bad_alloc&) {
    Complain("out of memory");
  } catch (const std::exception& error) {
    Complain(std::string("internal error: ") + error.what());
  }
  return static_cast<int>(ExitCode::Failed);
}
