// SPDX-License-Identifier: Apache-2.0
// Face whitening: measuring a face, and the whole-frame passes.
#include <cstdint>

#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/engine/internal/limited_pass.h"
#include "lumora/engine/internal/pass.h"
#include "lumora/engine/internal/target.h"
#include "lumora/geometry/changed_area.h"
#include "lumora/geometry/rectangle.h"
#include "lumora/geometry/rounding.h"
#include "lumora/geometry/whitening.h"
#include "lumora/gl/log.h"
#include "lumora/platform/buffer/cpu_access.h"
#include "lumora/platform/gl_api.h"
#include "lumora/programs/face_whitening_programs.h"

LUMORA_LOG_TAG("Lumora");

namespace android {

namespace internal = lumora::engine;

namespace {

/// What an effect applies of the shifts, and how it scales the outer ellipse.
struct EffectRule {
  bool intensity;
  bool saturation;
  float outer_scale;
};

EffectRule RuleOf(BEAUTYSHOT_EFFECT_t effect) {
  switch (effect) {
    case BEAUTYSHOT_EFFECT_INTENSITY:
      return {true, false, 1.0f};
    case BEAUTYSHOT_EFFECT_SATURATION:
      return {false, true, 1.0f};
    case BEAUTYSHOT_EFFECT_BOTH:
      return {true, true, 1.0f};
    case BEAUTYSHOT_EFFECT_MASK:
      return {false, false, 1.1f};
  }
  return {false, false, 1.0f};
}

/// The square around a face, as far as it lies in an image of that size.
lumora::PixelRectangle SquareAround(const lumora::FaceGeometry& face, int limit_x, int limit_y) {
  // A square whose corner lies below the range of int ends below 0, where it is clamped as well.
  const int x = lumora::ClampToInt(face.centre_x - face.sample_radius);
  const int y = lumora::ClampToInt(face.centre_y - face.sample_radius);
  const int side = lumora::ClampToInt(2 * face.sample_radius);
  return lumora::CutToImage({x, y, side, side}, limit_x, limit_y);
}

/// Measures a face on a tightly packed frame, or, where that is null, on work image 1.
lumora::ColourSums SampleFace(const GPUBeautyFace& engine, const lumora::FaceGeometry& face,
                              const unsigned char* frame) {
  // A frame in memory has no chroma for an odd last column or row.
  const int width = engine.m_nFullWidth;
  const int height = engine.m_nFullHeight;
  const int limit_x = frame != nullptr ? width & ~1 : width;
  const int limit_y = frame != nullptr ? height & ~1 : height;

  lumora::ColourSums sums;
  const auto add = [&sums](const lumora::HsiSample& sample) {
    sums.intensity += sample.intensity;
    sums.saturation += sample.saturation;
    ++sums.count;
  };
  if (frame != nullptr) {
    lumora::ForEachSample(face, limit_x, limit_y, [&](int x, int y) {
      add(lumora::SampleYuv(frame, x, y, width, height));
    });
    return sums;
  }
  const SEGLImage* const image = engine.m_pWorkImage[1];
  const lumora::platform::CpuAccess square(image != nullptr ? image->m_spBuffer.get() : nullptr,
                                           lumora::platform::CpuUse::Read,
                                           SquareAround(face, limit_x, limit_y));
  const unsigned char* const texels = square.pixels();
  if (texels == nullptr) return {};
  const int stride = lumora::RoundUpTo32(width);
  lumora::ForEachSample(face, limit_x, limit_y, [&](int x, int y) {
    add(lumora::SampleTexel(texels + (int64_t{y} * stride + x) * 4));
  });
  return sums;
}

/// What the ellipses that are set can change of a preview's image.
lumora::ChangedArea WhiteningArea(const GPUBeautyFace& engine) {
  const auto* program = static_cast<const GLProgWhiteningBase*>(engine.m_pProgFaceWhitening);
  if (program == nullptr || !internal::MayLimitDraws(engine)) return internal::WholeImage(engine);
  return lumora::ChangedArea(lumora::EllipseBox(program->m_fEllipseController[0],
                                                engine.m_nAlignedWidth, engine.m_nAlignedHeight));
}

}  // namespace

float GPUBeautyFace::InvertEC(int nValue) {
  return lumora::LogitOfIntensity(nValue);
}

int GPUBeautyFace::GetEllipseTransformMatrix(fpf_point p0, fpf_point p1, fpf_point p2, fpf_point p3,
                                             float* pMatrix, int nWidth, int nHeight, int nPadding,
                                             float fScale) {
  LOGI("scaleR = %.2f", static_cast<double>(fScale));
  lumora::EllipseMatrix({p0, p1, p2, p3, nPadding, fScale}, nWidth, nHeight, pMatrix);
  return 1;
}

int GPUBeautyFace::GetGPU_HSI(unsigned char* pYUV, int x, int y, int nStride, int nHeight, int& nH,
                              int& nS, int& nI, int nImageIdx) {
  lumora::HsiSample sample{};
  if (pYUV != nullptr) {
    sample = lumora::SampleYuv(pYUV, x, y, nStride, nHeight);
  } else {
    SEGLImage* image = internal::NumberedTarget(*this, 1 + nImageIdx % 2).image;
    const unsigned char* texels = image != nullptr ? image->Lock() : nullptr;
    if (texels == nullptr) return 1;
    sample = lumora::SampleTexel(texels + (int64_t{y} * nStride + x) * 4);
  }
  nH = sample.hue;
  nS = sample.saturation;
  nI = sample.intensity;
  return 1;
}

int GPUBeautyFace::SetFaceWhiteningParameters(FACE_INFO_t face, int nIntensityLevel,
                                              int nSaturationLevel, BEAUTYSHOT_EFFECT_t eEffect,
                                              int /*nFaceIndex*/, bool bCpuSource,
                                              unsigned char* pSrcYUV) {
  auto* program = static_cast<GLProgWhiteningBase*>(m_pProgFaceWhitening);
  if (program == nullptr) {
    LOGE("[%s] program or image is missing", "SetFaceWhiteningParameters");
    return 0;
  }
  const lumora::FaceGeometry geometry = lumora::MeasureFace(face);
  m_nFaceWhiteRadius = lumora::ClampToInt(geometry.radius);
  m_nFaceWhiteHalfWidth = lumora::ClampToInt(geometry.half_width);
  m_nFaceWhiteHalfHeight = lumora::ClampToInt(geometry.half_height);
  m_nFaceWhiteCenterX = lumora::ClampToInt(geometry.centre_x);
  m_nFaceWhiteCenterY = lumora::ClampToInt(geometry.centre_y);

  const lumora::WhiteningShifts shifts =
      lumora::ComputeShifts(SampleFace(*this, geometry, bCpuSource ? pSrcYUV : nullptr),
                            nIntensityLevel, nSaturationLevel);
  LOGD("GPU Face Whitening: fDiffS: %f, fDiffI: %f", static_cast<double>(shifts.saturation),
       static_cast<double>(shifts.intensity));

  const EffectRule rule = RuleOf(eEffect);
  program->m_fAspectRatio = static_cast<float>(m_nFullHeight) / static_cast<float>(m_nFullWidth);
  program->m_fDiffI = rule.intensity ? shifts.intensity : 0.0f;
  program->m_fDiffS = rule.saturation ? shifts.saturation / 255.0f : 0.0f;
  const auto ellipses = lumora::FaceEllipses(face, geometry, rule.outer_scale);
  for (size_t i = 0; i < ellipses.size(); ++i) {
    const lumora::EllipseAxes& axes = ellipses[i];
    GetEllipseTransformMatrix(axes.p0, axes.p1, axes.p2, axes.p3, program->m_fEllipseController[i],
                              m_nFullWidth, m_nFullHeight, axes.padding, axes.scale);
  }

  LOGD("GPU Face Whitening Type : %d", static_cast<int>(eEffect));
  LOGD("GPU Face Whitening Paramters : fDiffS: %f, fDiffI: %f",
       static_cast<double>(program->m_fDiffS), static_cast<double>(program->m_fDiffI));
  return 1;
}

int GPUBeautyFace::DrawFaceWhite(int nPass) {
  if (nPass < 0) return 0;
  const int source = 1 + nPass % 2;
  internal::Pass pass(*this, "DrawFaceWhite");
  pass.program = m_pProgFaceWhitening;
  pass.destination = internal::WorkTarget(*this, 3 - source);
  return RunLimitedPass(pass, internal::WorkTarget(*this, source), WhiteningArea(*this));
}

int GPUBeautyFace::DoFaceWhitening(FACE_INFO_t* pFaces, int nFaces, int nIntensityLevel,
                                   int nSaturationLevel, BEAUTYSHOT_EFFECT_t eEffect) {
  LOGI("DoFaceWhitening+");
  if (m_pWorkImage[1] == nullptr) {
    LOGE("[SetSrcImage]g_pEGLRGB is not initiated");
    return 0;
  }
  m_pWorkImage[1]->Unlock();
  for (int i = 0; i < nFaces; ++i) {
    if (SetFaceWhiteningParameters(pFaces[i], nIntensityLevel, nSaturationLevel, eEffect, i, false,
                                   nullptr) == 0 ||
        DrawFaceWhite(i) == 0) {
      return 0;
    }
  }
  // Two work images in turn; without a face this names the input image.
  m_nResultIdx = static_cast<int>(2 - (int64_t{nFaces} - 1) % 2);
  SEGLImage* const result = internal::NumberedTarget(*this, m_nResultIdx).image;
  if (result != nullptr) result->Unlock();
  glFlush();
  glFinish();
  LOGI("DoFaceWhitening-");
  return 1;
}

}  // namespace android
