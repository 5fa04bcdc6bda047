// SPDX-License-Identifier: Apache-2.0
// What an engine is set up for.
#ifndef LUMORA_ENGINE_INTERNAL_SET_UP_H_
#define LUMORA_ENGINE_INTERNAL_SET_UP_H_

#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/gl/no_name.h"

namespace lumora::engine {

enum class SetUp {
  None,           ///< neither of the two, or one that stopped short
  Preview,        ///< Init: every operation takes its frame along
  PreviewColour,  ///< Init with colorCvt: the input image is filled first, whitening goes by HSI
  CaptureBlocks,  ///< InitCapture with blockMode: a store of the whole frame in HSI
  CapturePlanes,  ///< InitCapture without: the frame's planes are two textures
};

/// The one place where the set-up is told from the engine's members. They alone tell: other code
/// may write them, and may call the steps of a set-up one by one. A release keeps the mode, so that
/// a set-up by HSI is followed by one that has no images: then every pass ends for want of them.
inline SetUp SetUpOf(const android::GPUBeautyFace& engine) {
  const bool colour = engine.m_bColorCvtMode;
  // Previews alone have the programs of the rectifications, which are made last.
  const bool preview = engine.m_pProgRadialDistortion != nullptr;
  if (preview) return colour ? SetUp::PreviewColour : SetUp::Preview;
  if (colour) return SetUp::CaptureBlocks;
  const bool planes = engine.m_hYTexture != kNoName || engine.m_hCbCrTexture != kNoName;
  return planes ? SetUp::CapturePlanes : SetUp::None;
}

constexpr bool IsPreview(SetUp set_up) {
  return set_up == SetUp::Preview || set_up == SetUp::PreviewColour;
}

/// Whether frames go through HSI images.
constexpr bool GoesByHsi(SetUp set_up) {
  return set_up == SetUp::PreviewColour || set_up == SetUp::CaptureBlocks;
}

}  // namespace lumora::engine

#endif  // LUMORA_ENGINE_INTERNAL_SET_UP_H_
