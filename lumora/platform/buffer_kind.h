// SPDX-License-Identifier: Apache-2.0
// The kinds of memory that CPU and GPU can share.
#ifndef LUMORA_PLATFORM_BUFFER_KIND_H_
#define LUMORA_PLATFORM_BUFFER_KIND_H_

#include "lumora/export.h"

namespace lumora::platform {

/// How CPU and GPU share a buffer's memory.
enum class BufferKind { Staged, MemoryObject, DmaBuf, HardwareBuffer };

/// "staged", "memobj", "dmabuf" or "hardware buffer".
LUMORA_API const char* BufferKindName(BufferKind kind);

/// The kind a buffer made now would get in the current context, for diagnostics.
LUMORA_API BufferKind PreferredBufferKind();

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_BUFFER_KIND_H_
