// The checks that come before any work on a frame.
#ifndef LUMORA_PIPELINE_FRAMES_FRAME_CHECK_H_
#define LUMORA_PIPELINE_FRAMES_FRAME_CHECK_H_

#include "lumora/pipeline/converter.h"
#include "lumora/pipeline/face.h"
#include "lumora/pipeline/frame.h"
#include "lumora/pipeline/lens.h"
#include "lumora/pipeline/look.h"
#include "lumora/pipeline/status.h"

namespace lumora {

/// The smallest frame, in both directions.
constexpr int kSmallestSide = 32;
/// The largest frame that can be addressed, in both directions; drivers usually allow less.
constexpr int kLargestSide = 32768;

/// Whether Process can work with these arguments. Reads no sample.
Status CheckArguments(const ConstFrameView& in, const FrameView& out, FaceSpan faces,
                      const Look& look);

/// Whether RectifyRadial can work with this lens.
Status CheckLens(const Lens& lens);

/// The part of CheckArguments that looks at the frames alone.
Status CheckFrames(const ConstFrameView& in, const FrameView& out);

/// Whether Convert can work with these arguments.
Status CheckConversion(const ConstFrameView& in, const ImageView& rgb, const ImageView& hsi);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_FRAMES_FRAME_CHECK_H_
