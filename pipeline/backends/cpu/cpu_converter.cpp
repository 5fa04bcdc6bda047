// SPDX-License-Identifier: Apache-2.0
// Colours of frames, computed on the processor.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "pipeline/backends/backend.h"
#include "pipeline/backends/cpu/cpu_device.h"
#include "pipeline/backends/cpu/kernels/colour_rows.h"
#include "pipeline/frames/frame_layout.h"
#include "pipeline/frames/own_frame.h"
#include "pipeline/support/spare.h"
#include "pipeline/support/stopwatch.h"

namespace lumora {
namespace {

/// The rows of a frame that share row `pair` of its chroma.
cpu::ColourRows RowsOf(const ConstFrameView& frame, int pair) {
  const auto row_at = [&frame](size_t plane, int row) {
    return frame.planes[plane] + row * frame.strides[plane];
  };
  cpu::ColourRows rows{};
  rows.luma[0] = row_at(0, 2 * pair);
  rows.luma[1] = 2 * pair + 1 < frame.height ? row_at(0, 2 * pair + 1) : nullptr;
  rows.columns = frame.width;
  if (IsSemiPlanar(frame.format)) {
    const uint8_t* const pairs = row_at(1, pair);
    const bool cr_first = frame.format == PixelFormat::NV21;
    rows.cr = pairs + (cr_first ? 0 : 1);
    rows.cb = pairs + (cr_first ? 1 : 0);
    rows.chroma_step = 2;
  } else {
    rows.cr = row_at(2, pair);
    rows.cb = row_at(1, pair);
    rows.chroma_step = 1;
  }
  return rows;
}

/// The same rows of an image; none where it is not wanted.
cpu::ImageRows RowsOf(const ImageView& image, int pair) {
  if (image.data == nullptr) return {{nullptr, nullptr}, image.channels};
  uint8_t* const first = image.data + std::ptrdiff_t{2} * pair * image.stride;
  return {{first, 2 * pair + 1 < image.height ? first + image.stride : nullptr}, image.channels};
}

/// Calls are served on their callers' threads, any number at once.
class CpuConverter final : public ConverterBackend {
 public:
  Status Convert(const ConstFrameView& in, const ImageView& rgb, const ImageView& hsi,
                 Report* report) override {
    const auto lies_over = [&in](const ImageView& image) {
      return image.data != nullptr && Overlap(in, ExtentOf(image));
    };
    if (lies_over(rgb) || lies_over(hsi)) {
      const Spare<OwnFrame>::Loan loan(frames_);
      Stopwatch stopwatch;
      const ConstFrameView copy = (*loan).Copy(in);
      if (report != nullptr) report->upload_ms = stopwatch.Lap();
      ConvertApart(copy, rgb, hsi, report);
    } else {
      ConvertApart(in, rgb, hsi, report);
    }
    return {};
  }

  DeviceInfo Device() override { return cpu::DeviceWith(1); }

 private:
  /// Asks for no memory.
  static void ConvertApart(const ConstFrameView& in, const ImageView& rgb, const ImageView& hsi,
                           Report* report) {
    Stopwatch stopwatch;
    for (int pair = 0; pair < ChromaSize(in.height); ++pair) {
      cpu::ConvertColours(RowsOf(in, pair), RowsOf(rgb, pair), RowsOf(hsi, pair));
    }
    if (report != nullptr) report->engine_ms = stopwatch.Lap();
  }

  Spare<OwnFrame> frames_;
};

}  // namespace

Status MakeCpuConverter(std::unique_ptr<ConverterBackend>* converter) {
  *converter = std::make_unique<CpuConverter>();
  return {};
}

}  // namespace lumora
