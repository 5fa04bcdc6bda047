// SPDX-License-Identifier: Apache-2.0
// What a picture file holds that its results do not.
#ifndef LUMORA_TOOLS_PICTURE_LOSSES_H_
#define LUMORA_TOOLS_PICTURE_LOSSES_H_

#include "tools/lumora/picture/picture.h"
#include "tools/lumora/support/files.h"

namespace lumora::tools {

/// Sentences about what a result coded anew leaves out: an animation's other frames, what follows
/// behind the picture (a clip, further pictures) and, where `keeps_alpha` is not set, transparency.
Notes LossesOf(const Bytes& file, const Picture& picture, bool keeps_alpha);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_PICTURE_LOSSES_H_
