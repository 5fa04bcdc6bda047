// Access to the store of a whole capture, whichever memory it is in.
#ifndef LUMORA_ENGINE_INTERNAL_WHOLE_FRAME_STORE_H_
#define LUMORA_ENGINE_INTERNAL_WHOLE_FRAME_STORE_H_

#include "lumora/engine/gpu_beauty_face.h"

namespace lumora::engine {

/// A block of the store, locked for the CPU; only that block moves between CPU and GPU. The store
/// is work image 1, or the large buffer of captures that fit no texture. `texels` addresses the
/// whole store, null when there is none: rows of the full frame's width rounded up to 32 pixels, 4
/// bytes a pixel.
class LockedStoreBlock {
 public:
  LockedStoreBlock(const android::GPUBeautyFace& engine, int x, int y, int width, int height)
      : x_(x), y_(y), width_(width), height_(height) {
    if (engine.m_bLargeCapture) {
      buffer_ = engine.m_spLargeBuffer.get();
    } else if (engine.m_pWorkImage[1] != nullptr) {
      buffer_ = engine.m_pWorkImage[1]->m_spBuffer.get();
    }
    if (buffer_ != nullptr) texels_ = buffer_->lockPart(x_, y_, width_, height_);
  }
  LockedStoreBlock(const LockedStoreBlock&) = delete;
  LockedStoreBlock& operator=(const LockedStoreBlock&) = delete;

  unsigned char* texels() const { return texels_; }
  /// After writing to the block: whether the GPU has it now.
  bool WriteBack() const { return buffer_->cleanPart(x_, y_, width_, height_) == 0; }

 private:
  const int x_, y_, width_, height_;
  platform::GraphicBuffer* buffer_ = nullptr;
  unsigned char* texels_ = nullptr;
};

}  // namespace lumora::engine

#endif  // LUMORA_ENGINE_INTERNAL_WHOLE_FRAME_STORE_H_
