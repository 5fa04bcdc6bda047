// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/open_backend.h"

#include <cstdlib>
#include <functional>
#include <utility>

#include "pipeline/backends/gl_module.h"
#include "pipeline/backends/gpu_nodes.h"

namespace lumora {
namespace {

/// What the environment says; null when it does not.
const char* Setting(const char* name) {
  const char* const text = std::getenv(name);
  return text != nullptr && *text != '\0' ? text : nullptr;
}

/// The backends of this machine. What is opened is left at `made`.
template <typename Made>
class Machine : public Candidates {
 public:
  using MakeGl = Status (*GlModule::*)(std::unique_ptr<Made>*);
  using MakeCpu = std::function<Status(std::unique_ptr<Made>*)>;

  Machine(MakeGl make_gl, MakeCpu make_cpu, std::unique_ptr<Made>* made)
      : make_gl_(make_gl), make_cpu_(std::move(make_cpu)), made_(made) {}

  bool HasGpuNode() override {
    const char* const root = Setting("LUMORA_SYSTEM_ROOT");
    return lumora::HasGpuNode(root != nullptr ? root : "");
  }
  Status OpenGl() override {
    made_->reset();
    const GlModule* module = nullptr;
    if (Status status = FindGlModule(&module); !status.ok()) return status;
    return (module->*make_gl_)(made_);
  }
  DeviceInfo GlDevice() override { return (*made_)->Device(); }
  Status OpenCpu() override {
    made_->reset();
    return make_cpu_(made_);
  }

 private:
  MakeGl make_gl_;
  MakeCpu make_cpu_;
  std::unique_ptr<Made>* made_;
};

}  // namespace

Status OpenBackend(Device device, int threads, std::unique_ptr<Backend>* backend,
                   DeviceChoice* choice) {
  const auto make_cpu = [threads](auto* made) { return MakeCpuBackend(threads, made); };
  Machine<Backend> machine(&GlModule::make_backend, make_cpu, backend);
  return ChooseDevice(device, Setting(kDeviceSetting), machine, choice);
}

Status OpenConverter(Device device, std::unique_ptr<ConverterBackend>* converter,
                     DeviceChoice* choice) {
  Machine<ConverterBackend> machine(&GlModule::make_converter, MakeCpuConverter, converter);
  return ChooseDevice(device, Setting(kDeviceSetting), machine, choice);
}

}  // namespace lumora
