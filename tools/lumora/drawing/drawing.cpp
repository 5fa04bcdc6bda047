// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/drawing/drawing.h"

#include <memory>

namespace lumora::tools {

Drawing& Draw() {
  static const std::unique_ptr<Drawing> drawing = [] {
    const auto make = reinterpret_cast<MakeDrawing>(ModuleFunction(kDrawingModule));
    return MadeBy(kDrawingModule, make(LUMORA_VERSION));
  }();
  return *drawing;
}

}  // namespace lumora::tools
