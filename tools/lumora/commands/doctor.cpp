// SPDX-License-Identifier: Apache-2.0
// lumora doctor: what this machine offers, and a proof that it works.
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "tools/lumora/commands/bench_scene.h"
#include "tools/lumora/commands/command.h"
#include "tools/lumora/commands/report_json.h"
#include "tools/lumora/commands/retoucher.h"
#include "tools/lumora/commands/self_test.h"
#include "tools/lumora/drawing/drawing.h"
#include "tools/lumora/faces/face_finder.h"
#include "tools/lumora/options/common_options.h"
#include "tools/lumora/picture/picture.h"
#include "tools/lumora/support/driver_cache.h"
#include "tools/lumora/support/files.h"
#include "tools/lumora/support/module.h"
#include "tools/lumora/support/talk.h"

namespace lumora::tools {
namespace {

using Json = nlohmann::ordered_json;

constexpr BenchCase kTimed = {Chain::Preview, 1280, 720, {/*slim=*/50, /*whiten=*/40}};
constexpr double kTimedSeconds = 0.3;  // each device

enum class Finding { Ok, Failed, Absent };

struct Check {
  std::string name;
  Finding finding;
  std::string detail;
};

/// What a device did.
struct Trial {
  Device device;
  DeviceInfo info;
  SelfTest slimming, whitening;
  double frame_ms = 0;

  bool passed() const { return slimming.passed && whitening.passed; }
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

std::string Shown(double number, const char* form) {
  char text[32];
  std::snprintf(text, sizeof(text), form, number);
  return text;
}

class Doctor {
 public:
  Doctor(Device asked, bool json) : asked_(asked), json_(json) {}

  ExitCode Run() {
    if (asked_ != Device::Cpu) KeepDriverFromMissingItsCache();
    Attempt([this] { CheckChoice(); });
    const bool no_display = code_ == ExitCode::NoDisplay;
    Attempt([&] {
      if (asked_ != Device::Gl) Try(Device::Cpu);
      if (asked_ != Device::Cpu && !no_display) Try(Device::Gl);
      if (!trials_.empty()) Compare();
    });
    CheckModules();
    CheckClassifiers();
    const bool ok = std::none_of(checks_.begin(), checks_.end(), [](const Check& check) {
      return check.finding == Finding::Failed;
    });
    if (json_) PrintJson(ok);
    return ok || code_ != ExitCode::Done ? code_ : ExitCode::Failed;
  }

 private:
  /// Does it, or tells why it cannot be done; the first time decides how the command ends.
  void Attempt(const std::function<void()>& what) {
    try {
      what();
    } catch (const Failure& failure) {
      if (code_ == ExitCode::Done) code_ = failure.code();
      Tell(failure.code() == ExitCode::NoDisplay ? "display" : "engine", false, failure.what());
      Complain(failure.what());
    }
  }

  void Tell(const std::string& name, Finding finding, const std::string& detail) {
    checks_.push_back({name, finding, detail});
    if (json_) return;
    const char* const word = finding == Finding::Ok       ? "OK"
                             : finding == Finding::Failed ? "FAILED"
                                                          : "NONE";
    char line[64];
    std::snprintf(line, sizeof(line), "%-7s %-17s ", word, name.c_str());
    Print(line + detail);
  }

  void Tell(const std::string& name, bool ok, const std::string& detail) {
    Tell(name, ok ? Finding::Ok : Finding::Failed, detail);
  }

  /// What the other commands compute with. Throws Failure where they cannot.
  void CheckChoice() {
    choice_ = Retoucher(asked_).pipeline().Device();
    Tell("device", true, std::string(Name(choice_.device)) + ": " + choice_.reason);
  }

  /// Looks at a device. It may be missing where it is not the one that the commands take.
  void Try(Device device) {
    Trial trial{device, {}, {}, {}};
    try {
      Retoucher retoucher(device);
      trial.info = retoucher.pipeline().Device();
      device == Device::Gl ? CheckDriver(trial.info)
                           : Tell(Name(device), true, DeviceText(trial.info));
      trial.slimming = TestSlimming(retoucher);
      trial.whitening = TestWhitening(retoucher);
      trial.frame_ms = Measure(retoucher, kTimed, kTimedSeconds).median_ms;
    } catch (const Failure& failure) {
      if (failure.code() != ExitCode::NoDisplay || choice_.device == device) throw;
      Tell(Name(device), Finding::Absent, failure.what());
      if (device == Device::Gl) no_gl_ = failure.what();
      return;
    }
    Tell(Name(device) + std::string(" slimming"), trial.slimming.passed, trial.slimming.sentence);
    Tell(Name(device) + std::string(" whitening"), trial.whitening.passed,
         trial.whitening.sentence);
    if (device == Device::Gl) {
      if (!trial.passed() && trial.info.buffer_kind != BufferKind::Staged) CheckCopies();
      CheckCache(trial.info);  // after the first programs: keeping them makes the directory
    }
    trials_.push_back(std::move(trial));
  }

  void CheckDriver(const DeviceInfo& device) {
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

  /// How fast the devices are, and how far their pictures are apart.
  void Compare() {
    std::string speeds;
    for (const Trial& trial : trials_) {
      speeds += (speeds.empty() ? "" : ", ") + std::string(Name(trial.device)) + " " +
                Shown(trial.frame_ms, "%.2f") + " ms";
    }
    Tell("speed", true,
         speeds + " for a frame of " + std::to_string(kTimed.width) + " x " +
             std::to_string(kTimed.height) + ", slimmed and whitened");
    if (trials_.size() < 2) return;
    difference_ = std::max(LargestDifference(trials_[0].slimming, trials_[1].slimming),
                           LargestDifference(trials_[0].whitening, trials_[1].whitening));
    Tell("same picture", *difference_ <= kMostBetweenDevices,
         "largest difference between the devices " + std::to_string(*difference_) +
             "/255 (allowed: " + std::to_string(kMostBetweenDevices) + "/255)");
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

  // Whether it is the memory shared with the driver that spoils the tests: the library found it in
  // order on images of its own, or it would not be in use.
  void CheckCopies() {
    setenv("LUMORA_BUFFER", Name(BufferKind::Staged), 1);
    Retoucher retoucher(Device::Gl);
    const bool passed = TestSlimming(retoucher).passed && TestWhitening(retoucher).passed;
    Tell("copied buffers", passed,
         passed ? "the tests pass with LUMORA_BUFFER=staged; set it to work with this driver"
                : "the tests fail with LUMORA_BUFFER=staged as well");
  }

  void PrintJson(bool ok) const {
    Json checks = Json::array();
    for (const Check& check : checks_) {
      checks.push_back({{"name", check.name},
                        {"ok", check.finding != Finding::Failed},
                        {"detail", check.detail}});
    }
    Json frame_ms = {{"cpu", Json()}, {"gl", Json()}};
    for (const Trial& trial : trials_) frame_ms[Name(trial.device)] = trial.frame_ms;
    PrintReport({{"ok", ok},
                 {"device", DeviceJson(choice_.device)},
                 {"reason", choice_.reason},
                 {"no_gl", no_gl_.empty() ? Json() : Json(no_gl_)},
                 {"frame_ms", frame_ms},
                 {"largest_difference", difference_ ? Json(*difference_) : Json()},
                 {"checks", checks}});
  }

  Device asked_;
  bool json_;
  ExitCode code_ = ExitCode::Done;
  DeviceInfo choice_;
  std::string no_gl_;  ///< why there is none
  std::vector<Trial> trials_;
  std::optional<int> difference_;
  std::vector<Check> checks_;
};

struct DoctorOptions {
  Device device = Device::Auto;
  bool json = false;
};

}  // namespace

Action OfferDoctor(Options options) {
  auto chosen = std::make_shared<DoctorOptions>();
  AddDevice(options, &chosen->device);
  options.Flag("--json", &chosen->json, "print the findings for machines");
  options.Explain("Without --device both devices are tried.");
  return [chosen] { return Doctor(chosen->device, chosen->json).Run(); };
}

}  // namespace lumora::tools
