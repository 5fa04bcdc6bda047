// SPDX-License-Identifier: Apache-2.0
// The commands of the program. A new one is a new file in this folder, a line here and one in
// `kCommands` of command_line.cpp.
#ifndef LUMORA_TOOLS_COMMANDS_COMMAND_H_
#define LUMORA_TOOLS_COMMANDS_COMMAND_H_

#include <functional>

#include "tools/lumora/options/options.h"
#include "tools/lumora/support/failure.h"

namespace lumora::tools {

/// What a parsed command line asks for. It may throw Failure.
using Action = std::function<ExitCode()>;

/// Each adds the options of a command and returns what the command does once they are parsed.
Action OfferPhoto(Options options);
Action OfferVideo(Options options);
Action OfferRectify(Options options);
Action OfferConvert(Options options);
Action OfferDemo(Options options);
Action OfferDoctor(Options options);
Action OfferBench(Options options);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_COMMANDS_COMMAND_H_
