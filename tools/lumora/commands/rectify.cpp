// SPDX-License-Identifier: Apache-2.0
// lumora rectify: one picture in, the picture with straightened lines out.
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "tools/lumora/commands/command.h"
#include "tools/lumora/commands/report_json.h"
#include "tools/lumora/commands/retoucher.h"
#include "tools/lumora/drawing/drawing.h"
#include "tools/lumora/options/common_options.h"
#include "tools/lumora/picture/picture_edit.h"
#include "tools/lumora/support/clock.h"
#include "tools/lumora/support/memory.h"

namespace lumora::tools {
namespace {

struct RectifyOptions {
  std::string in, out, compare;
  std::optional<int> degree, camera;
  Device device = Device::Auto;
  std::vector<float> radial;
  bool json = false;
  Appetite appetite{kBytesForWhole};
};

ExitCode Rectify(const RectifyOptions& options) {
  CheckPictureOutputs({options.in}, {options.out, options.compare}, options.json);
  if (!options.compare.empty()) Draw();  // what cannot be drawn is told before the work is done
  const double start = Now();
  PictureEdit edit(options.in, options.appetite);
  const Image before = options.compare.empty() ? Image() : edit.picture().Bgr();
  const Frame420 frame = edit.picture().Frame();
  Report report;
  Retoucher retoucher(options.device);
  edit.Merge(frame, retoucher.Run(frame, [&](Pipeline& pipeline, const ConstFrameView& in,
                                             const FrameView& out) {
    if (options.degree) return pipeline.Rectify(in, out, *options.degree, &report);
    if (options.camera) {
      const Camera camera = *options.camera == 0 ? Camera::First : Camera::Second;
      return pipeline.RectifyRadial(in, out, camera, &report);
    }
    const std::vector<float>& k = options.radial;
    return pipeline.RectifyRadial(in, out, LensCoefficients{k[0], k[1], k[2], k[3]}, &report);
  }));
  std::vector<std::pair<std::string, Bytes>> results = {{options.out, edit.Encode(options.out)}};
  if (!options.compare.empty()) {
    results.emplace_back(options.compare,
                         EncodeNew(Draw().CompareSheet(before, edit.picture().Bgr()),
                                   edit.FormatFor(options.compare)));
  }
  for (const auto& [path, content] : results) WriteWhole(path, content);
  edit.TellNotes();
  if (options.json) {
    PrintReport({{"input", options.in},
                 {"output", options.out},
                 {"width", edit.picture().size().width},
                 {"height", edit.picture().size().height},
                 {"chain", Name(report.chain)},
                 {"device", DeviceJson(retoucher.pipeline().Device().device)},
                 {"buffer", Name(report.buffer_kind)},
                 {"timings_ms",
                  {{"upload", report.upload_ms},
                   {"engine", report.engine_ms},
                   {"download", report.download_ms},
                   {"total", Now() - start}}},
                 {"peak_memory_mib", PeakMemory()},
                 {"notes", edit.notes()}});
  }
  return ExitCode::Done;
}

}  // namespace

Action OfferRectify(Options options) {
  auto chosen = std::make_shared<RectifyOptions>();
  AddPictures(options, &chosen->in, &chosen->out);
  Options how = options.ExactlyOneOf();
  how.Whole("--degree", &chosen->degree, -100, 100,
            "lines that run together; above 0 widens the left side, below 0 the right, by so\n"
            "many hundredths of the picture at both ends");
  how.DecimalList("--radial", &chosen->radial, 4, kLargestCoefficient, "k0,k1,k2,k3",
                  "bent lines; a point is taken from k0 + k1 s + k2 s^2 + k3 s^3 times its\n"
                  "distance from the middle, s its square, 1 in the corners");
  how.Whole("--camera", &chosen->camera, 0, 1,
            "bent lines, by the parameter file of this device's camera (below\n"
            "LUMORA_SYSTEM_ROOT), or usual coefficients where there is none");
  AddCompare(options, &chosen->compare);
  AddDevice(options, &chosen->device);
  AddForce(options, &chosen->appetite.force);
  AddReport(options, &chosen->json);
  return [chosen] { return Rectify(*chosen); };
}

}  // namespace lumora::tools
