// SPDX-License-Identifier: Apache-2.0
// Hair of the drawn portraits. It comes in two layers, with the head between them.
#ifndef LUMORA_TOOLS_MODULES_DRAWING_PORTRAITS_HAIR_H_
#define LUMORA_TOOLS_MODULES_DRAWING_PORTRAITS_HAIR_H_

#include "tools/lumora/modules/drawing/portraits/canvas.h"
#include "tools/lumora/modules/drawing/portraits/people.h"

namespace lumora::tools {

void DrawHairBehindHead(Canvas& canvas, const Person& person);
void DrawHairOverForehead(Canvas& canvas, const Person& person);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_MODULES_DRAWING_PORTRAITS_HAIR_H_
