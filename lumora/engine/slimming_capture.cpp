// SPDX-License-Identifier: Apache-2.0
// Face slimming of captures, block by block.
#include <algorithm>
#include <optional>

#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/engine/internal/pass.h"
#include "lumora/engine/internal/process_rectangle.h"
#include "lumora/engine/internal/set_up.h"
#include "lumora/engine/internal/target.h"
#include "lumora/geometry/blocks.h"
#include "lumora/geometry/rectangle.h"
#include "lumora/geometry/rounding.h"
#include "lumora/gl/log.h"
#include "lumora/platform/gl_api.h"
#include "lumora/programs/cheek_slimmer_programs.h"

LUMORA_LOG_TAG("Lumora");

namespace android {

namespace internal = lumora::engine;
using lumora::PixelRectangle;

namespace {

/// The planes that the blocks go to, and their size.
struct CaptureFrame {
  unsigned char* luma;
  unsigned char* chroma;
  int width;
  int height;
};

/// Warps the block at (x, y) and brings it back. `run` counts the lines that were printed.
bool SlimBlock(GPUBeautyFace& engine, const CaptureFrame& frame, int x, int y, int& run) {
  auto& program = static_cast<GLProgWarp&>(*engine.m_pProgCheekSlimmer);
  const PixelRectangle block = internal::BlockAt(engine, x, y);
  program.m_fvShift[0] =
      program.m_fvController[0] - static_cast<float>(x) / static_cast<float>(frame.width);
  program.m_fvShift[1] =
      program.m_fvController[1] - static_cast<float>(y) / static_cast<float>(frame.height);
  LOGD("[LumoraLarge Cheek Slimmer]:current run %d", run++);
  LOGD("[LumoraLarge Cheek Slimmer Output: %d %d size=%d %d", x, y, block.width, block.height);
  if (engine.DrawFaceDistLarge() == 0 || engine.DrawRGBtoYY(1) == 0 || engine.DrawRGBtoUV(1) == 0) {
    return false;
  }
  glFlush();
  glFinish();
  return engine.BlockCopyYUV(frame.luma, frame.chroma, frame.width, frame.height, x, y, block.width,
                             block.height) == 1;
}

/// The blocks of face number `index`; nothing where the face is skipped.
std::optional<PixelRectangle> BlocksOf(const GPUBeautyFace& engine, const FACE_INFO_t& face,
                                       int index) {
  if (internal::GoesByHsi(internal::SetUpOf(engine))) {
    const PixelRectangle rectangle = internal::RectangleOf(engine.m_rcFaceProcess[index]);
    // Both directions are measured by the frame's height.
    const int height = engine.m_nFullHeight;
    if (!lumora::IsWorthwhile(rectangle, height, height)) return std::nullopt;
    if (engine.m_pWorkImage[1] != nullptr) engine.m_pWorkImage[1]->Unlock();
    LOGD("[LumoraLarge CheekSlimmer HSI]: Process_Rect: X: %d, Y: %d, Width: %d, Height: %d",
         rectangle.x, rectangle.y, rectangle.width, rectangle.height);
    return rectangle;
  }
  const PixelRectangle rectangle =
      lumora::BlocksAroundFace(face.loc_x, face.loc_y, std::max(face.dist, face.chin_dist),
                               engine.m_nSrcWidth, engine.m_nSrcHeight);
  LOGD("[LumoraLarge CheekSlimmer YUV]: Process_Rect: X: %d, Y: %d, Width: %d, Height: %d",
       rectangle.x, rectangle.y, rectangle.width, rectangle.height);
  return rectangle;
}

}  // namespace

int GPUBeautyFace::DrawFaceDistLarge() {
  internal::Pass pass(*this, "DrawFaceDistLarge");
  pass.program = m_pProgCheekSlimmer;
  if (internal::GoesByHsi(internal::SetUpOf(*this))) {
    pass.input = internal::TextureOf(m_pWorkImage[1]);
  } else {
    pass.input = m_hYTexture;
    pass.second_input = m_hCbCrTexture;
  }
  pass.destination = internal::WorkTarget(*this, 0);
  if (IsComplete(pass)) {
    auto& program = static_cast<GLProgWarp&>(*m_pProgCheekSlimmer);
    program.m_fvScale[0] = static_cast<float>(m_nSrcWidth) / static_cast<float>(m_nFullWidth);
    program.m_fvScale[1] = static_cast<float>(m_nSrcHeight) / static_cast<float>(m_nFullHeight);
  }
  return RunPass(pass);
}

int GPUBeautyFace::FaceProcessLarge(void* in, void* out, int width, int height, int /*unused*/,
                                    FACE_INFO_t* faces, int count, int level) {
  if (internal::GoesByHsi(internal::SetUpOf(*this))) {
    count = internal::FacesWithBlocks("FaceProcessLarge", count);
  }
  const CaptureFrame frame{static_cast<unsigned char*>(in), static_cast<unsigned char*>(out), width,
                           height};
  for (int i = 0; i < count; ++i) {
    if (SetCheekSlimmerParameters(faces[i], level, true) == 0) return 1;
    auto& program = static_cast<GLProgWarp&>(*m_pProgCheekSlimmer);
    program.m_fAspectRatio = static_cast<float>(height) / static_cast<float>(width);
    const std::optional<PixelRectangle> blocks = BlocksOf(*this, faces[i], i);
    if (!blocks) continue;
    LOGD("[LumoraLarge]process block");
    // Columns go on to the padded width, rows end with the frame.
    const lumora::BlockRange range =
        lumora::ClipToFrame(*blocks, lumora::RoundUpTo32(m_nFullWidth), m_nFullHeight);
    int run = 0;
    lumora::ForEachBlock(range, m_nSrcWidth, m_nSrcHeight,
                         [&](int x, int y) { return SlimBlock(*this, frame, x, y, run); });
  }
  return 1;
}

}  // namespace android
