// SPDX-License-Identifier: Apache-2.0
// Memory that is short, inside the platform layer.
//
// The core is built without exceptions, and what operator new throws would pass its functions by
// without undoing anything. So the platform layer, where containers and texts are, is built to
// unwind, and nothing is thrown out of it: its functions answer as they do on any other failure.
#ifndef LUMORA_PLATFORM_OUT_OF_MEMORY_H_
#define LUMORA_PLATFORM_OUT_OF_MEMORY_H_

#include <new>

namespace lumora::platform {

/// Does `work` as far as memory goes.
template <typename Work>
void UnlessOutOfMemory(Work work) {
  try {
    work();
  } catch (const std::bad_alloc&) {  // nobody waits for an answer
  }
}

/// What `work` answers, or `otherwise` where it has run out of memory.
template <typename Answer, typename Work>
Answer UnlessOutOfMemory(Answer otherwise, Work work) {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    return otherwise;
  }
}

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_OUT_OF_MEMORY_H_
