// The platform's choice among its kinds of memory.
#ifndef LUMORA_PLATFORM_BUFFER_BACKING_FACTORY_H_
#define LUMORA_PLATFORM_BUFFER_BACKING_FACTORY_H_

#include <memory>

#include "lumora/platform/buffer/buffer_backing.h"

namespace lumora::platform {

/// Zeroed memory for `geometry`, of the best kind for the current context; null when there is none.
std::unique_ptr<BufferBacking> MakeBacking(const BufferGeometry& geometry);

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_BUFFER_BACKING_FACTORY_H_
