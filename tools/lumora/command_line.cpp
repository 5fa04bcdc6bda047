// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string>
#include <vector>

#include "tools/lumora/commands/command.h"
#include "tools/lumora/support/driver_cache.h"
#include "tools/lumora/support/failure.h"

namespace lumora::tools {

namespace {

constexpr char kExitCodes[] =
    "Exit codes: 0 done, 1 processing failed or a result could not be written, 2 wrong usage,\n"
    "3 an input cannot be read (missing, damaged, under 32 x 32 pixels, over 200 megapixels, too\n"
    "large for the memory), 4 no usable display for gl, 5 no face found and one was required.";

struct Command {
  const char* name;
  const char* summary;
  Action (*offer)(Options);
};
constexpr Command kCommands[] = {
    {"photo", "Retouch the faces in a JPEG or PNG picture", OfferPhoto},
    {"video", "Retouch the faces in a Y4M clip", OfferVideo},
    {"rectify", "Straighten the lines in a JPEG or PNG picture", OfferRectify},
    {"convert", "Convert the colours of a picture or a raw frame", OfferConvert},
    {"demo", "Draw portraits and retouch them: no photo is needed", OfferDemo},
    {"doctor", "Say what this machine offers and prove that it works", OfferDoctor},
    {"bench", "Measure how fast the effects are on this machine", OfferBench}};

using Words = std::vector<std::string>;

bool IsOption(const std::string& word) {
  return !word.empty() && word.front() == '-';
}

/// The arguments; `help` and `help COMMAND` are other ways to ask for --help.
Words WordsOf(int argc, char** argv) {
  Words words(argv + std::min(argc, 1), argv + argc);
  if (words.empty() || words.front() != "help") return words;
  const bool about_command = words.size() > 1 && words[1] != "help" && !IsOption(words[1]);
  return about_command ? Words{words[1], "--help"} : Words{"--help"};
}

/// Throws Failure (Usage) unless the first word is one of the commands or an option of the program.
void CheckFirstWord(const CLI::App& program, const Words& words) {
  if (!words.empty() && IsOption(words.front())) return;
  std::string names;
  for (const CLI::App* const command : program.get_subcommands({})) {
    if (!words.empty() && words.front() == command->get_name()) return;
    names += (names.empty() ? "" : ", ") + command->get_name();
  }
  throw Failure(ExitCode::Usage, (words.empty() ? "a command is missing"
                                                : "there is no command \"" + words.front() + "\"") +
                                     "; the commands are " + names + " (see lumora --help)");
}

/// Throws Failure (Usage) for a value like that of `--faces "$FACES"` where the variable is unset:
/// it asks for something and does not say what.
void CheckNoneIsEmpty(const CLI::App& command) {
  for (const CLI::Option* const option : command.get_options()) {
    for (const std::string& value : option->results()) {
      if (value.empty())
        throw Failure(ExitCode::Usage, option->get_name() + ": the value is empty");
    }
  }
}

/// The device that was asked for on the command line.
Device DeviceOf(const CLI::App& command) {
  const CLI::Option* const option = command.get_option_no_throw("--device");
  if (option == nullptr || option->count() == 0) return Device::Auto;
  return FindDevice(option->results().back()).value_or(Device::Auto);
}

/// What the parser found wrong, as a sentence.
std::string Sentence(const CLI::App& program, const CLI::ParseError& error) {
  const auto used = program.get_subcommands();
  if (used.empty() && !program.remaining().empty()) {
    return program.remaining().front() +
           ": there is no such option before a command (see lumora --help)";
  }
  return std::string(error.what()) + " (see lumora " +
         (used.empty() ? "" : used.front()->get_name() + " ") + "--help)";
}

}  // namespace

int RunCommandLine(int argc, char** argv) {
  CLI::App program("Retouches faces in pictures and clips, on the GPU or without.", "lumora");
  program.set_version_flag("--version", "lumora " LUMORA_VERSION);
  program.require_subcommand(1);
  program.footer(kExitCodes);
  Action action;
  for (const Command& command : kCommands) {
    CLI::App* const parser = program.add_subcommand(command.name, command.summary);
    parser->footer(kExitCodes);
    parser->callback([&action, asked = command.offer(Options(*parser))] { action = asked; });
  }
  Words words = WordsOf(argc, argv);
  CheckFirstWord(program, words);
  try {
    std::reverse(words.begin(), words.end());  // the order in which the parser takes them
    program.parse(words);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return program.exit(error);  // --help and --version
    throw Failure(ExitCode::Usage, Sentence(program, error));
  }
  const CLI::App& command = *program.get_subcommands().front();
  CheckNoneIsEmpty(command);
  if (MayStartMesa(DeviceOf(command))) KeepDriverFromMissingItsCache();
  return static_cast<int>(action());
}

}  // namespace lumora::tools
