// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/open_backend.h"

#include <cstdlib>

#include "pipeline/support/failure.h"

namespace lumora {
namespace {

template <typename Made>
Status Open(Device device, Status (*make_gl)(std::unique_ptr<Made>*), std::unique_ptr<Made>* made,
            DeviceChoice* choice) {
  if (Status status = SettleWish(device, std::getenv(kDeviceSetting), choice); !status.ok()) {
    return status;
  }
  if (choice->device == Device::Cpu) return Invalid("this library has no device cpu yet");
  if (choice->device == Device::Auto) *choice = {Device::Gl, "it is the only one"};
  return make_gl(made);
}

}  // namespace

Status OpenBackend(Device device, int /*threads*/, std::unique_ptr<Backend>* backend,
                   DeviceChoice* choice) {
  return Open(device, MakeGlBackend, backend, choice);
}

Status OpenConverter(Device device, std::unique_ptr<ConverterBackend>* converter,
                     DeviceChoice* choice) {
  return Open(device, MakeGlConverter, converter, choice);
}

}  // namespace lumora
