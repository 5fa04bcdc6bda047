// SPDX-License-Identifier: Apache-2.0
// An application of its own, which tells what it gets: probe <auto|gl|cpu> <pipeline|converter>
#include <cstdio>
#include <fstream>
#include <string>

#include "lumora/pipeline/converter.h"
#include "lumora/pipeline/pipeline.h"

namespace {

/// Whether a library is part of this process.
bool Has(const std::string& library) {
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    if (line.find('/' + library) != std::string::npos) return true;
  }
  return false;
}

template <typename Owner>
int Tell(lumora::Device device) {
  lumora::Status status;
  const auto owner = Owner::Create({device}, &status);
  const lumora::DeviceInfo info = owner ? owner->Device() : lumora::DeviceInfo{};
  std::printf("%d|%s|%s|%s|%s%s", static_cast<int>(status.code), status.message.c_str(),
              Name(info.device), info.reason.c_str(), Has("libLumora.so") ? "engine " : "",
              Has("libEGL") ? "EGL" : "");
  return 0;
}

}  // namespace

int main(int count, char** words) {
  if (count < 3) return 2;
  const auto device = lumora::FindDevice(words[1]);
  if (!device.has_value()) return 2;
  return std::string(words[2]) == "converter" ? Tell<lumora::Converter>(*device)
                                              : Tell<lumora::Pipeline>(*device);
}
