// Access to the store of a whole capture, whichever memory it is in.
#ifndef LUMORA_ENGINE_WHOLE_FRAME_STORE_H_
#define LUMORA_ENGINE_WHOLE_FRAME_STORE_H_

#include "lumora/engine/gpu_beauty_face.h"

namespace lumora {

/// Locks the store for reading and writing by the CPU for as long as the object lives: work image
/// 1, or the large buffer of captures that fit no texture. `texels` is null when there is no store.
/// Rows are the full frame's width rounded up to 32 pixels, 4 bytes a pixel.
class LockedStore {
 public:
  explicit LockedStore(android::GPUBeautyFace& engine)
      : image_(engine.m_bLargeCapture ? nullptr : engine.m_pWorkImage[1]),
        buffer_(engine.m_bLargeCapture ? engine.m_spLargeBuffer.get() : nullptr) {
    if (image_ != nullptr) texels_ = image_->Lock();
    if (buffer_ != nullptr) {
      void* address = nullptr;
      const uint32_t usage =
          platform::GRALLOC_USAGE_SW_READ_OFTEN | platform::GRALLOC_USAGE_SW_WRITE_OFTEN;
      if (buffer_->lock(usage, &address) >= 0) texels_ = static_cast<unsigned char*>(address);
    }
  }
  ~LockedStore() {
    if (image_ != nullptr) image_->Unlock();
    if (buffer_ != nullptr) buffer_->unlock();
  }
  LockedStore(const LockedStore&) = delete;
  LockedStore& operator=(const LockedStore&) = delete;

  unsigned char* texels() const { return texels_; }

 private:
  SEGLImage* image_;
  platform::GraphicBuffer* buffer_;
  unsigned char* texels_ = nullptr;
};

}  // namespace lumora

#endif  // LUMORA_ENGINE_WHOLE_FRAME_STORE_H_
