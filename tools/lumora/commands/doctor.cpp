// SPDX-License-Identifier: Apache-2.0
// lumora doctor: what this machine offers, and a proof that it works.
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "tools/lumora/commands/command.h"
#include "tools/lumora/commands/report_json.h"
#include "tools/lumora/commands/retoucher.h"
#include "tools/lumora/commands/self_test.h"
#include "tools/lumora/drawing/drawing.h"
#include "tools/lumora/faces/face_finder.h"
#include "tools/lumora/picture/picture.h"
#include "tools/lumora/support/files.h"
#include "tools/lumora/support/module.h"
#include "tools/lumora/support/talk.h"

namespace lumora::tools {
namespace {

struct Check {
  std::string name;
  bool ok;
  std::string detail;
};

/// Why the library leaves a directory alone, as the end of a sentence; empty where it does not.
std::string ReasonNotToTrust(const std::string& directory) {
  struct stat status = {};
  if (stat(directory.c_str(), &status) != 0) return {};  // not made yet
  if (status.st_uid != geteuid() && status.st_uid != 0) {
    return " is not used: it belongs to another user";
  }
  if ((status.st_mode & (S_IWGRP | S_IWOTH)) != 0) {
    return " is not used: others may write it (chmod go-w makes it yours)";
  }
  return {};
}

class Doctor {
 public:
  explicit Doctor(bool json) : json_(json) {}

  ExitCode Run() {
    ExitCode code = ExitCode::Done;
    try {
      std::optional<Retoucher> retoucher(std::in_place);
      const DeviceInfo device = retoucher->pipeline().Device();
      CheckDevice(device);
      CheckModules();
      CheckClassifiers();
      const SelfTest slimming = TestSlimming(*retoucher);
      const SelfTest whitening = TestWhitening(*retoucher);
      CheckRender("test slimming", slimming);
      CheckRender("test whitening", whitening);
      retoucher.reset();
      if (!(slimming.passed && whitening.passed) && device.buffer_kind != BufferKind::Staged)
        CheckCopies();
      CheckCache(device);  // last: the first programs that are kept make the directory
    } catch (const Failure& failure) {
      code = failure.code();
      Tell(code == ExitCode::NoDisplay ? "display" : "engine", false, failure.what());
      Complain(failure.what());
    }
    bool ok = true;
    for (const Check& check : checks_) ok = ok && check.ok;
    if (json_) PrintJson(ok);
    return ok || code != ExitCode::Done ? code : ExitCode::Failed;
  }

 private:
  void Tell(const std::string& name, bool ok, const std::string& detail) {
    checks_.push_back({name, ok, detail});
    if (json_) return;
    char line[64];
    std::snprintf(line, sizeof(line), "%-7s %-17s ", ok ? "OK" : "FAILED", name.c_str());
    Print(line + detail);
  }

  void CheckDevice(const DeviceInfo& device) {
    Tell("display", true, Name(device.display));
    Tell("driver", true, device.vendor + ", " + device.renderer + ", " + device.version);
    Tell("buffers", true, Name(device.buffer_kind));
    Tell("largest texture", device.max_texture_size >= kSmallestSide,
         std::to_string(device.max_texture_size) + " pixels");
    Tell("program binaries", true,
         device.program_binaries ? "offered, programs are kept"
                                 : "not offered, programs are compiled at every start");
  }

  void CheckCache(const DeviceInfo& device) {
    if (!device.program_binaries) {
      Tell("cache directory", true, device.cache_directory + " (not needed)");
      return;
    }
    try {
      CheckWritable(device.cache_directory + "/doctor");
      const std::string reason = ReasonNotToTrust(device.cache_directory);
      Tell("cache directory", reason.empty(), device.cache_directory + reason);
    } catch (const Failure& failure) {
      Tell("cache directory", false, failure.what());
    }
  }

  void CheckModules() {
    CheckModule("face finder", kFaceFinderModule, LoadFaceFinder);
    CheckModule("drawing", kDrawingModule, [] { Draw(); });
  }

  void CheckModule(const char* name, const Module& module, const std::function<void()>& load) {
    try {
      load();
      Tell(name, true, ModulePlace(module));
    } catch (const Failure& failure) {
      Tell(name, false, failure.what());
    }
  }

  void CheckClassifiers() {
    const std::string folder = CascadeFolder();
    Tell("face classifiers", !folder.empty(),
         folder.empty() ? "not found; install the package opencv-data" : folder);
  }

  void CheckRender(const std::string& name, const SelfTest& test) {
    Tell(name, test.passed, test.sentence);
  }

  // Whether it is the memory shared with the driver that spoils the tests: the library found it in
  // order on images of its own, or it would not be in use.
  void CheckCopies() {
    setenv("LUMORA_BUFFER", Name(BufferKind::Staged), 1);
    Retoucher retoucher;
    const bool passed = TestSlimming(retoucher).passed && TestWhitening(retoucher).passed;
    Tell("copied buffers", passed,
         passed ? "the tests pass with LUMORA_BUFFER=staged; set it to work with this driver"
                : "the tests fail with LUMORA_BUFFER=staged as well");
  }

  void PrintJson(bool ok) const {
    nlohmann::ordered_json checks = nlohmann::ordered_json::array();
    for (const Check& check : checks_) {
      checks.push_back({{"name", check.name}, {"ok", check.ok}, {"detail", check.detail}});
    }
    PrintReport({{"ok", ok}, {"checks", checks}});
  }

  bool json_;
  std::vector<Check> checks_;
};

}  // namespace

Action OfferDoctor(Options options) {
  auto json = std::make_shared<bool>(false);
  options.Flag("--json", json.get(), "print the findings for machines");
  return [json] { return Doctor(*json).Run(); };
}

}  // namespace lumora::tools
