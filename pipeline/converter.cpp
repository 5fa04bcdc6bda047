// SPDX-License-Identifier: Apache-2.0
#include "lumora/pipeline/converter.h"

#include <memory>
#include <utility>

#include "pipeline/backends/backend.h"
#include "pipeline/backends/open_backend.h"
#include "pipeline/frames/frame_check.h"
#include "pipeline/support/guarded.h"
#include "pipeline/support/reported.h"

namespace lumora {

struct Converter::Parts {
  std::unique_ptr<ConverterBackend> backend;
  DeviceChoice choice;
};

std::unique_ptr<Converter> Converter::Create(lumora::Device device, Status* status) {
  std::unique_ptr<Converter> converter;
  Status result = Guarded([&]() -> Status {
    auto parts = std::make_unique<Parts>();
    Status made = OpenConverter(device, &parts->backend, &parts->choice);
    if (!made.ok()) return made;
    converter.reset(new Converter(std::move(parts)));
    return {};
  });
  if (status != nullptr) *status = std::move(result);
  return converter;
}

std::unique_ptr<Converter> Converter::Create(Status* status) {
  return Create(lumora::Device::Auto, status);
}

Converter::Converter(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}

Converter::~Converter() = default;

Status Converter::Convert(const ConstFrameView& in, const ImageView& rgb, const ImageView& hsi,
                          Report* report) {
  return Reported(report, [&]() -> Status {
    if (Status checked = CheckConversion(in, rgb, hsi); !checked.ok()) return checked;
    if (report != nullptr) report->chain = ChainUsed::Convert;
    return parts_->backend->Convert(in, rgb, hsi, report);
  });
}

DeviceInfo Converter::Device() {
  return OrNothing([this] { return Chosen(parts_->choice, parts_->backend->Device()); });
}

}  // namespace lumora
