#include "lumora/platform/gralloc.h"

#include <cerrno>

#include "lumora/platform/buffer_registry.h"
#include "lumora/platform/graphic_buffer.h"

namespace lumora::platform::gralloc {
namespace {

class Allocator final : public IMemAlloc {
 public:
  int clean_buffer(void* base, size_t, int, int, int operation) override {
    if (operation != CACHE_CLEAN) return -EINVAL;
    GraphicBuffer* const buffer = BufferRegistry::Instance().findByBase(base);
    return buffer != nullptr ? buffer->clean() : -EINVAL;
  }
};

class Controller final : public IAllocController {
 public:
  // One allocator makes every buffer, whatever its flags.
  sp<IMemAlloc> getAllocator(int) override { return allocator_; }

 private:
  sp<IMemAlloc> allocator_ = new Allocator;
};

}  // namespace

sp<IAllocController> IAllocController::getInstance() {
  // Never destroyed: images of static objects may be cleaned after any other static has gone.
  static auto* const controller = new sp<IAllocController>(new Controller);
  return *controller;
}

}  // namespace lumora::platform::gralloc
