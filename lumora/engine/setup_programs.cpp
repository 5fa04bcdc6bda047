// SPDX-License-Identifier: Apache-2.0
// The engine's shader programs, made and loaded in a fixed order up to the first that fails.
#include <new>

#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/engine/internal/set_up.h"
#include "lumora/gl/log.h"
#include "lumora/programs/programs.h"

LUMORA_LOG_TAG("Lumora");

namespace android {
namespace {

/// Makes a program in `slot` and loads it; `prepare` may set what has to be chosen before. A
/// program that fails to load stays in its slot and goes with the others at release.
template <typename Program, typename Prepare>
Program* MakeProgram(GLProgram*& slot, const char* function, Prepare prepare) {
  auto* program = new (std::nothrow) Program();
  slot = program;
  if (program == nullptr) {
    LOGE("[%s] can't new program", function);
    return nullptr;
  }
  prepare(*program);
  if (program->Load()) return program;
  LOGE("[%s] can't load program", function);
  return nullptr;
}

template <typename Program>
Program* MakeProgram(GLProgram*& slot, const char* function) {
  return MakeProgram<Program>(slot, function, [](Program&) {});
}

/// Offsets from the middle of a packed texel to its four pixels. Both directions divide by the
/// width.
void SetLumaOffsets(GLProgRGBtoY& program, float width, bool rotate) {
  constexpr float kPixels[4] = {-1.5f, -0.5f, 0.5f, 1.5f};
  for (int i = 0; i < 4; ++i) {
    const float offset = kPixels[i] / width;
    program.m_fShift[2 * i] = rotate ? 0.0f : offset;
    program.m_fShift[2 * i + 1] = rotate ? offset : 0.0f;
  }
}

/// Offsets from the middle of a packed texel to its two chroma pairs.
void SetChromaOffsets(GLProgRGBtoUV& program, double width, double height, bool rotate) {
  constexpr double kPairs[2] = {-1.0, 1.0};
  for (int i = 0; i < 2; ++i) {
    program.m_fShift[2 * i] = static_cast<float>((rotate ? 0.0 : kPairs[i]) / width);
    program.m_fShift[2 * i + 1] = static_cast<float>((rotate ? kPairs[i] : 0.0) / height);
  }
}

bool MakePackers(GPUBeautyFace& engine, const char* function) {
  const auto width = static_cast<unsigned>(engine.m_nAlignedWidth);
  const auto height = static_cast<unsigned>(engine.m_nAlignedHeight);
  auto* luma = MakeProgram<GLProgRGBtoY>(engine.m_pProgRGBtoY, function);
  if (luma == nullptr) return false;
  SetLumaOffsets(*luma, static_cast<float>(width), engine.m_bRotate);
  auto* chroma = MakeProgram<GLProgRGBtoUV>(engine.m_pProgRGBtoUV, function);
  if (chroma == nullptr) return false;
  SetChromaOffsets(*chroma, width, height, engine.m_bRotate);
  return true;
}

}  // namespace

int GPUBeautyFace::InitShader() {
  constexpr char kFunction[] = "InitShader";
  const auto with_marks = [this](auto& program) { program.m_bShowMask = m_bShowMask; };
  const bool loaded =
      MakePackers(*this, kFunction) &&
      MakeProgram<GLProgCheekSlimmer>(m_pProgCheekSlimmer, kFunction, with_marks) != nullptr &&
      MakeProgram<GLProgFaceWhitening>(m_pProgFaceWhitening, kFunction) != nullptr &&
      MakeProgram<GLProgRectificaton>(m_pProgRectification, kFunction, with_marks) != nullptr &&
      MakeProgram<GLProgRadialDistortion>(m_pProgRadialDistortion, kFunction) != nullptr;
  return loaded ? 1 : 0;
}

int GPUBeautyFace::InitShaderLarge() {
  constexpr char kFunction[] = "InitShaderLarge";
  const bool by_hsi = lumora::engine::GoesByHsi(lumora::engine::SetUpOf(*this));
  const auto with_marks = [this](auto& program) { program.m_bShowMask = m_bShowMask; };
  const bool loaded =
      MakePackers(*this, kFunction) &&
      // The HSI chain of block mode has no warp of its own.
      (by_hsi || MakeProgram<GLProgCheekSlimmerLarge>(m_pProgCheekSlimmer, kFunction, with_marks) !=
                     nullptr) &&
      MakeProgram<GLProgFaceWhiteningLarge>(m_pProgFaceWhitening, kFunction) != nullptr &&
      MakeProgram<GLProgYUV2HSI>(m_pProgYUV2HSI, kFunction) != nullptr &&
      MakeProgram<GLProgHSI2YUV>(m_pProgHSI2YUV, kFunction) != nullptr;
  return loaded ? 1 : 0;
}

int GPUBeautyFace::InitColorCvtShader() {
  constexpr char kFunction[] = "InitColorCvtShader";
  const bool loaded = MakeProgram<GLProgYUV2RGB>(m_pProgYUV2RGB, kFunction) != nullptr &&
                      MakeProgram<GLProgRGB2HSI>(m_pProgRGB2HSI, kFunction) != nullptr &&
                      MakeProgram<GLProgHSI2YUV>(m_pProgHSI2YUV, kFunction) != nullptr;
  return loaded ? 1 : 0;
}

}  // namespace android
