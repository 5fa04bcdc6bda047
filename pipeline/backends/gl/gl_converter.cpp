// SPDX-License-Identifier: Apache-2.0
// The backend that drives the engine library's converter, on a thread of its own.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

#include "lumora/convert/gpu_color_converter.h"
#include "lumora/platform/display.h"
#include "pipeline/backends/backend.h"
#include "pipeline/backends/gl/engine_faults.h"
#include "pipeline/backends/gl/gl_state.h"
#include "pipeline/frames/frame_copy.h"
#include "pipeline/support/reported.h"
#include "pipeline/support/serial_thread.h"
#include "pipeline/support/stopwatch.h"

namespace lumora {
namespace {

constexpr int kTexelBytes = 4;

/// The engine's expansion writes whole images when rows are multiples of this many pixels.
constexpr int kRowAlignment = 128;

/// Copies the left part of an image of texels.
void CopyImage(const uint8_t* texels, int texels_a_row, const ImageView& out) {
  const auto from_stride = static_cast<size_t>(texels_a_row) * kTexelBytes;
  for (int y = 0; y < out.height; ++y) {
    const uint8_t* from = texels + static_cast<size_t>(y) * from_stride;
    uint8_t* to = out.data + y * out.stride;
    for (int x = 0; x < out.width; ++x, from += kTexelBytes, to += out.channels) {
      for (int channel = 0; channel < 3; ++channel) to[channel] = from[channel];
      if (out.channels == kTexelBytes) to[3] = 255;
    }
  }
}

/// Ends what a converter without a current context leaves behind.
void EndParts(android::GPUColorConverter& engine) {
  if (engine.m_eglSurface != EGL_NO_SURFACE) {
    eglDestroySurface(engine.m_eglDisplay, engine.m_eglSurface);
  }
  if (engine.m_eglContext != EGL_NO_CONTEXT) {
    eglDestroyContext(engine.m_eglDisplay, engine.m_eglContext);
  }
}

class GlConverter : public ConverterBackend {
 public:
  GlConverter() {
    thread_.Run([this] {
      engine_ = std::make_unique<android::GPUColorConverter>();
      engine_->m_bEGLReady ? platform::KeepDisplay(engine_->m_eglDisplay) : EndParts(*engine_);
    });
  }
  ~GlConverter() override {
    thread_.Run([this] { engine_.reset(); });
  }

  bool Ready() {
    return thread_.Run([this] { return engine_->m_bEGLReady; });
  }

  Status Convert(const ConstFrameView& in, const ImageView& rgb, const ImageView& hsi,
                 Report* report) override {
    return thread_.Run([&] { return ConvertHere(in, rgb, hsi, report); });
  }
  DeviceInfo Device() override {
    return thread_.Run([] { return DeviceHere(); });
  }

 private:
  Status ConvertHere(const ConstFrameView& in, const ImageView& rgb, const ImageView& hsi,
                     Report* report);
  Status Prepare(int width, int height);

  std::unique_ptr<android::GPUColorConverter> engine_;  // touched by thread_ only
  PaddedFrame frame_{kRowAlignment};
  ReportPlace reports_;
  int width_ = 0;  // the size that the engine is set up for; 0 when it is not
  int height_ = 0;
  SerialThread thread_;
};

Status GlConverter::ConvertHere(const ConstFrameView& in, const ImageView& rgb,
                                const ImageView& hsi, Report* report) {
  report = reports_.For(report);
  Stopwatch stopwatch;
  frame_.Load(in);
  report->upload_ms = stopwatch.Lap();
  if (Status status = Prepare(frame_.width(), frame_.height()); !status.ok()) return status;

  ClearGlErrors();
  const bool done = engine_->ConvertYUV(frame_.luma()) != 0;
  Status status = done ? CheckGlErrors() : EngineRefused();
  report->engine_ms = stopwatch.Lap();
  if (!status.ok()) {
    width_ = height_ = 0;  // sets the engine up anew for the next frame
    return status;
  }
  const unsigned char* rgb_pixels = rgb.data != nullptr ? engine_->GetRGB_Image() : nullptr;
  const unsigned char* hsi_pixels = hsi.data != nullptr ? engine_->GetHSI_Image() : nullptr;
  if ((rgb.data != nullptr && rgb_pixels == nullptr) ||
      (hsi.data != nullptr && hsi_pixels == nullptr)) {
    return EngineRefused();
  }
  // Nothing may fail any more once the images are written.
  report->buffer_kind = BufferKindHere();
  if (rgb.data != nullptr) CopyImage(rgb_pixels, frame_.width(), rgb);
  if (hsi.data != nullptr) CopyImage(hsi_pixels, frame_.width(), hsi);
  report->download_ms = stopwatch.Lap();
  return {};
}

Status GlConverter::Prepare(int width, int height) {
  if (width == width_ && height == height_) return {};
  if (Status status = CheckTextureSize(width, height); !status.ok()) return status;
  width_ = height_ = 0;
  int stride = 0;
  engine_->Init(width, height, &stride);
  const char* fault =
      FaultOf({}, {engine_->m_pInputImage, engine_->m_pOutputImage[0], engine_->m_pOutputImage[1]},
              {engine_->m_hFrameBuffer[0], engine_->m_hFrameBuffer[1]});
  if (engine_->m_hYUV2RGBProgram == 0 || engine_->m_hRGB2HSIProgram == 0) fault = kNoProgram;
  if (fault != nullptr) return NotSetUp(fault);
  width_ = width;
  height_ = height;
  return {};
}

}  // namespace

Status MakeGlConverter(std::unique_ptr<ConverterBackend>* converter) {
  auto made = std::make_unique<GlConverter>();
  if (!made->Ready()) return NoDisplay();
  *converter = std::move(made);
  return {};
}

}  // namespace lumora
