// lumora photo: one picture in, the slimmed picture out.
#include <unistd.h>

#include <chrono>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "tools/lumora/drawing/compare.h"
#include "tools/lumora/drawing/explain.h"
#include "tools/lumora/faces/face_finder.h"
#include "tools/lumora/faces/face_geometry.h"
#include "tools/lumora/faces/faces_json.h"
#include "tools/lumora/picture/metadata.h"
#include "tools/lumora/picture/picture.h"
#include "tools/lumora/support/command.h"
#include "tools/lumora/support/files.h"
#include "tools/lumora/support/slimmer.h"
#include "tools/lumora/support/talk.h"

namespace lumora::tools {
namespace {

using Json = nlohmann::ordered_json;

struct PhotoOptions {
  std::string in, out;
  int slim = kNaturalSlim;
  std::string faces, compare, explain;
  bool json = false;
  bool require_face = false;
};

double Now() {
  return std::chrono::duration<double, std::milli>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

/// Everything that can be known to be wrong before the picture is read.
void CheckOutputs(const PhotoOptions& options) {
  std::set<std::string> outputs;
  for (const std::string& path : {options.out, options.compare, options.explain}) {
    if (path.empty()) continue;
    if (!outputs.insert(path).second) {
      throw Failure(ExitCode::Usage, path + ": two results cannot have the same name");
    }
    if (path == kStandardStream) {
      if (options.json) throw Failure(ExitCode::Usage, "--json needs standard output for itself");
      if (isatty(STDOUT_FILENO) != 0) {
        throw Failure(ExitCode::Usage, "a picture cannot be shown on a terminal; redirect it");
      }
    } else {
      FormatOfName(path);
    }
  }
  if (options.in == kStandardStream && options.faces == kStandardStream) {
    throw Failure(ExitCode::Usage, "standard input cannot be both the picture and the faces");
  }
  for (const std::string& path : outputs) CheckWritable(path);
}

/// The format of a result; for standard output, that of the input.
FileFormat FormatFor(const std::string& path, FileFormat input) {
  return path == kStandardStream ? input : FormatOfName(path);
}

std::vector<FoundFace> FacesOf(const PhotoOptions& options, const Picture& picture) {
  if (options.faces.empty()) return FindFaces(picture.Bgr());
  const Bytes text = ReadWhole(options.faces);
  std::vector<FoundFace> faces;
  for (const Face& face :
       ParseFaces(std::string(text.begin(), text.end()), options.faces, picture.size())) {
    faces.push_back({face, FoundBy::File});
  }
  return faces;
}

Json PointJson(PointF point) {
  return {point.x, point.y};
}

Json FaceJson(const FoundFace& found, cv::Size frame) {
  const Face& face = found.face;
  const WarpCircle circle = SlimmingCircle(face, frame.width, frame.height);
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
          {"landmarks", landmarks}};
}

class Photo {
 public:
  explicit Photo(const PhotoOptions& options) : options_(options) {}

  ExitCode Run() {
    CheckOutputs(options_);
    const double start = Now();
    file_ = ReadWhole(options_.in);
    input_ = DecodePicture(file_, options_.in == kStandardStream ? "standard input" : options_.in);
    const double decoded = Now();
    found_ = FacesOf(options_, *input_.picture);
    const double searched = Now();
    if (found_.empty() && options_.require_face) {
      throw Failure(ExitCode::NoFace, options_.in + ": no face found");
    }
    if (found_.empty()) Note("no face found, the picture stays as it is");
    Process();
    const double processed = Now();
    WriteResults();
    const double written = Now();
    timings_ = {{"decode", decoded - start},       {"find_faces", searched - decoded},
                {"upload", report_.upload_ms},     {"engine", report_.engine_ms},
                {"download", report_.download_ms}, {"process", processed - searched},
                {"write", written - processed},    {"total", written - start}};
    Tell();
    return ExitCode::Done;
  }

 private:
  void Note(const std::string& note) { input_.notes.push_back(note); }

  std::vector<Face> Faces() const {
    std::vector<Face> faces;
    for (const FoundFace& found : found_) faces.push_back(found.face);
    return faces;
  }

  void Process() {
    const bool compares = !options_.compare.empty() || !options_.explain.empty();
    if (compares) before_ = input_.picture->Bgr().clone();
    if (found_.empty() || options_.slim == 0) return;  // exactly off: no engine is started
    const Frame420 frame = input_.picture->Frame();
    const Frame420 slimmed = Slimmer().Slim(frame, Faces(), options_.slim, &report_);
    input_.picture->Merge(frame, slimmed);
    processed_ = true;
  }

  Bytes Result() {
    const FileFormat format = FormatFor(options_.out, input_.format);
    const bool as_it_was = !processed_ && format == input_.format && input_.orientation == 1;
    if (as_it_was) return file_;
    Bytes result = input_.picture->Encode(format);
    const std::string problem = CopyMetadata(file_, input_.picture->size(), result);
    if (!problem.empty()) Note(problem);
    return result;
  }

  /// All results are complete in memory before the first one is written.
  void WriteResults() {
    std::vector<std::pair<std::string, Bytes>> results = {{options_.out, Result()}};
    if (!options_.compare.empty()) {
      const cv::Mat sheet = CompareSheet(before_, input_.picture->Bgr());
      results.emplace_back(options_.compare,
                           EncodeNew(sheet, FormatFor(options_.compare, input_.format)));
    }
    if (!options_.explain.empty()) {
      const cv::Mat sheet = ExplainSheet(before_, Faces());
      results.emplace_back(options_.explain,
                           EncodeNew(sheet, FormatFor(options_.explain, input_.format)));
    }
    for (const auto& [path, content] : results) WriteWhole(path, content);
  }

  void Tell() const {
    for (const std::string& note : input_.notes) Complain(options_.in + ": " + note);
    if (!options_.json) return;
    const cv::Size size = input_.picture->size();
    Json faces = Json::array();
    for (const FoundFace& found : found_) faces.push_back(FaceJson(found, size));
    PrintReport({{"input", options_.in},
                 {"output", options_.out},
                 {"width", size.width},
                 {"height", size.height},
                 {"slim", options_.slim},
                 {"faces", faces},
                 {"chain", report_.chain.empty() ? "none" : report_.chain},
                 {"buffer", report_.buffer_kind},
                 {"timings_ms", timings_},
                 {"notes", input_.notes}});
  }

  const PhotoOptions& options_;
  Bytes file_;
  LoadedPicture input_;
  std::vector<FoundFace> found_;
  cv::Mat before_;
  bool processed_ = false;
  Report report_;
  Json timings_;
};

}  // namespace

void AddPhoto(CLI::App& program, Action* action) {
  CLI::App* command = program.add_subcommand("photo", "Slim the faces in a JPEG or PNG picture");
  auto options = std::make_shared<PhotoOptions>();
  command->add_option("IN", options->in, "picture to read; - is standard input")->required();
  command
      ->add_option("-o,--output", options->out,
                   "picture to write, .jpg, .jpeg or .png; - is standard output, in IN's format")
      ->required();
  command
      ->add_option("--slim", options->slim,
                   "how much cheeks and chin are narrowed, 0 (exactly off) to 100")
      ->check(CLI::Range(0, 100))
      ->capture_default_str();
  command->add_option("--faces", options->faces,
                      "FACES.json: take the faces from there instead of looking for them");
  command->add_option("--compare", options->compare,
                      "also write a picture with before and after side by side");
  command->add_option("--explain", options->explain,
                      "also write a picture that shows what was found and what will move");
  command->add_flag("--json", options->json, "print a report for machines on standard output");
  command->add_flag("--require-face", options->require_face,
                    "fail with exit code 5, and write nothing, when no face is found");
  command->footer(std::string(kFacesFormat) + "\n\n" + kExitCodes);
  command->callback([options, action] { *action = [options] { return Photo(*options).Run(); }; });
}

}  // namespace lumora::tools
