// Colour conversion and packing: the passes that every effect shares.
#include "lumora/engine/pass.h"
#include "lumora/gl/log.h"
#include "lumora/gl/offscreen_context.h"
#include "lumora/platform/gl_api.h"

LUMORA_LOG_TAG("Lumora");

namespace android {

namespace quad = lumora::quad;

/// The four images by number: the work images, then the input image.
SEGLImage* GPUBeautyFace::ImageAt(int index) const {
  if (index == 3) return m_pRGBImage;
  return index >= 0 && index < 3 ? m_pWorkImage[index] : nullptr;
}

SEGLImage* GPUBeautyFace::PackingSource(int nSrc) const {
  return nSrc < 1 ? m_pRGBImage : m_pWorkImage[(nSrc - 1) % 2];
}

int GPUBeautyFace::DrawColorConvertYUV2RGB() {
  return RunPass({"DrawColorConvertYUV2RGB", m_pProgYUV2RGB, m_pRGBImage, m_pWorkImage[0],
                  m_hWorkFbo[0], m_nAlignedWidth, m_nAlignedHeight});
}

int GPUBeautyFace::DrawColorConvertRGB2HSI() {
  return RunPass({"DrawColorConvertRGB2HSI", m_pProgRGB2HSI, m_pWorkImage[0], m_pWorkImage[1],
                  m_hWorkFbo[1], m_nAlignedWidth, m_nAlignedHeight});
}

int GPUBeautyFace::DrawColorConvertHSI2YUV() {
  Pass pass{
      "DrawColorConvertHSI2YUV", m_pProgHSI2YUV,  ImageAt(m_nResultIdx), m_pRGBImage, m_hRGBFbo,
      m_nAlignedWidth,           m_nAlignedHeight};
  pass.keep_coordinates = true;
  return RunPass(pass);
}

int GPUBeautyFace::DrawColorConvertYUV2HSI() {
  return RunPass({"DrawColorConvertYUV2HSI", m_pProgYUV2HSI, m_pRGBImage, m_pWorkImage[0],
                  m_hWorkFbo[0], m_nAlignedWidth, m_nAlignedHeight});
}

int GPUBeautyFace::DrawRGBtoYY(int nSrc) {
  return PackLuma(nSrc, nullptr);
}

int GPUBeautyFace::DrawRGBtoUV(int nSrc) {
  return PackChroma(nSrc, nullptr);
}

int GPUBeautyFace::PackLuma(int nSrc, const lumora::ChangedArea* area) {
  return RunPass({"DrawRGBtoYY", m_pProgRGBtoY, PackingSource(nSrc), m_pYYYYImage, m_hYYYYFbo,
                  m_nAlignedWidth / 4, m_nAlignedHeight,
                  m_bRotate ? quad::kRotatedPositions : quad::kPositions, GL_NEAREST, false, area});
}

int GPUBeautyFace::PackChroma(int nSrc, const lumora::ChangedArea* area) {
  return RunPass({"DrawRGBtoUV", m_pProgRGBtoUV, PackingSource(nSrc), m_pUVUVImage, m_hUVUVFbo,
                  m_nAlignedWidth / 4, m_nAlignedHeight / 2,
                  m_bRotate ? quad::kRotatedPositions : quad::kPositions, GL_NEAREST, false, area});
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
  SEGLImage* result = ImageAt(m_nResultIdx);
  if (result == nullptr) {
    LOGE("[SetSrcImage]g_pEGLRGB is not initiated");
    return 0;
  }
  result->Unlock();
  quad::ResetTextureCoordinates();
  if (DrawColorConvertHSI2YUV() == 0) return 0;
  if (m_pRGBImage != nullptr) m_pRGBImage->Unlock();
  glFlush();
  glFinish();
  LOGI("ConvertYUV-");
  return 1;
}

}  // namespace android
