#include "lumora/pipeline/pipeline.h"

#include <algorithm>
#include <string>
#include <utility>

#include "lumora/geometry/frame_sizes.h"
#include "pipeline/backends/gl/engine_faults.h"
#include "pipeline/backends/gl/engine_host.h"
#include "pipeline/frames/frame_check.h"
#include "pipeline/frames/frame_copy.h"
#include "pipeline/plan/warp_geometry.h"
#include "pipeline/support/failure.h"
#include "pipeline/support/guarded.h"
#include "pipeline/support/reported.h"
#include "pipeline/support/serial_thread.h"
#include "pipeline/support/stopwatch.h"

namespace lumora {
namespace {

Chain ChainFor(int width, Chain wanted) {
  if (wanted != Chain::Auto) return wanted;
  return RoundUpTo32(width) > kWidestWholeFrame ? Chain::Capture : Chain::Preview;
}

/// Whether there is a face that can be processed, and a reason to.
bool HasWork(FaceSpan faces, int width, int height, const Look& look) {
  if (look.slim == 0 && !Whitens(look)) return false;
  return std::any_of(faces.begin(), faces.end(),
                     [&](const Face& face) { return IsSlimmable(face, width, height); });
}

void CopyUnchanged(const ConstFrameView& in, const FrameView& out, Report* report) {
  Stopwatch stopwatch;
  CopyFrame(in, out);  // asks for memory, if at all, before it writes
  if (report == nullptr) return;
  report->chain = ChainUsed::None;
  report->download_ms = stopwatch.Lap();
}

}  // namespace

/// The engine and the thread that it is bound to.
class Pipeline::Worker {
 public:
  Worker() {
    thread_.Run([this] { host_ = std::make_unique<EngineHost>(); });
  }
  ~Worker() {
    thread_.Run([this] { host_.reset(); });
  }
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  /// Calls `call` with the host, on the host's thread.
  template <typename Call>
  auto Run(Call call) {
    return thread_.Run([this, &call] { return call(*host_); });
  }

 private:
  std::unique_ptr<EngineHost> host_;  // touched by thread_ only
  SerialThread thread_;
};

std::unique_ptr<Pipeline> Pipeline::Create(Status* status) {
  std::unique_ptr<Pipeline> pipeline;
  Status result = Guarded([&pipeline]() -> Status {
    auto worker = std::make_unique<Worker>();
    if (!worker->Run([](EngineHost& host) { return host.ready(); })) return NoDisplay();
    pipeline.reset(new Pipeline(std::move(worker)));
    return {};
  });
  if (status != nullptr) *status = std::move(result);
  return pipeline;
}

Pipeline::Pipeline(std::unique_ptr<Worker> worker) : worker_(std::move(worker)) {}

Pipeline::~Pipeline() = default;

Status Pipeline::Process(const FrameRequest& request, Report* report) {
  return Reported(report, [&]() -> Status {
    const auto& [in, out, faces, look, wanted] = request;
    if (Status checked = CheckArguments(in, out, faces, look); !checked.ok()) return checked;
    if (!HasWork(faces, in.width, in.height, look)) {
      CopyUnchanged(in, out, report);
      return {};
    }
    const Chain chain = ChainFor(in.width, wanted);
    return worker_->Run([&](EngineHost& host) { return host.Beautify(request, chain, report); });
  });
}

Status Pipeline::Rectify(const ConstFrameView& in, const FrameView& out, int degree,
                         Report* report) {
  return Reported(report, [&]() -> Status {
    if (Status checked = CheckFrames(in, out); !checked.ok()) return checked;
    if (degree < -100 || degree > 100) {
      return Failure(StatusCode::InvalidArgument,
                     "the degree is " + std::to_string(degree) + ", but its range is -100 to 100");
    }
    if (degree == 0) {
      CopyUnchanged(in, out, report);
      return {};
    }
    return worker_->Run([&](EngineHost& host) { return host.Rectify(in, out, degree, report); });
  });
}

Status Pipeline::RectifyRadial(const ConstFrameView& in, const FrameView& out, const Lens& lens,
                               Report* report) {
  return Reported(report, [&]() -> Status {
    if (Status checked = CheckFrames(in, out); !checked.ok()) return checked;
    if (Status checked = CheckLens(lens); !checked.ok()) return checked;
    return worker_->Run(
        [&](EngineHost& host) { return host.RectifyRadial(in, out, lens, report); });
  });
}

DeviceInfo Pipeline::Device() {
  return OrNothing([this] { return worker_->Run([](EngineHost& host) { return host.Device(); }); });
}

}  // namespace lumora
