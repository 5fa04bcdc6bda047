// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/driver_digest.h"

#include "lumora/platform/edition.h"
#include "lumora/platform/gl_api.h"

namespace lumora::platform {

void AddLibraryAndDriver(ByteDigest* digest) {
  digest->AddText(kLibraryVersion);
  constexpr GLenum kNames[] = {GL_VENDOR, GL_RENDERER, GL_VERSION};
  for (const GLenum name : kNames) {
    digest->AddText(reinterpret_cast<const char*>(glGetString(name)));
  }
}

}  // namespace lumora::platform
