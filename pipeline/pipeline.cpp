// SPDX-License-Identifier: Apache-2.0
#include "lumora/pipeline/pipeline.h"

#include <memory>
#include <utility>

#include "pipeline/backends/backend.h"
#include "pipeline/backends/open_backend.h"
#include "pipeline/frames/frame_check.h"
#include "pipeline/frames/frame_copy.h"
#include "pipeline/plan/frame_plan.h"
#include "pipeline/request_check.h"
#include "pipeline/support/guarded.h"
#include "pipeline/support/reported.h"
#include "pipeline/support/spare.h"
#include "pipeline/support/stopwatch.h"

namespace lumora {
namespace {

/// What a plan has settled; a failure empties the report.
void Tell(const FramePlan& plan, Report* report) {
  report->chain = plan.chain == Chain::Capture ? ChainUsed::Capture : ChainUsed::Preview;
  report->faces = static_cast<int>(plan.faces.size());
  if (plan.whitens) report->tones = plan.whitening.tones;
}

Status CopyUnchanged(const ConstFrameView& in, const FrameView& out, Report* report) {
  Stopwatch stopwatch;
  CopyFrame(in, out);  // asks for memory, if at all, before it writes
  if (report == nullptr) return {};
  report->chain = ChainUsed::None;
  report->download_ms = stopwatch.Lap();
  return {};
}

}  // namespace

struct Pipeline::Parts {
  std::unique_ptr<Backend> backend;
  DeviceChoice choice;
  Spare<FramePlan> plans;
};

std::unique_ptr<Pipeline> Pipeline::Create(const PipelineOptions& options, Status* status) {
  std::unique_ptr<Pipeline> pipeline;
  Status result = Guarded([&]() -> Status {
    if (Status checked = CheckThreads(options.threads); !checked.ok()) return checked;
    auto parts = std::make_unique<Parts>();
    Status made = OpenBackend(options.device, options.threads, &parts->backend, &parts->choice);
    if (!made.ok()) return made;
    pipeline.reset(new Pipeline(std::move(parts)));
    return {};
  });
  if (status != nullptr) *status = std::move(result);
  return pipeline;
}

std::unique_ptr<Pipeline> Pipeline::Create(Status* status) {
  return Create(PipelineOptions{}, status);
}

Pipeline::Pipeline(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}

Pipeline::~Pipeline() = default;

Status Pipeline::Process(const FrameRequest& request, Report* report) {
  return Reported(report, [&]() -> Status {
    const auto& [in, out, faces, look, chain] = request;
    if (Status checked = CheckArguments(in, out, faces, look); !checked.ok()) return checked;
    const Spare<FramePlan>::Loan loan(parts_->plans);
    FramePlan& plan = *loan;
    Stopwatch stopwatch;
    PlanFrame(in, faces, look, chain, &plan);
    if (report != nullptr) report->plan_ms = stopwatch.Lap();
    if (plan.faces.empty()) return CopyUnchanged(in, out, report);
    if (report != nullptr) Tell(plan, report);
    Status status = parts_->backend->Apply(plan, in, out, report);
    if (plan.chain == Chain::Capture) plan = FramePlan();  // stills are rare
    return status;
  });
}

Status Pipeline::Rectify(const ConstFrameView& in, const FrameView& out, int degree,
                         Report* report) {
  return Reported(report, [&]() -> Status {
    if (Status checked = CheckFrames(in, out); !checked.ok()) return checked;
    if (Status checked = CheckDegree(degree); !checked.ok()) return checked;
    if (degree == 0) return CopyUnchanged(in, out, report);
    if (report != nullptr) report->chain = ChainUsed::Preview;
    return parts_->backend->Rectify(in, out, degree, report);
  });
}

Status Pipeline::RectifyRadial(const ConstFrameView& in, const FrameView& out, const Lens& lens,
                               Report* report) {
  return Reported(report, [&]() -> Status {
    if (Status checked = CheckFrames(in, out); !checked.ok()) return checked;
    if (Status checked = CheckLens(lens); !checked.ok()) return checked;
    if (report != nullptr) report->chain = ChainUsed::Preview;
    return parts_->backend->RectifyRadial(in, out, lens, report);
  });
}

DeviceInfo Pipeline::Device() {
  return OrNothing([this] { return Chosen(parts_->choice, parts_->backend->Device()); });
}

}  // namespace lumora
