// The commands of the program. A new one is a new file in commands/ and a line in `kCommands` of
// main.cpp.
#ifndef LUMORA_TOOLS_COMMANDS_COMMAND_H_
#define LUMORA_TOOLS_COMMANDS_COMMAND_H_

#include <CLI/CLI.hpp>
#include <functional>

#include "tools/lumora/support/failure.h"

namespace lumora::tools {

/// What the parsed command line asks for. It may throw Failure.
using Action = std::function<ExitCode()>;

/// Adds a subcommand with its options. When the user calls it, parsing sets `*action`.
using AddCommand = void (*)(CLI::App& program, Action* action);

void AddPhoto(CLI::App& program, Action* action);
void AddVideo(CLI::App& program, Action* action);
void AddRectify(CLI::App& program, Action* action);
void AddConvert(CLI::App& program, Action* action);
void AddDemo(CLI::App& program, Action* action);
void AddDoctor(CLI::App& program, Action* action);
void AddBench(CLI::App& program, Action* action);

/// The exit codes, for the end of --help.
extern const char kExitCodes[];

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_COMMANDS_COMMAND_H_
