// SPDX-License-Identifier: Apache-2.0
// The checks that come before any work on a request.
#ifndef LUMORA_PIPELINE_REQUEST_CHECK_H_
#define LUMORA_PIPELINE_REQUEST_CHECK_H_

#include "lumora/pipeline/face.h"
#include "lumora/pipeline/frame.h"
#include "lumora/pipeline/lens.h"
#include "lumora/pipeline/look.h"
#include "lumora/pipeline/status.h"

namespace lumora {

/// Whether Process can work with these arguments. Reads no sample.
Status CheckArguments(const ConstFrameView& in, const FrameView& out, FaceSpan faces,
                      const Look& look);

/// Whether so many threads may work on a frame.
Status CheckThreads(int threads);

/// Whether RectifyRadial can work with this lens.
Status CheckLens(const Lens& lens);

/// Whether Rectify can work with this degree.
Status CheckDegree(int degree);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_REQUEST_CHECK_H_
