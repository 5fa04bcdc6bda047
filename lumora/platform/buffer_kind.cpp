// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/buffer_kind.h"

namespace lumora::platform {

const char* BufferKindName(BufferKind kind) {
  switch (kind) {
    case BufferKind::Staged:
      return "staged";
    case BufferKind::MemoryObject:
      return "memobj";
    case BufferKind::DmaBuf:
      return "dmabuf";
    case BufferKind::HardwareBuffer:
      return "hardware buffer";
  }
  return "unknown";
}

}  // namespace lumora::platform
