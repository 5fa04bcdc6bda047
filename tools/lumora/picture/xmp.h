// SPDX-License-Identifier: Apache-2.0
// XMP packets, of which only what depends on the pixels is understood.
#ifndef LUMORA_TOOLS_PICTURE_XMP_H_
#define LUMORA_TOOLS_PICTURE_XMP_H_

#include "tools/lumora/support/files.h"

namespace lumora::tools {

/// Sets the orientation, where the packet has one, to upright. All other bytes stay.
void CorrectXmp(Bytes& packet);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_PICTURE_XMP_H_
