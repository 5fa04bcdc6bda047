// SPDX-License-Identifier: Apache-2.0
// Eyes, nose and mouth of the drawn portraits.
#ifndef LUMORA_TOOLS_MODULES_DRAWING_PORTRAITS_FEATURES_H_
#define LUMORA_TOOLS_MODULES_DRAWING_PORTRAITS_FEATURES_H_

#include "tools/lumora/modules/drawing/portraits/canvas.h"
#include "tools/lumora/modules/drawing/portraits/people.h"

namespace lumora::tools {

// Where the features lie, in units of the drawing plane.
inline constexpr double kEyeY = 436;
inline constexpr double kEyeX = 582;  ///< centre of the right eye
inline constexpr double kEyeHalfWidth = 40;
inline constexpr double kBrowY = 368;
inline constexpr double kMouthY = 632;

void DrawNose(Canvas& canvas, const Person& person);
void DrawMouth(Canvas& canvas, const Person& person);
/// Both eyes with their brows.
void DrawEyes(Canvas& canvas, const Person& person);
void DrawGlasses(Canvas& canvas);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_MODULES_DRAWING_PORTRAITS_FEATURES_H_
