// SPDX-License-Identifier: Apache-2.0
#include "lumora/engine/internal/packed_targets.h"

#include <algorithm>

#include "lumora/engine/internal/pass.h"
#include "lumora/engine/internal/target.h"
#include "lumora/gl/quad.h"

namespace lumora::engine {
namespace {

using android::GPUBeautyFace;

/// What both passes have in common; the width is that of the luma target, four pixels a texel.
Pass PackingPass(const GPUBeautyFace& engine, const char* name, int source,
                 const ChangedArea* area) {
  Pass pass(engine, name);
  pass.input = TextureOf(TargetAfter(engine, source).image);
  pass.width = engine.m_nAlignedWidth / 4;
  pass.positions = engine.m_bRotate ? quad::kRotatedPositions : quad::kPositions;
  pass.filter = GL_NEAREST;
  pass.area = area;
  return pass;
}

bool ReadPart(const SEGLImage* image, const PlanePart& plane, int stride) {
  return image->m_spBuffer->readInto(plane.part, plane.plane, stride) == 0;
}

}  // namespace

int PackLuma(const GPUBeautyFace& engine, int source, const ChangedArea* area) {
  Pass pass = PackingPass(engine, "DrawRGBtoYY", source, area);
  pass.program = engine.m_pProgRGBtoY;
  pass.destination = LumaTarget(engine);
  return RunPass(pass);
}

int PackChroma(const GPUBeautyFace& engine, int source, const ChangedArea* area) {
  Pass pass = PackingPass(engine, "DrawRGBtoUV", source, area);
  pass.program = engine.m_pProgRGBtoUV;
  pass.destination = ChromaTarget(engine);
  pass.height = engine.m_nAlignedHeight / 2;
  return RunPass(pass);
}

bool ReadPacked(const GPUBeautyFace& engine, const PlanePart& luma, const PlanePart& chroma,
                int stride) {
  const auto possible = [](const SEGLImage* image, const PlanePart& plane) {
    return image != nullptr && image->m_spBuffer && plane.plane != nullptr;
  };
  return possible(engine.m_pYYYYImage, luma) && possible(engine.m_pUVUVImage, chroma) &&
         ReadPart(engine.m_pYYYYImage, luma, stride) &&
         ReadPart(engine.m_pUVUVImage, chroma, stride);
}

size_t FirstLumaSize(const GPUBeautyFace& engine) {
  static const size_t kSize = static_cast<size_t>(std::max(engine.m_nProcHeight, 0)) *
                              static_cast<size_t>(std::max(engine.m_nProcWidth, 0));
  return kSize;
}

}  // namespace lumora::engine
