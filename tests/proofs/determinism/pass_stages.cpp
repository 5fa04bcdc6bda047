// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <memory>
#include <utility>

#include "lumora/programs/programs.h"
#include "programs/program_draw.h"
#include "proofs/determinism/stages.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

constexpr int kWidth = 160;
constexpr int kHeight = 120;

/// What unit 0 reads: every byte random.
Image Noise() {
  return NoiseImage(kWidth, kHeight, 1);
}

/// What unit 1 reads: other noise, every second pixel of which has no alpha.
Image SecondNoise() {
  Image image = NoiseImage(kWidth, kHeight, 2);
  for (size_t i = 3; i < image.bytes.size(); i += 8) image.bytes[i] = 0;
  return image;
}

/// A frame as the passes get it: four pixels share their chroma, which is packed from between them.
Image SharedChroma() {
  Image image = Noise();
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const uint8_t* shared = image.pixel(x & ~1, y & ~1);
      std::copy(shared + 1, shared + 3, image.pixel(x, y) + 1);
    }
  }
  return image;
}

/// Draws a program of that class after `set` has given it its uniforms.
template <typename Program, typename Set>
Stage Pass(const char* name, int width, int height, Set set, Image (*input)() = Noise) {
  return {name, [=] {
            Program program;
            if (!program.Load()) return std::vector<uint8_t>{};
            set(program);
            const Texture first(input());
            const Texture second(SecondNoise());
            return DrawProgram(program, {first.name(), second.name()}, width, height).bytes;
          }};
}

template <typename Program>
Stage PlainPass(const char* name) {
  return Pass<Program>(name, kWidth, kHeight, [](Program&) {});
}

/// Offsets of a packing pass: its samples side by side.
template <size_t N>
void SetShifts(float (&shifts)[N], float step) {
  for (size_t i = 0; i < N; i += 2) {
    shifts[i] = (static_cast<float>(i / 2) - static_cast<float>(N) / 4 + 0.5f) * step;
    shifts[i + 1] = 0.0f;
  }
}

void SetFace(GLProgWarp& program) {
  const float controller[] = {0.48f, 0.52f, 0.9f, 0.4f};
  const float limiter[] = {1.4f, 0.5f, 1.1f};
  std::copy(std::begin(controller), std::end(controller), program.m_fvController);
  std::copy(std::begin(limiter), std::end(limiter), program.m_fvAngleLimiter);
  program.m_fAspectRatio = static_cast<float>(kHeight) / static_cast<float>(kWidth);
  std::fill(std::begin(program.m_fvScale), std::end(program.m_fvScale), 1.0f);
  program.m_fvShift[0] = controller[0];
  program.m_fvShift[1] = controller[1];
}

/// Seven circles around places of a face.
void SetFace(GLProgWhiteningBase& program) {
  const float circles[7][3] = {{0.5f, 0.5f, 0.45f}, {0.5f, 0.6f, 0.2f},  {0.4f, 0.4f, 0.07f},
                               {0.6f, 0.4f, 0.07f}, {0.5f, 0.7f, 0.15f}, {0.4f, 0.4f, 0.11f},
                               {0.6f, 0.4f, 0.11f}};
  for (size_t i = 0; i < 7; ++i) {
    const auto [x, y, radius] = circles[i];
    const float matrix[] = {1 / radius, 0, 0, 0, 1 / radius, 0, -x / radius, -y / radius, 1};
    std::copy(std::begin(matrix), std::end(matrix), program.m_fEllipseController[i]);
  }
  program.m_fDiffI = 1.1f;
  program.m_fDiffS = 0.12f;
}

}  // namespace

std::vector<Stage> PassStages() {
  return {
      PlainPass<GLProgYUV2RGB>("yuv2rgb"),
      PlainPass<GLProgRGB2HSI>("rgb2hsi"),
      PlainPass<GLProgYUV2HSI>("yuv2hsi"),
      PlainPass<GLProgHSI2YUV>("hsi2yuv"),
      Pass<GLProgRGBtoY>("pack_luma", kWidth / 4, kHeight,
                         [](GLProgRGBtoY& program) { SetShifts(program.m_fShift, 1.0f / kWidth); }),
      Pass<GLProgRGBtoUV>(
          "pack_chroma", kWidth / 4, kHeight / 2,
          [](GLProgRGBtoUV& program) { SetShifts(program.m_fShift, 2.0f / kWidth); }, SharedChroma),
      Pass<GLProgCheekSlimmer>("slimmer", kWidth, kHeight,
                               [](GLProgCheekSlimmer& program) { SetFace(program); }),
      Pass<GLProgCheekSlimmerLarge>("slimmer_planes", kWidth, kHeight,
                                    [](GLProgCheekSlimmerLarge& program) { SetFace(program); }),
      Pass<GLProgCheekSlimmerLarge_HSI>(
          "slimmer_hsi", kWidth, kHeight,
          [](GLProgCheekSlimmerLarge_HSI& program) { SetFace(program); }),
      Pass<GLProgFaceWhitening>("whitening", kWidth, kHeight,
                                [](GLProgFaceWhitening& program) { SetFace(program); }),
      Pass<GLProgFaceWhiteningLarge>("whitening_block", kWidth, kHeight,
                                     [](GLProgFaceWhiteningLarge& program) {
                                       SetFace(program);
                                       const float frame[] = {1, 1, 0, 0};
                                       std::copy(std::begin(frame), std::end(frame),
                                                 program.m_fScaleController);
                                     }),
      Pass<GLProgRectificaton>(
          "rectification", kWidth, kHeight,
          [](GLProgRectificaton& program) {
            const float quad[4][2] = {{0.1f, 0.02f}, {0.9f, 0.05f}, {-0.05f, 0.97f}, {1.1f, 1.0f}};
            std::copy(&quad[0][0], &quad[0][0] + 8, &program.m_fvQuad[0][0]);
          }),
      Pass<GLProgRadialDistortion>("radial_distortion", kWidth, kHeight,
                                   [](GLProgRadialDistortion& program) {
                                     const float k[] = {0.9f, 0.08f, -0.03f, 0.01f};
                                     std::copy(std::begin(k), std::end(k), program.m_fvKval);
                                   }),
  };
}

}  // namespace lumora::test
