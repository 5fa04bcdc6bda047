// SPDX-License-Identifier: Apache-2.0
#include "bench/bare_preview.h"

#include "lumora/convert/sp2yuvxs.h"
#include "lumora/gl/colour_matrix.h"
#include "lumora/programs/shader_texts.h"

namespace lumora::bench {
namespace {

constexpr float kEdgeFade = 0.2f;

/// The fastest expansion there is serves both sides: what is compared is the GL around it.
void Upload(Size size, const uint8_t* frame, const Buffer& texels, const BareImage& image) {
  sp2yuvxs(texels.data(), size.width, frame, size.width, size.height, 0, 0, size.width,
           size.height);
  UploadTexels(image.texture, 0, 0, size.width, size.height, texels.data(), 0);
}

}  // namespace

BareSlimming::BareSlimming(Size size, const GLProgWarp& warp)
    : size_(size),
      texels_(size.Pixels() * 4),
      warp_(shaders::kPassThroughEffectsVert, shaders::kCheekSlimmerFrag),
      input_(MakeBareImage(size.width, size.height, GL_NEAREST, GL_MIRRORED_REPEAT)),
      warped_(MakeBareImage(size.width, size.height)),
      packer_(size.width, size.height) {
  warp_.Floats("g_fController", 4, 1, warp.m_fvController)
      .Floats("g_fAspectRatio", 1, 1, &warp.m_fAspectRatio)
      .Floats("g_fvAngleLimiter", 3, 1, warp.m_fvAngleLimiter)
      .Floats("g_fEdgeFix", 1, 1, &kEdgeFade);
  CheckBare("bare slimming");
}

void BareSlimming::Run(uint8_t* frame) {
  Upload(size_, frame, texels_, input_);
  DrawBare(warp_, input_.texture, warped_);
  packer_.Draw(warped_.texture);
  glFinish();
  packer_.Read(frame, frame + size_.Pixels(), size_.width);
}

void SetWhitening(BareProgram& program, const GLProgWhiteningBase& effect) {
  const float shifts[3] = {effect.m_fDiffI, effect.m_fDiffS, effect.m_fAspectRatio};
  program.Floats("g_fEffectController", 3, 1, shifts)
      .Matrix3("g_fEllipseController", effect.m_fEllipseController[0]);
  for (int i = 1; i < 7; ++i) {
    const std::string name = "g_fEllipseController_" + std::to_string(i);
    program.Matrix3(name.c_str(), effect.m_fEllipseController[i]);
  }
}

BareWhitening::BareWhitening(Size size, const GLProgWhiteningBase& effect)
    : size_(size),
      texels_(size.Pixels() * 4),
      to_rgb_(shaders::kPassThroughVert, shaders::kYuvToRgbFrag),
      to_hsi_(shaders::kPassThroughVert, shaders::kRgbToHsiFrag),
      whiten_(shaders::kPassThroughEffectsVert, shaders::kFaceWhiteningFrag),
      to_yuv_(shaders::kPassThroughVert, shaders::kHsiToYuvFrag),
      yuv_(MakeBareImage(size.width, size.height, GL_NEAREST, GL_MIRRORED_REPEAT)),
      rgb_(MakeBareImage(size.width, size.height, GL_LINEAR)),
      hsi_(MakeBareImage(size.width, size.height, GL_LINEAR)),
      whitened_(MakeBareImage(size.width, size.height)),
      packer_(size.width, size.height) {
  to_rgb_.Matrix4("u_mat_yuv2rgb", kMatYUV2RGB);
  SetWhitening(whiten_, effect);
  CheckBare("bare whitening");
}

void BareWhitening::Run(const uint8_t* frame, uint8_t* result) {
  Upload(size_, frame, texels_, yuv_);
  DrawBare(to_rgb_, yuv_.texture, rgb_);
  DrawBare(to_hsi_, rgb_.texture, hsi_);
  DrawBare(whiten_, hsi_.texture, whitened_);
  DrawBare(to_yuv_, whitened_.texture, yuv_);
  packer_.Draw(yuv_.texture);
  glFinish();
  packer_.Read(result, result + size_.Pixels(), size_.width);
}

}  // namespace lumora::bench
