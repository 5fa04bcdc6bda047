// SPDX-License-Identifier: Apache-2.0
#include "lumora/lumora.h"
#include "proofs/determinism/stages.h"
#include "support/faces.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

using android::GPUBeautyFace;
using Bytes = std::vector<uint8_t>;

constexpr int kWidth = 320;
constexpr int kHeight = 240;
constexpr int kCaptureWidth = 1600;  // block mode whitens in blocks
constexpr int kCaptureHeight = 800;

/// A textured frame in skin-like colours.
Bytes Planes(int width, int height) {
  Frame frame = TextureFrame(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      frame.y(x, y) = static_cast<uint8_t>(75 + frame.y(x, y) / 3);
      frame.cr(x, y) = static_cast<uint8_t>(147 + (x / 4 + y / 8) % 16);
      frame.cb(x, y) = static_cast<uint8_t>(99 + (x / 8 + y / 4) % 16);
    }
  }
  const size_t size = static_cast<size_t>(width) * static_cast<size_t>(height) * 3 / 2;
  return {frame.bytes.begin(), frame.bytes.begin() + static_cast<std::ptrdiff_t>(size)};
}

std::vector<FACE_INFO_t> Faces(int width, int height) {
  return RecordsFrom({PortraitFace(width / 3, height / 2, height / 6, 8.0),
                      PortraitFace(width * 2 / 3, height / 2, height / 5, -5.0)});
}

/// What `draw(engine, luma, chroma, faces)` leaves of three frames in a row: some first uses differ
/// from the later ones.
template <typename Draw>
Bytes PreviewFrames(bool colour_convert, Draw draw) {
  GPUBeautyFace engine;
  engine.Init(kWidth, kHeight, kWidth, kHeight, nullptr, colour_convert);
  std::vector<FACE_INFO_t> faces = Faces(kWidth, kHeight);
  Bytes result;
  for (int frame = 0; frame < 3; ++frame) {
    Bytes planes = Planes(kWidth, kHeight);
    draw(engine, planes.data(), planes.data() + kWidth * kHeight, faces);
    result.insert(result.end(), planes.begin(), planes.end());
  }
  return result;
}

Bytes SlimPreview() {
  return PreviewFrames(false, [](GPUBeautyFace& engine, uint8_t* luma, uint8_t* chroma,
                                 std::vector<FACE_INFO_t>& faces) {
    engine.FaceProcessMultiface(luma, chroma, 8, faces.data(), 2, 0);
  });
}

Bytes WhitenPreview() {
  return PreviewFrames(true, [](GPUBeautyFace& engine, uint8_t* luma, uint8_t* chroma,
                                std::vector<FACE_INFO_t>& faces) {
    engine.LoadPreviewFrameBuffer(luma);
    engine.ConvertYUV();
    engine.DoFaceWhitening(faces.data(), 2, 40, 25, BEAUTYSHOT_EFFECT_BOTH);
    engine.ConvertHSItoYUV();
    engine.CopyMemYUVfromSrcTexture(luma, chroma);
  });
}

Bytes RectifyPreview() {
  return PreviewFrames(
      false, [](GPUBeautyFace& engine, uint8_t* luma, uint8_t* chroma, std::vector<FACE_INFO_t>&) {
        engine.Rectification(luma, chroma, 2, 0);
      });
}

template <typename Draw>
Bytes Capture(bool block_mode, Draw draw) {
  Bytes planes = Planes(kCaptureWidth, kCaptureHeight);
  uint8_t* const luma = planes.data();
  uint8_t* const chroma = luma + kCaptureWidth * kCaptureHeight;
  std::vector<FACE_INFO_t> faces = Faces(kCaptureWidth, kCaptureHeight);
  GPUBeautyFace engine;
  engine.InitCapture(luma, chroma, kCaptureWidth, kCaptureHeight, nullptr, block_mode);
  draw(engine, luma, chroma, faces);
  engine.DeInitCapture();
  return planes;
}

Bytes WhitenCapture() {
  return Capture(true, [](GPUBeautyFace& engine, uint8_t* luma, uint8_t* chroma,
                          std::vector<FACE_INFO_t>& faces) {
    engine.DoFaceWhiteningLarge(luma, chroma, faces.data(), 2, 40, 25, BEAUTYSHOT_EFFECT_BOTH);
    engine.CopyMemYUVfromSrcTextureLarge(luma, chroma, 0, 2);
  });
}

Bytes SlimCapture() {
  return Capture(false, [](GPUBeautyFace& engine, uint8_t* luma, uint8_t* chroma,
                           std::vector<FACE_INFO_t>& faces) {
    engine.FaceProcessLarge(luma, chroma, kCaptureWidth, kCaptureHeight, 0, faces.data(), 2, 8);
  });
}

}  // namespace

std::vector<Stage> OperationStages() {
  return {{"preview_slimming", SlimPreview},
          {"preview_whitening", WhitenPreview},
          {"preview_rectification", RectifyPreview},
          {"capture_whitening", WhitenCapture},
          {"capture_slimming", SlimCapture}};
}

}  // namespace lumora::test
