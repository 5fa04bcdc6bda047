// SPDX-License-Identifier: Apache-2.0
#ifndef LUMORA_TOOLS_COMMAND_LINE_H_
#define LUMORA_TOOLS_COMMAND_LINE_H_

namespace lumora::tools {

/// Does what the arguments ask for, and tells the exit code. Throws Failure (Usage) where they are
/// wrong, and what the command throws.
int RunCommandLine(int argc, char** argv);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_COMMAND_LINE_H_
