// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/drawing/drawing.h"

#include <memory>

#include "tools/lumora/support/failure.h"
#include "tools/lumora/support/module.h"

namespace lumora::tools {
namespace {

std::unique_ptr<Drawing> Loaded() {
  try {
    const auto make = reinterpret_cast<MakeDrawing>(ModuleFunction(kDrawingModule, kMakeDrawing));
    std::unique_ptr<Drawing> drawing(make(LUMORA_VERSION));
    if (drawing != nullptr) return drawing;
  } catch (const Failure& failure) {
    throw Failure(failure.code(),
                  std::string("cannot draw: ") + failure.what() + "; install the command again");
  }
  throw Failure(ExitCode::Failed, "cannot draw: " + ModulePlace(kDrawingModule) +
                                      " belongs to another version of the command");
}

}  // namespace

Drawing& Draw() {
  static const std::unique_ptr<Drawing> drawing = Loaded();
  return *drawing;
}

}  // namespace lumora::tools
