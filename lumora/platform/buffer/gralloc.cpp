// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/gralloc.h"

#include <cerrno>

#include "lumora/platform/buffer/buffer_registry.h"
#include "lumora/platform/graphic_buffer.h"
#include "lumora/platform/immortal.h"

namespace lumora::platform::gralloc {
namespace {

// Both hold themselves, so that nobody's last reference deletes them.
class Allocator final : public IMemAlloc {
 public:
  Allocator() { incStrong(); }
  int clean_buffer(void* base, size_t, int, int, int operation) override {
    if (operation != CACHE_CLEAN) return -EINVAL;
    GraphicBuffer* const buffer = BufferRegistry::Instance().FindByBase(base);
    return buffer != nullptr ? buffer->clean() : -EINVAL;
  }
};

class Controller final : public IAllocController {
 public:
  Controller() { incStrong(); }
  // One allocator makes every buffer, whatever its flags.
  sp<IMemAlloc> getAllocator(int) override { return &*allocator_; }

 private:
  Immortal<Allocator> allocator_;
};

}  // namespace

sp<IAllocController> IAllocController::getInstance() {
  static Immortal<Controller> controller;
  return &*controller;
}

}  // namespace lumora::platform::gralloc
