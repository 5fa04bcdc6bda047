// SPDX-License-Identifier: Apache-2.0
// What stands behind the pipeline and its converter: a plan goes in, planes change. Nothing above
// knows which body works.
#ifndef LUMORA_PIPELINE_BACKENDS_BACKEND_H_
#define LUMORA_PIPELINE_BACKENDS_BACKEND_H_

#include <memory>

#include "lumora/pipeline/device.h"
#include "lumora/pipeline/frame.h"
#include "lumora/pipeline/lens.h"
#include "lumora/pipeline/report.h"
#include "lumora/pipeline/status.h"

namespace lumora {

struct FramePlan;

/// Draws looks and corrects frames. What it is given has been checked.
///
/// Thread-safety: every operation may be called from any thread.
/// Failure: `out` is left as it was; what is thrown (memory that is short) leaves the backend fit
/// for the next call. `in` and `out` have one size and may be the same memory. Reports are empty
/// before and may be null; a backend tells the buffers, the blocks and its own times.
class Backend {
 public:
  virtual ~Backend() = default;

  /// `out` receives `in` as `plan`, in which there is at least one face, says.
  virtual Status Apply(const FramePlan& plan, const ConstFrameView& in, const FrameView& out,
                       Report* report) = 0;

  /// The two corrections of Pipeline.
  virtual Status Rectify(const ConstFrameView& in, const FrameView& out, int degree,
                         Report* report) = 0;
  virtual Status RectifyRadial(const ConstFrameView& in, const FrameView& out, const Lens& lens,
                               Report* report) = 0;

  /// What it runs on.
  virtual DeviceInfo Device() = 0;
};

/// Converts frames as Converter does. The rules of Backend hold; images without memory are not
/// wanted.
class ConverterBackend {
 public:
  virtual ~ConverterBackend() = default;
  virtual Status Convert(const ConstFrameView& in, const ImageView& rgb, const ImageView& hsi,
                         Report* report) = 0;

  /// What it runs on.
  virtual DeviceInfo Device() = 0;
};

/// The engine, and its converter, each on a thread of its own. NoDisplay where there is none.
Status MakeGlBackend(std::unique_ptr<Backend>* backend);
Status MakeGlConverter(std::unique_ptr<ConverterBackend>* converter);

/// The processor. `threads`, 1 and more, is how many work on one frame, the caller's among them.
/// Its operations run on their callers' threads, any number at once.
Status MakeCpuBackend(int threads, std::unique_ptr<Backend>* backend);
Status MakeCpuConverter(std::unique_ptr<ConverterBackend>* converter);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_BACKENDS_BACKEND_H_
