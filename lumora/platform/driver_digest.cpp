#include "lumora/platform/driver_digest.h"

#include <initializer_list>

#include "lumora/platform/edition.h"
#include "lumora/platform/gl_api.h"

namespace lumora::platform {

void AddLibraryAndDriver(ByteDigest* digest) {
  digest->AddText(kLibraryVersion);
  for (const GLenum name : {GL_VENDOR, GL_RENDERER, GL_VERSION}) {
    digest->AddText(reinterpret_cast<const char*>(glGetString(name)));
  }
}

}  // namespace lumora::platform
