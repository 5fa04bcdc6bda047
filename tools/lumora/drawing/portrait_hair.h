// Hair of the drawn portraits. It comes in two layers, with the head between them.
#ifndef LUMORA_TOOLS_DRAWING_PORTRAIT_HAIR_H_
#define LUMORA_TOOLS_DRAWING_PORTRAIT_HAIR_H_

#include "tools/lumora/drawing/canvas.h"
#include "tools/lumora/drawing/portrait_people.h"

namespace lumora::tools {

void DrawHairBehindHead(Canvas& canvas, const Person& person);
void DrawHairOverForehead(Canvas& canvas, const Person& person);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_DRAWING_PORTRAIT_HAIR_H_
