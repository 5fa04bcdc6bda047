// SPDX-License-Identifier: Apache-2.0
// The lenses of the device's cameras.
#ifndef LUMORA_PIPELINE_SUPPORT_CAMERA_LENS_H_
#define LUMORA_PIPELINE_SUPPORT_CAMERA_LENS_H_

#include "lumora/pipeline/lens.h"

namespace lumora {

/// What the files of a camera say of its lens now, as the engine reads them, but without the
/// engine's library. Numbers are finite, and may be beyond the range of LensCoefficients. Files lie
/// below the system root that the engine has, where the process is linked to it, else below
/// LUMORA_SYSTEM_ROOT. Throws where memory is short.
LensCoefficients ReadCameraLens(Camera camera);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_SUPPORT_CAMERA_LENS_H_
