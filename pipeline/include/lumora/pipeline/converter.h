// SPDX-License-Identifier: Apache-2.0
// YUV frames to RGB and HSI images, on the GPU or the processor.
#ifndef LUMORA_PIPELINE_CONVERTER_H_
#define LUMORA_PIPELINE_CONVERTER_H_

#include <memory>

#include "lumora/pipeline/device.h"
#include "lumora/pipeline/export.h"
#include "lumora/pipeline/frame.h"
#include "lumora/pipeline/report.h"
#include "lumora/pipeline/status.h"

namespace lumora {

/// Converts frames. On gl it owns a converter of the engine library on a worker thread of its own;
/// on cpu it works on its callers' threads. Any number of converters and pipelines may live side by
/// side.
///
/// Thread-safety: every member may be called from any thread. On gl calls are served one after
/// another; on cpu they run at once, each on its caller's thread.
class LUMORA_PIPELINE_API Converter {
 public:
  /// A converter, which the caller owns, on a device as in PipelineOptions. Failure: null, and
  /// `status`, which may be null, tells why: InvalidArgument for a device, or a LUMORA_DEVICE, that
  /// there is not; NoDisplay where it had to be gl, and there is none; EngineFailed where memory is
  /// short.
  static std::unique_ptr<Converter> Create(lumora::Device device, Status* status);

  /// The same with Device::Auto.
  static std::unique_ptr<Converter> Create(Status* status);
  ~Converter();

  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  /// Converts a frame of 32 x 32 pixels and more, odd sizes too. `rgb` receives red, green, blue;
  /// `hsi` receives hue (255 is a turn), saturation ((max - min) / max) and intensity (max). Images
  /// have the frame's size; one of the two may be left out by a null `data`. Bytes between their
  /// rows are not written. `report` may be null.
  ///
  /// Failure: both images are left as they were. InvalidArgument for frames and images that cannot
  /// be used; on gl TooLarge for a frame beyond the driver's textures; EngineFailed.
  Status Convert(const ConstFrameView& in, const ImageView& rgb, const ImageView& hsi,
                 Report* report = nullptr);

  /// What it runs on, and why on that. Failure: nothing of it where memory is short.
  DeviceInfo Device();

 private:
  struct LUMORA_PIPELINE_LOCAL Parts;
  LUMORA_PIPELINE_LOCAL explicit Converter(std::unique_ptr<Parts> parts);
  std::unique_ptr<Parts> parts_;
};

}  // namespace lumora

#endif  // LUMORA_PIPELINE_CONVERTER_H_
