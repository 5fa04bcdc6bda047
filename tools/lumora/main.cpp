// lumora: face effects on pictures and clips, on the command line.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <new>
#include <string>

#include "tools/lumora/support/command.h"
#include "tools/lumora/support/failure.h"
#include "tools/lumora/support/talk.h"

namespace lumora::tools {

const char kExitCodes[] =
    "Exit codes: 0 done, 1 processing failed or a result could not be written, 2 wrong usage,\n"
    "3 an input cannot be read (missing, damaged, under 32 x 32 pixels, over 200 megapixels),\n"
    "4 no usable display, 5 no face found and one was required.";

namespace {

constexpr AddCommand kCommands[] = {AddPhoto, AddVideo,  AddRectify, AddConvert,
                                    AddDemo,  AddDoctor, AddBench};

int Run(int argc, char** argv) {
  CLI::App program("Retouches faces in pictures and clips, on the GPU or on what stands in for it.",
                   "lumora");
  program.set_version_flag("--version", "lumora " LUMORA_VERSION);
  program.require_subcommand(1);
  program.footer(kExitCodes);
  Action action;
  for (const AddCommand add : kCommands) add(program, &action);
  try {
    program.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return program.exit(error);  // --help and --version
    const auto used = program.get_subcommands();
    Complain(std::string(error.what()) + " (see lumora " +
             (used.empty() ? "" : used.front()->get_name() + " ") + "--help)");
    return static_cast<int>(ExitCode::Usage);
  }
  return static_cast<int>(action());
}

}  // namespace
}  // namespace lumora::tools

int main(int argc, char** argv) {
  using lumora::tools::Complain;
  using lumora::tools::ExitCode;
  try {
    return lumora::tools::Run(argc, argv);
  } catch (const lumora::tools::Failure& failure) {
    Complain(failure.what());
    return static_cast<int>(failure.code());
  } catch (const std::bad_alloc&) {
    Complain("out of memory");
  } catch (const std::exception& error) {
    Complain(std::string("internal error: ") + error.what());
  }
  return static_cast<int>(ExitCode::Failed);
}
