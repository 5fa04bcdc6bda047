// SPDX-License-Identifier: Apache-2.0
// The checks of frames and images that come before any work.
#ifndef LUMORA_PIPELINE_FRAMES_FRAME_CHECK_H_
#define LUMORA_PIPELINE_FRAMES_FRAME_CHECK_H_

#include "lumora/pipeline/frame.h"
#include "lumora/pipeline/status.h"

namespace lumora {

/// Whether the pipeline can work with these frames.
Status CheckFrames(const ConstFrameView& in, const FrameView& out);

/// Whether Convert can work with these arguments.
Status CheckConversion(const ConstFrameView& in, const ImageView& rgb, const ImageView& hsi);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_FRAMES_FRAME_CHECK_H_
