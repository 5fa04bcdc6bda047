// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/gl/engine_host.h"

#include "pipeline/backends/gl/engine_faults.h"
#include "pipeline/backends/gl/gl_state.h"
#include "pipeline/backends/gl/merge.h"
#include "pipeline/backends/gl/rectification.h"
#include "pipeline/plan/drawn_blocks.h"
#include "pipeline/plan/frame_plan.h"
#include "pipeline/support/stopwatch.h"

namespace lumora {
Status EngineHost::Apply(const FramePlan& plan, const ConstFrameView& in, const FrameView& out,
                         Report* report) {
  report = reports_.For(report);
  Stopwatch stopwatch;
  frame_.Load(in);
  report->upload_ms = stopwatch.Lap();

  Status status = RunEffects(plan, in, report);
  report->engine_ms = stopwatch.Lap();
  if (status.ok()) {
    // Nothing may fail any more once `out` is written.
    report->buffer_kind = BufferKindHere();
    AddDrawnBlocks(plan, in.width, in.height, &report->blocks);
    if (ChangesCirclesOnly(plan)) {
      CopyFrame(in, out);  // asks for memory, if at all, before it writes
      for (const FacePlan& face : plan.faces) StoreCircle(frame_, face, out);
    } else {
      frame_.Store(out);
    }
    report->download_ms = stopwatch.Lap();
  }
  if (plan.chain == Chain::Capture) FreeMemory();
  return status;
}

Status EngineHost::RunEffects(const FramePlan& plan, const ConstFrameView& in, Report* report) {
  const bool capture = plan.chain == Chain::Capture;
  const ChainFrame frame = {setup_, crop_setups_, frame_, memory_};
  Stopwatch stopwatch;
  // A driver that failed may have left anything behind: the next frame finds a new set-up.
  const auto checked = [this](Status status) {
    if (status.ok()) status = CheckGlErrors();
    if (!status.ok()) {
      crop_setups_.Release();
      setup_.Release();
      setup_.Use();
    }
    return status;
  };
  ClearGlErrors();
  if (plan.whitens) {
    Status status = checked(capture ? WhitenCapture(frame, plan) : WhitenPreview(frame, plan));
    if (!status.ok()) return status;
    // Slimming takes pixels from beyond the frame as well.
    if (plan.slims) frame_.Extend(in.width, in.height);
    report->whiten_ms = stopwatch.Lap();
  }
  if (plan.slims) {
    Status status = checked(capture ? SlimCapture(frame, plan) : SlimPreview(frame, plan));
    if (!status.ok()) return status;
    report->slim_ms = stopwatch.Lap();
  }
  return {};
}

Status EngineHost::Rectify(const ConstFrameView& in, const FrameView& out, int degree,
                           Report* report) {
  return Correct(in, out, FramePlace{}, report, [&] {
    return DrawKeystone(setup_, degree,
                        {static_cast<double>(in.width) / frame_.width(),
                         static_cast<double>(in.height) / frame_.height()});
  });
}

Status EngineHost::RectifyRadial(const ConstFrameView& in, const FrameView& out, const Lens& lens,
                                 Report* report) {
  return Correct(in, out, MiddlePlace(in.width, in.height), report, [&] {
    const FrameShare share = {static_cast<double>(in.width) / frame_.width(),
                              static_cast<double>(in.height) / frame_.height()};
    return DrawRadial(setup_, lens, share);
  });
}

template <typename Draw>
Status EngineHost::Correct(const ConstFrameView& in, const FrameView& out, FramePlace place,
                           Report* report, Draw draw) {
  report = reports_.For(report);
  Stopwatch stopwatch;
  frame_.Load(in, place);
  report->upload_ms = stopwatch.Lap();
  if (Status status = setup_.Preview(frame_.width(), frame_.height(), false); !status.ok()) {
    return status;
  }
  setup_.SetPreviewFilters(GL_LINEAR);
  ClearGlErrors();
  android::GPUBeautyFace& engine = setup_.engine();
  bool done = engine.LoadPreviewFrameBuffer(frame_.luma()) != 0 && draw() &&
              engine.DrawRGBtoYY(1) != 0 && engine.DrawRGBtoUV(1) != 0;
  glFlush();
  glFinish();
  done = done && engine.MemcpyYUV(frame_.luma(), frame_.chroma()) != 0;
  Status status = done ? CheckGlErrors() : EngineRefused();
  report->engine_ms = stopwatch.Lap();
  if (!status.ok()) {
    setup_.Release();
    return status;
  }
  report->buffer_kind = BufferKindHere();
  report->blocks.push_back({0, 0, in.width, in.height});
  frame_.Store(out);
  report->download_ms = stopwatch.Lap();
  return {};
}

void EngineHost::FreeMemory() {
  frame_ = PaddedFrame();
  const bool whole_frames = memory_.whole_frames;
  memory_ = ChainMemory();
  memory_.whole_frames = whole_frames;
}

}  // namespace lumora
