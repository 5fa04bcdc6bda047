// SPDX-License-Identifier: Apache-2.0
// libLumoraPipeline: frames in, beautified frames out.
//
// A pipeline computes on one of two devices and may be called from any thread. On gl it owns an
// engine of libLumora on a worker thread of its own; on cpu it computes the same looks on its
// callers' threads, and takes neither a display nor a driver. The two differ by a few steps of 255
// in what they change. Every failure comes back as a Status with a sentence that can be shown to a
// user. Nothing is thrown, and memory that is short ("out of memory") leaves everything fit for the
// next call.
//
// What gl takes (libLumora, EGL, OpenGL ES and a module of this library) is loaded when gl is asked
// for or may be chosen, and then stays. An EGL display that the first pipeline or converter
// initialises stays so until the process ends: the host program may use the same display before,
// beside and after them.
#ifndef LUMORA_PIPELINE_PIPELINE_H_
#define LUMORA_PIPELINE_PIPELINE_H_

#include <memory>

#include "lumora/pipeline/chain.h"
#include "lumora/pipeline/device.h"
#include "lumora/pipeline/export.h"
#include "lumora/pipeline/face.h"
#include "lumora/pipeline/frame.h"
#include "lumora/pipeline/lens.h"
#include "lumora/pipeline/look.h"
#include "lumora/pipeline/report.h"
#include "lumora/pipeline/status.h"

namespace lumora {

/// What a pipeline is to work with.
struct PipelineOptions {
  /// Auto: what the environment variable LUMORA_DEVICE names ("auto", "gl" or "cpu"), else gl where
  /// its renderer is hardware, and cpu where it is software or there is none. A machine that shows
  /// no GPU below /dev is not asked for a renderer.
  lumora::Device device = lumora::Device::Auto;

  /// 1 to kMostThreads: how many threads work on one frame, the caller's among them, with the same
  /// result whatever the number. Without effect on gl.
  int threads = 1;
};

/// One frame to process, and how. Nothing in it is owned: planes and faces stay as they are until
/// the call has returned.
struct FrameRequest {
  ConstFrameView in;
  FrameView out;  ///< of the same size; format and strides may differ, the memory may be the same
  FaceSpan faces;
  Look look;
  Chain chain = Chain::Auto;
};

/// Beautifies and corrects frames.
///
/// Thread-safety: every member may be called from any thread. On gl calls are served one after
/// another; on cpu they run at once, each on its caller's thread. Destruction, on any thread, comes
/// after the last call has returned. Pipelines are independent of each other.
class LUMORA_PIPELINE_API Pipeline {
 public:
  /// A pipeline, which the caller owns. Failure: null, and `status`, which may be null, tells why:
  /// InvalidArgument for options, or a LUMORA_DEVICE, that cannot be used; NoDisplay where it had
  /// to be gl, and there is none; EngineFailed where memory is short.
  static std::unique_ptr<Pipeline> Create(const PipelineOptions& options, Status* status);

  /// The same with no options set.
  static std::unique_ptr<Pipeline> Create(Status* status);
  ~Pipeline();

  Pipeline(const Pipeline&) = delete;
  Pipeline& operator=(const Pipeline&) = delete;

  /// Processes one frame: `out` receives `in` with `look` applied to `faces`, whitening first.
  /// Frames have 32 x 32 pixels and more, odd sizes too. Bytes between the rows of `out` are not
  /// written.
  ///
  /// A luma sample changes only where the centre of its pixel lies in a circle that SlimmingCircle
  /// tells (slim) or in a first ellipse of WhiteningEllipses (whiten, saturate), a chroma sample
  /// only where that of one of the pixels that it stands for does, which are four and fewer at odd
  /// borders. Every other sample keeps its value, whatever the face, look, chain and format.
  ///
  /// With nothing to do (no face, everything off) the frame is copied unchanged, on the calling
  /// thread. A face that cannot be processed is left out: its centre lies outside the frame, or its
  /// cheeks or chin coincide with it. A face that leaves the frame is slimmed less and less. Any
  /// number of faces is processed, one after another where they overlap.
  ///
  /// The result depends on nothing but the request and the device. `report` may be null.
  ///
  /// Failure: `out` is left as it was. InvalidArgument for frames, scales or faces that cannot be
  /// used (a number of a face that is not finite, or beyond the bounds of Face); on gl TooLarge for
  /// a preview beyond the driver's textures; EngineFailed.
  Status Process(const FrameRequest& request, Report* report = nullptr);

  /// Keystone correction: `out` receives `in` mapped onto a quadrilateral of it. `degree`, -100 to
  /// 100, is in hundredths of the frame's size: a positive one shortens the left side of what is
  /// sampled by so much at both ends, a negative one the right; 0 is a copy. Frames, `report` and
  /// failure as in Process; on gl both sides end with the driver's textures.
  Status Rectify(const ConstFrameView& in, const FrameView& out, int degree,
                 Report* report = nullptr);

  /// Radial correction of a lens. The picture is enlarged by about two hundredths, so that its bent
  /// edges fall outside. Frames, `report` and failure as in Rectify.
  Status RectifyRadial(const ConstFrameView& in, const FrameView& out, const Lens& lens,
                       Report* report = nullptr);

  /// What it runs on, and why on that. Failure: nothing of it where memory is short.
  DeviceInfo Device();

 private:
  struct LUMORA_PIPELINE_LOCAL Parts;
  LUMORA_PIPELINE_LOCAL explicit Pipeline(std::unique_ptr<Parts> parts);
  std::unique_ptr<Parts> parts_;
};

}  // namespace lumora

#endif  // LUMORA_PIPELINE_PIPELINE_H_
