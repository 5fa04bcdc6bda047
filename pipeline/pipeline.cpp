#include "pipeline/pipeline.h"

#include <chrono>
#include <exception>
#include <new>
#include <optional>
#include <utility>

#include "pipeline/engine_host.h"
#include "pipeline/face_record.h"
#include "pipeline/frame_check.h"
#include "pipeline/frame_copy.h"
#include "pipeline/serial_thread.h"
#include "pipeline/status.h"

namespace lumora {
namespace {

/// Records of the faces that can be slimmed, in the order of `faces`.
std::vector<FACE_INFO_t> RecordsOf(const std::vector<Face>& faces, int width, int height,
                                   const Look& look) {
  std::vector<FACE_INFO_t> records;
  if (look.slim == 0) return records;
  for (const Face& face : faces) {
    if (const auto record = MakeFaceRecord(face, width, height, look.slim)) {
      records.push_back(*record);
    }
  }
  return records;
}

void CopyUnchanged(const ConstFrameView& in, const FrameView& out, Report* report) {
  const auto begin = std::chrono::steady_clock::now();
  CopyFrame(in, out);
  const std::chrono::duration<double, std::milli> passed = std::chrono::steady_clock::now() - begin;
  report->chain = "none";
  report->download_ms = passed.count();
}

/// What `work` returns; what it throws becomes a Status as well.
template <typename Work>
Status Guarded(Work work) {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    return Failure(StatusCode::EngineFailed, "there is not enough memory for the frame");
  } catch (const std::exception& error) {
    return Failure(StatusCode::EngineFailed, error.what());
  }
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
  std::unique_ptr<Worker> worker;
  const Status result = Guarded([&worker]() -> Status {
    worker = std::make_unique<Worker>();
    if (!worker->Run([](EngineHost& host) { return host.ready(); })) {
      return Failure(StatusCode::NoDisplay,
                     "no EGL display with OpenGL ES 2 was found on this machine; "
                     "a software renderer such as Mesa's is enough");
    }
    return {};
  });
  if (status != nullptr) *status = result;
  if (!result.ok()) return nullptr;
  return std::unique_ptr<Pipeline>(new Pipeline(std::move(worker)));
}

Pipeline::Pipeline(std::unique_ptr<Worker> worker) : worker_(std::move(worker)) {}

Pipeline::~Pipeline() = default;

Status Pipeline::Process(const ConstFrameView& in, const FrameView& out,
                         const std::vector<Face>& faces, const Look& look, Report* report) {
  Report done;
  Status status = Guarded([&]() -> Status {
    if (Status checked = CheckArguments(in, out, faces, look); !checked.ok()) return checked;
    std::vector<FACE_INFO_t> records = RecordsOf(faces, in.width, in.height, look);
    if (records.empty()) {
      CopyUnchanged(in, out, &done);
      return {};
    }
    return worker_->Run([&](EngineHost& host) { return host.Slim(in, out, records, &done); });
  });
  if (report != nullptr) *report = std::move(done);
  return status;
}

DeviceInfo Pipeline::Device() {
  return worker_->Run([](EngineHost& host) { return host.Device(); });
}

}  // namespace lumora
