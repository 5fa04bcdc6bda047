// SPDX-License-Identifier: Apache-2.0
// Colour conversion and packing: the passes that every effect shares.
#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/engine/internal/packed_targets.h"
#include "lumora/engine/internal/pass.h"
#include "lumora/engine/internal/target.h"
#include "lumora/gl/log.h"
#include "lumora/gl/quad.h"
#include "lumora/platform/gl_api.h"

LUMORA_LOG_TAG("Lumora");

namespace android {

using lumora::engine::InputTarget;
using lumora::engine::NumberedTarget;
using lumora::engine::Pass;
using lumora::engine::TextureOf;
using lumora::engine::WorkTarget;

int GPUBeautyFace::DrawColorConvertYUV2RGB() {
  Pass pass(*this, "DrawColorConvertYUV2RGB");
  pass.program = m_pProgYUV2RGB;
  pass.input = TextureOf(m_pRGBImage);
  pass.destination = WorkTarget(*this, 0);
  return RunPass(pass);
}

int GPUBeautyFace::DrawColorConvertRGB2HSI() {
  Pass pass(*this, "DrawColorConvertRGB2HSI");
  pass.program = m_pProgRGB2HSI;
  pass.input = TextureOf(m_pWorkImage[0]);
  pass.destination = WorkTarget(*this, 1);
  return RunPass(pass);
}

int GPUBeautyFace::DrawColorConvertHSI2YUV() {
  Pass pass(*this, "DrawColorConvertHSI2YUV");
  pass.program = m_pProgHSI2YUV;
  pass.input = TextureOf(NumberedTarget(*this, m_nResultIdx).image);
  pass.destination = InputTarget(*this);
  pass.keep_coordinates = true;
  return RunPass(pass);
}

int GPUBeautyFace::DrawColorConvertYUV2HSI() {
  Pass pass(*this, "DrawColorConvertYUV2HSI");
  pass.program = m_pProgYUV2HSI;
  pass.input = TextureOf(m_pRGBImage);
  pass.destination = WorkTarget(*this, 0);
  return RunPass(pass);
}

int GPUBeautyFace::DrawRGBtoYY(int nSrc) {
  return lumora::engine::PackLuma(*this, nSrc, nullptr);
}

int GPUBeautyFace::DrawRGBtoUV(int nSrc) {
  return lumora::engine::PackChroma(*this, nSrc, nullptr);
}

int GPUBeautyFace::ConvertYUV() {
  LOGI("ConvertYUV+");
  if (m_pRGBImage == nullptr) {
    LOGE("[SetSrcImage]g_pEGLRGB is not initiated");
    return 0;
  }
  if (DrawColorConvertYUV2RGB() == 0) return 0;
  m_pWorkImage[0]->Unlock();
  if (DrawColorConvertRGB2HSI() == 0) return 0;
  m_pWorkImage[1]->Unlock();
  glFlush();
  glFinish();
  LOGI("ConvertYUV-");
  return 1;
}

int GPUBeautyFace::ConvertHSItoYUV() {
  LOGI("ConvertYUV+");
  SEGLImage* const result = NumberedTarget(*this, m_nResultIdx).image;
  if (result == nullptr) {
    LOGE("[SetSrcImage]g_pEGLRGB is not initiated");
    return 0;
  }
  result->Unlock();
  lumora::quad::ResetTextureCoordinates();
  if (DrawColorConvertHSI2YUV() == 0) return 0;
  if (m_pRGBImage != nullptr) m_pRGBImage->Unlock();
  glFlush();
  glFinish();
  LOGI("ConvertYUV-");
  return 1;
}

}  // namespace android
