// SPDX-License-Identifier: Apache-2.0
// The looks and corrections, computed on the processor.
#include <memory>

#include "pipeline/backends/backend.h"
#include "pipeline/backends/cpu/cpu_device.h"
#include "pipeline/backends/cpu/rectification.h"
#include "pipeline/backends/cpu/slimming.h"
#include "pipeline/backends/cpu/whitening.h"
#include "pipeline/backends/cpu/workers.h"
#include "pipeline/frames/frame_copy.h"
#include "pipeline/plan/drawn_blocks.h"
#include "pipeline/plan/frame_plan.h"
#include "pipeline/support/reported.h"
#include "pipeline/support/spare.h"
#include "pipeline/support/stopwatch.h"

namespace lumora {
namespace {

/// What one call works with.
struct Desk {
  explicit Desk(int threads) : workers(threads) {}

  cpu::Workers workers;
  cpu::Whitening whitening;
  cpu::Slimming slimming;
  OwnFrame source;
  ReportPlace reports;
};

/// Calls are served on their callers' threads, any number at once.
class CpuBackend final : public Backend {
 public:
  explicit CpuBackend(int threads) : threads_(threads) {}

  Status Apply(const FramePlan& plan, const ConstFrameView& in, const FrameView& out,
               Report* report) override {
    const Spare<Desk>::Loan loan(desks_, threads_);
    Desk& desk = *loan;
    report = desk.reports.For(report);
    Stopwatch stopwatch;
    // All of the memory first: nothing may fail any more once `out` is written.
    if (plan.whitens) desk.whitening.Prepare(plan, desk.workers);
    if (plan.slims) desk.slimming.Prepare(plan, in.width, in.height, desk.workers);
    AddDrawnBlocks(plan, in.width, in.height, &report->blocks);
    stopwatch.Lap();
    if (Overlap(in, out)) {
      CopyFrame(in, out);  // asks for memory, if at all, before it writes
    } else {
      cpu::CopyInBands(in, out, desk.workers);
    }
    report->upload_ms = stopwatch.Lap();
    if (plan.whitens) {
      desk.whitening.Draw(plan, out, desk.workers);
      report->whiten_ms = stopwatch.Lap();
    }
    if (plan.slims) {
      desk.slimming.Draw(plan, out, desk.workers);
      report->slim_ms = stopwatch.Lap();
    }
    report->engine_ms = report->whiten_ms + report->slim_ms;
    if (plan.chain == Chain::Capture) {  // stills are rare
      desk.whitening = {};
      desk.slimming = {};
    }
    return {};
  }

  Status Rectify(const ConstFrameView& in, const FrameView& out, int degree,
                 Report* report) override {
    return Correct(cpu::KeystoneRemap(in.width, in.height, degree), in, out, report);
  }

  Status RectifyRadial(const ConstFrameView& in, const FrameView& out, const Lens& lens,
                       Report* report) override {
    return Correct(cpu::LensRemap(in.width, in.height, cpu::CoefficientsOf(lens)), in, out, report);
  }

  DeviceInfo Device() override { return cpu::DeviceWith(threads_); }

 private:
  Status Correct(const cpu::Remap& remap, const ConstFrameView& in, const FrameView& out,
                 Report* report) {
    const Spare<Desk>::Loan loan(desks_, threads_);
    Desk& desk = *loan;
    report = desk.reports.For(report);
    report->blocks.push_back({0, 0, in.width, in.height});
    Stopwatch stopwatch;
    const ConstFrameView source = cpu::SourceApart(in, out, &desk.source);
    report->upload_ms = stopwatch.Lap();
    desk.workers.Run(cpu::RowPairs(in),
                     [&](int pair, int) { cpu::DrawRowPairs(remap, source, out, pair, pair + 1); });
    report->engine_ms = stopwatch.Lap();
    return {};
  }

  const int threads_;
  Spare<Desk> desks_;
};

}  // namespace

Status MakeCpuBackend(int threads, std::unique_ptr<Backend>* backend) {
  *backend = std::make_unique<CpuBackend>(threads);
  return {};
}

}  // namespace lumora
