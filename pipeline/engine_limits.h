// What the engine expects of frames, and the settings that the pipeline keeps fixed.
#ifndef LUMORA_PIPELINE_ENGINE_LIMITS_H_
#define LUMORA_PIPELINE_ENGINE_LIMITS_H_

namespace lumora {

/// The beauty level that every record is made for; the strength is set by the record alone.
constexpr int kBeautyLevel = 0;

/// Rows and columns that the engine works on are multiples of this many pixels.
constexpr int kFrameAlignment = 32;

/// `size` rounded up to a multiple of `alignment`.
constexpr int AlignedSize(int size, int alignment = kFrameAlignment) {
  return (size + alignment - 1) / alignment * alignment;
}

/// Frames up to this width go through the preview chain when nothing else is asked for.
constexpr int kWidestPreview = 1280;

}  // namespace lumora

#endif  // LUMORA_PIPELINE_ENGINE_LIMITS_H_
