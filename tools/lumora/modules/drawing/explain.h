// SPDX-License-Identifier: Apache-2.0
// A picture that shows what was found in it and what is done to it.
#ifndef LUMORA_TOOLS_MODULES_DRAWING_EXPLAIN_H_
#define LUMORA_TOOLS_MODULES_DRAWING_EXPLAIN_H_

#include <opencv2/core.hpp>
#include <vector>

#include "lumora/pipeline/face.h"
#include "lumora/pipeline/report.h"

namespace lumora::tools {

/// The 8-bit BGR picture (enlarged or reduced to a size in which the drawing can be read) with, for
/// each face: its box, the landmarks with their numbers in the order of NamedLandmarks, the circle
/// in which pixels move with arrows along which they move, and the ellipses of whitening. Blocks
/// are outlined with dashes.
cv::Mat ExplainSheet(const cv::Mat& picture, const std::vector<Face>& faces,
                     const std::vector<PixelRect>& blocks);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_MODULES_DRAWING_EXPLAIN_H_
