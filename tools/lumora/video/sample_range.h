// SPDX-License-Identifier: Apache-2.0
// Clips whose samples use the limited range (luma 16..235, chroma 16..240) for effects that expect
// the full one.
#ifndef LUMORA_TOOLS_VIDEO_SAMPLE_RANGE_H_
#define LUMORA_TOOLS_VIDEO_SAMPLE_RANGE_H_

#include "tools/lumora/video/y4m.h"

namespace lumora::tools {

/// Stretches all samples of a frame to the full range; what lies outside the limited one is cut.
void StretchToFull(const ClipFrame& limited, ClipFrame& full);

/// Puts into `limited` those samples in which `after` differs from `before`, both of the full
/// range, and leaves all others as they are. The chroma of a mono clip stays without colour.
void MergeFromFull(const ClipFrame& before, const ClipFrame& after, ClipFrame& limited);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_VIDEO_SAMPLE_RANGE_H_
