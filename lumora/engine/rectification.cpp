// SPDX-License-Identifier: Apache-2.0
// Lens and perspective rectification of preview frames.
#include <algorithm>

#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/engine/internal/lens_files.h"
#include "lumora/engine/internal/limited_pass.h"
#include "lumora/engine/internal/pass.h"
#include "lumora/engine/internal/preview_frame.h"
#include "lumora/engine/internal/target.h"
#include "lumora/geometry/keystone.h"
#include "lumora/gl/log.h"
#include "lumora/gl/quad.h"
#include "lumora/programs/rectification_programs.h"

LUMORA_LOG_TAG("Lumora");

namespace android {

namespace internal = lumora::engine;

namespace {

/// What both passes have in common: from the input image to work image 0.
internal::Pass RectifyingPass(const GPUBeautyFace& engine, const char* name) {
  internal::Pass pass(engine, name);
  pass.input = internal::TextureOf(engine.m_pRGBImage);
  pass.destination = internal::WorkTarget(engine, 0);
  pass.filter = GL_LINEAR;
  return pass;
}

/// The end of both operations: the whole frame has changed.
bool FinishRectified(GPUBeautyFace& engine, void* in, void* out) {
  return internal::FinishPreviewFrame(engine, {in, out}, 1, internal::WholeImage(engine));
}

}  // namespace

int GPUBeautyFace::SetRectParameters(int degree) {
  auto* program = static_cast<GLProgRectificaton*>(m_pProgRectification);
  if (program == nullptr) {
    LOGE("[%s] program or image is missing", "SetRectParameters");
    return 0;
  }
  const lumora::Keystone quad = lumora::KeystoneOf(degree);
  for (int corner = 0; corner < 4; ++corner) {
    program->m_fvQuad[corner][0] = quad.x[corner];
    program->m_fvQuad[corner][1] = quad.y[corner];
  }
  program->m_fDegree = std::clamp(static_cast<float>(degree), -3.0f, 3.0f);
  return 1;
}

int GPUBeautyFace::SetRadialRectParameters(int camera) {
  auto* program = static_cast<GLProgRadialDistortion*>(m_pProgRadialDistortion);
  if (program == nullptr) {
    LOGE("[%s] program or image is missing", "SetRadialRectParameters");
    return 0;
  }
  const auto coefficients = internal::ReadLensCoefficients(camera == 1);
  std::copy(coefficients.begin(), coefficients.end(), program->m_fvKval);
  return 1;
}

int GPUBeautyFace::DrawRectification() {
  internal::Pass pass = RectifyingPass(*this, "DrawRectification");
  pass.program = m_pProgRectification;
  return RunPass(pass);
}

int GPUBeautyFace::DrawRadialRectification() {
  float* coordinates = lumora::quad::TextureCoordinates();
  lumora::quad::ResetTextureCoordinates();
  for (int corner = 0; corner < 4; ++corner) {
    float* at = coordinates + 2 * corner;
    SetCropVertexCoord(at[0], at[1], at);
  }
  internal::Pass pass = RectifyingPass(*this, "DrawRadialRectification");
  pass.program = m_pProgRadialDistortion;
  pass.keep_coordinates = true;
  return RunPass(pass);
}

int GPUBeautyFace::Rectification(void* in, void* out, int degree, int /*unused*/) {
  LOGI("FaceProcess++");
  if (!internal::IsPreviewReady(*this) || LoadPreviewFrameBuffer(in) == 0) return 0;
  if (SetRectParameters(degree) == 0 || DrawRectification() == 0) return 0;
  if (!FinishRectified(*this, in, out)) return 0;
  LOGI("FaceProcess--");
  return 1;
}

int GPUBeautyFace::RadialRectification(void* in, void* out, int /*unused*/, int camera) {
  LOGI("FaceProcess  RadialRectification++");
  if (!internal::IsPreviewReady(*this) || LoadPreviewFrameBuffer(in) == 0) return 0;
  if (SetRadialRectParameters(camera) == 0 || DrawRadialRectification() == 0) return 0;
  if (!FinishRectified(*this, in, out)) return 0;
  LOGI("FaceProcess  RadialRectification--");
  return 1;
}

}  // namespace android
