// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/options/common_options.h"

#include <map>

namespace lumora::tools {

void AddPictures(Options& options, std::string* in, std::string* out) {
  options.Text("IN", Need::Required, in, "picture to read; - is standard input");
  options.Text("-o,--output", Need::Required, out,
               "picture to write, .jpg, .jpeg or .png; - is standard output, in IN's format");
}

void AddCompare(Options& options, std::string* compare) {
  options.Text("--compare", Need::Optional, compare,
               "also write a picture with before and after side by side");
}

void AddDevice(Options& options, Device* device) {
  std::map<std::string, Device> named;
  for (const Device one : {Device::Auto, Device::Gl, Device::Cpu}) named[Name(one)] = one;
  options.Choice("--device", device, named,
                 "what computes the pictures: gl, cpu, or auto (gl on a GPU, else cpu, unless\n"
                 "LUMORA_DEVICE names one)");
}

void AddForce(Options& options, bool* force) {
  options.Flag("--force", force,
               "also take an input that needs more than half of this machine's memory");
}

void AddReport(Options& options, bool* json) {
  options.Flag("--json", json, "print a report for machines on standard output");
}

}  // namespace lumora::tools
