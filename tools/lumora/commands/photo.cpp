// SPDX-License-Identifier: Apache-2.0
// lumora photo: one picture in, the retouched picture out.
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tools/lumora/commands/command.h"
#include "tools/lumora/commands/report_json.h"
#include "tools/lumora/commands/retoucher.h"
#include "tools/lumora/drawing/drawing.h"
#include "tools/lumora/faces/face_finder.h"
#include "tools/lumora/faces/face_geometry.h"
#include "tools/lumora/faces/faces_json.h"
#include "tools/lumora/options/common_options.h"
#include "tools/lumora/options/look_options.h"
#include "tools/lumora/picture/picture_edit.h"
#include "tools/lumora/support/clock.h"
#include "tools/lumora/support/files.h"
#include "tools/lumora/support/memory.h"

namespace lumora::tools {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kMiddleTone = 128;  // on the same side of it as the mean: too dark, or too bright

struct PhotoOptions {
  std::string in, out;
  LookOptions look;
  Device device = Device::Auto;
  Chain chain = Chain::Auto;
  std::string faces, compare, explain;
  bool json = false;
  bool require_face = false;
  Appetite appetite;
};

void CheckNames(const PhotoOptions& options) {
  if (options.in == kStandardStream && options.faces == kStandardStream) {
    throw Failure(ExitCode::Usage, "standard input cannot be both the picture and the faces");
  }
  CheckPictureOutputs({options.in, options.faces}, {options.out, options.compare, options.explain},
                      options.json);
}

/// Whether a sheet is to be drawn.
bool Draws(const PhotoOptions& options) {
  return !options.compare.empty() || !options.explain.empty();
}

/// Whether anything depends on the faces; otherwise none are looked for.
bool NeedsFaces(const PhotoOptions& options, const Look& look) {
  return !IsOff(look) || !options.explain.empty() || options.json || options.require_face;
}

Appetite AppetiteOf(const PhotoOptions& options) {
  Appetite appetite = options.appetite;
  if (options.chain == Chain::Preview) appetite.bytes_a_pixel = kBytesForWhole;
  return appetite;
}

std::vector<FoundFace> FacesOf(const PhotoOptions& options, PictureEdit& edit) {
  const Picture& picture = edit.picture();
  if (options.faces.empty()) return FaceFinder().Find(picture.Bgr());
  const Bytes text = ReadWhole(options.faces, kLargestText);
  std::vector<std::string> doubts;
  std::vector<FoundFace> faces;
  for (const Face& face : ParseFaces(std::string(text.begin(), text.end()), options.faces,
                                     picture.size(), nullptr, &doubts)) {
    faces.push_back({face, FoundBy::File});
  }
  for (const std::string& doubt : doubts) edit.Note(doubt);
  return faces;
}

Json PointJson(PointF point) {
  return {point.x, point.y};
}

Json FaceJson(const FoundFace& found, Size frame) {
  const Face& face = found.face;
  const WarpCircle circle = SlimmingCircle(face, frame.width, frame.height);
  Json ellipses = Json::array();
  for (const Ellipse& ellipse : WhiteningEllipses(face)) {
    ellipses.push_back({{"centre", PointJson(ellipse.centre)},
                        {"half_axes", {ellipse.half_along, ellipse.half_across}},
                        {"angle", ellipse.angle_degrees}});
  }
  Json landmarks = Json::object();
  for (const NamedPoint& mark : NamedLandmarks(face.landmarks)) {
    landmarks[mark.name] = PointJson(mark.at);
  }
  return {{"found_by", NameOf(found.found_by)},
          {"box", {face.box.x, face.box.y, face.box.width, face.box.height}},
          {"roll", face.roll_degrees},
          {"circle",
           {{"centre", PointJson(circle.centre)},
            {"radius", circle.radius},
            {"towards", PointJson(circle.towards)}}},
          {"ellipses", ellipses},
          {"landmarks", landmarks}};
}

class Photo {
 public:
  explicit Photo(const PhotoOptions& options) : options_(options), look_(options.look.Chosen()) {}

  ExitCode Run() {
    CheckNames(options_);
    if (Draws(options_)) Draw();  // what cannot be drawn is told before the work is done
    const double start = Now();
    edit_ = std::make_unique<PictureEdit>(options_.in, AppetiteOf(options_));
    const double decoded = Now();
    const bool needs_faces = NeedsFaces(options_, look_) || !options_.faces.empty();
    if (needs_faces) found_ = FacesOf(options_, *edit_);
    const double searched = Now();
    if (found_.empty() && options_.require_face) {
      throw Failure(ExitCode::NoFace, options_.in + ": no face found");
    }
    for (const std::string& remark : options_.look.Remarks()) edit_->Note(remark);
    if (found_.empty() && needs_faces) edit_->Note("no face found, the picture stays as it is");
    Process();
    const double processed = Now();
    WriteResults();
    const double written = Now();
    timings_ = {{"decode", decoded - start},       {"find_faces", searched - decoded},
                {"upload", report_.upload_ms},     {"whiten", report_.whiten_ms},
                {"slim", report_.slim_ms},         {"engine", report_.engine_ms},
                {"download", report_.download_ms}, {"process", processed - searched},
                {"write", written - processed},    {"total", written - start}};
    edit_->TellNotes();
    if (options_.json) Tell();
    return ExitCode::Done;
  }

 private:
  std::vector<Face> Faces() const {
    std::vector<Face> faces;
    for (const FoundFace& found : found_) faces.push_back(found.face);
    return faces;
  }

  void Process() {
    if (Draws(options_)) before_ = edit_->picture().Bgr();
    if (found_.empty() || IsOff(look_)) return;  // exactly off: nothing is started
    const Frame420 frame = edit_->picture().Frame();
    Retoucher retoucher(options_.device);
    edit_->Merge(frame, retoucher.Process(frame, Faces(), look_, &report_, options_.chain));
    used_ = retoucher.pipeline().Device().device;
    for (const FaceTone& tone : report_.tones) NoteTone(tone);
  }

  /// Faces that whitening leaves alone are told: nothing is to be silently missing.
  void NoteTone(const FaceTone& tone) {
    const std::string face = "face " + std::to_string(tone.face + 1);
    const bool wants_intensity = look_.whiten > 0 && look_.effect != Effect::Saturation;
    const bool wants_saturation = look_.saturate > 0 && look_.effect != Effect::Intensity;
    if (look_.effect == Effect::Mask) return;
    if (wants_intensity && !tone.intensity_shifted) {
      edit_->Note(face + " is too " + (tone.mean_intensity < kMiddleTone ? "dark" : "bright") +
                  " to be whitened");
    }
    if (wants_saturation && !tone.saturation_shifted) {
      edit_->Note(face + " has too little colour to be made richer");
    }
  }

  /// All results are complete in memory before the first one is written.
  void WriteResults() {
    std::vector<std::pair<std::string, Bytes>> results = {
        {options_.out, edit_->Encode(options_.out)}};
    const auto add = [&](const std::string& path, const Image& sheet) {
      results.emplace_back(path, EncodeNew(sheet, edit_->FormatFor(path)));
    };
    if (!options_.compare.empty()) {
      add(options_.compare, Draw().CompareSheet(before_, edit_->picture().Bgr()));
    }
    if (!options_.explain.empty()) {
      add(options_.explain, Draw().ExplainSheet(before_, Faces(), report_.blocks));
    }
    for (const auto& [path, content] : results) WriteWhole(path, content);
  }

  void Tell() const {
    const Size size = edit_->picture().size();
    Json faces = Json::array();
    for (const FoundFace& found : found_) faces.push_back(FaceJson(found, size));
    PrintReport(
        {{"input", options_.in},
         {"output", options_.out},
         {"width", size.width},
         {"height", size.height},
         {"look", LookJson(look_)},
         {"faces", faces},
         {"tones", TonesJson(report_.tones)},
         {"chain", Name(report_.chain == ChainUsed::NoCall ? ChainUsed::None : report_.chain)},
         {"device", DeviceJson(used_)},
         {"buffer", Name(report_.buffer_kind)},
         {"blocks", BlocksJson(report_.blocks)},
         {"timings_ms", timings_},
         {"peak_memory_mib", PeakMemory()},
         {"notes", edit_->notes()}});
  }

  const PhotoOptions& options_;
  Look look_;
  std::unique_ptr<PictureEdit> edit_;
  std::vector<FoundFace> found_;
  Image before_;
  Device used_ = Device::Auto;  // nothing had to be computed
  Report report_;
  Json timings_;
};

}  // namespace

Action OfferPhoto(Options options) {
  auto chosen = std::make_shared<PhotoOptions>();
  AddPictures(options, &chosen->in, &chosen->out);
  chosen->look.AddTo(options);
  AddChain(options, &chosen->chain);
  AddDevice(options, &chosen->device);
  options.Text("--faces", Need::Optional, &chosen->faces,
               "FACES.json: take the faces from there instead of looking for them");
  AddCompare(options, &chosen->compare);
  options.Text("--explain", Need::Optional, &chosen->explain,
               "also write a picture that shows what was found, where pixels move and brighten,\n"
               "and the blocks that were drawn");
  AddForce(options, &chosen->appetite.force);
  AddReport(options, &chosen->json);
  options.Flag("--require-face", &chosen->require_face,
               "fail with exit code 5, and write nothing, when no face is found");
  options.Explain(kFacesFormat);
  return [chosen] { return Photo(*chosen).Run(); };
}

}  // namespace lumora::tools
