// SPDX-License-Identifier: Apache-2.0
// The backend that drives the engine, on a thread of its own.
#include <memory>

#include "pipeline/backends/backend.h"
#include "pipeline/backends/gl/engine_faults.h"
#include "pipeline/backends/gl/engine_host.h"
#include "pipeline/backends/gl/gl_state.h"
#include "pipeline/support/serial_thread.h"

namespace lumora {
namespace {

class GlBackend : public Backend {
 public:
  GlBackend() {
    thread_.Run([this] { host_ = std::make_unique<EngineHost>(); });
  }
  ~GlBackend() override {
    thread_.Run([this] { host_.reset(); });
  }

  bool Ready() {
    return thread_.Run([this] { return host_->ready(); });
  }

  Status Apply(const FramePlan& plan, const ConstFrameView& in, const FrameView& out,
               Report* report) override {
    return thread_.Run([&] { return host_->Apply(plan, in, out, report); });
  }
  Status Rectify(const ConstFrameView& in, const FrameView& out, int degree,
                 Report* report) override {
    return thread_.Run([&] { return host_->Rectify(in, out, degree, report); });
  }
  Status RectifyRadial(const ConstFrameView& in, const FrameView& out, const Lens& lens,
                       Report* report) override {
    return thread_.Run([&] { return host_->RectifyRadial(in, out, lens, report); });
  }
  DeviceInfo Device() override {
    return thread_.Run([] { return DeviceHere(); });
  }

 private:
  std::unique_ptr<EngineHost> host_;  // touched by thread_ only
  SerialThread thread_;
};

}  // namespace

Status MakeGlBackend(std::unique_ptr<Backend>* backend) {
  auto made = std::make_unique<GlBackend>();
  if (!made->Ready()) return NoDisplay();
  *backend = std::move(made);
  return {};
}

}  // namespace lumora
