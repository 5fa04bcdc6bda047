// SPDX-License-Identifier: Apache-2.0
#include "bench/bare_capture.h"

#include <cstddef>
#include <cstring>

#include "bench/bare_preview.h"
#include "lumora/convert/sp2yuvxs.h"
#include "lumora/gl/colour_matrix.h"
#include "lumora/programs/shader_texts.h"

namespace lumora::bench {
namespace {

constexpr size_t kTexel = 4;
constexpr size_t kRow = BareCapture::kBlock * kTexel;

}  // namespace

BareCapture::BareCapture(Size size, const GLProgWhiteningBase& effect)
    : size_(size),
      texels_(kRow * kBlock),
      block_(kRow * kBlock),
      store_(size.Pixels() * kTexel),
      to_hsi_(shaders::kPassThroughVert, shaders::kYuvToHsiFrag),
      whiten_(shaders::kPassThroughEffectsVert, shaders::kFaceWhiteningLargeFrag),
      to_yuv_(shaders::kPassThroughVert, shaders::kHsiToYuvFrag),
      yuv_(MakeBareImage(kBlock, kBlock)),
      hsi_(MakeBareImage(kBlock, kBlock)),
      whitened_(MakeBareImage(kBlock, kBlock)),
      stored_(MakeBareImage(kBlock, kBlock)),
      packer_(kBlock, kBlock) {
  to_hsi_.Matrix4("u_mat_yuv2rgb", kMatYUV2RGB);
  SetWhitening(whiten_, effect);
  whiten_.Sampler("s_texture1", 1);
  scale_ = whiten_.Location("g_fScaleController");
  CheckBare("bare capture");
}

void BareCapture::Whiten(const uint8_t* frame, int x, int y) {
  sp2yuvxs(texels_.data(), kBlock, kBlock, frame, frame + size_.Pixels(), size_.width, size_.height,
           x, y, kBlock, kBlock);
  UploadTexels(yuv_.texture, 0, 0, kBlock, kBlock, texels_.data(), 0);
  DrawBare(to_hsi_, yuv_.texture, hsi_);

  const auto width = static_cast<float>(size_.width);
  const auto height = static_cast<float>(size_.height);
  glUseProgram(whiten_.name());
  glUniform4f(scale_, kBlock / width, kBlock / height, static_cast<float>(x) / width,
              static_cast<float>(y) / height);
  glActiveTexture(GL_TEXTURE1);  // no earlier face: the block itself, whose alpha is 0
  glBindTexture(GL_TEXTURE_2D, hsi_.texture);
  DrawBare(whiten_, hsi_.texture, whitened_);
  glFinish();

  glReadPixels(0, 0, kBlock, kBlock, GL_RGBA, GL_UNSIGNED_BYTE, block_.data());
  const auto stride = static_cast<size_t>(size_.width) * kTexel;
  uint8_t* const to =
      store_.data() + static_cast<size_t>(y) * stride + static_cast<size_t>(x) * kTexel;
  for (size_t row = 0; row < kBlock; ++row) {
    std::memcpy(to + row * stride, block_.data() + row * kRow, kRow);
  }
}

void BareCapture::Return(uint8_t* frame, int x, int y) {
  const size_t corner =
      static_cast<size_t>(y) * static_cast<size_t>(size_.width) + static_cast<size_t>(x);
  UploadTexels(stored_.texture, 0, 0, kBlock, kBlock, store_.data() + corner * kTexel, size_.width);
  DrawBare(to_yuv_, stored_.texture, yuv_);
  packer_.Draw(yuv_.texture);
  glFinish();
  packer_.Read(frame + corner,
               frame + size_.Pixels() +
                   static_cast<size_t>(y / 2) * static_cast<size_t>(size_.width) +
                   static_cast<size_t>(x),
               size_.width);
}

}  // namespace lumora::bench
