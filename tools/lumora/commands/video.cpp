// SPDX-License-Identifier: Apache-2.0
// lumora video: a Y4M clip in, the retouched clip out, one frame after another.
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tools/lumora/commands/command.h"
#include "tools/lumora/commands/report_json.h"
#include "tools/lumora/commands/retoucher.h"
#include "tools/lumora/faces/faces_json.h"
#include "tools/lumora/options/common_options.h"
#include "tools/lumora/options/look_options.h"
#include "tools/lumora/picture/appetite.h"
#include "tools/lumora/support/clock.h"
#include "tools/lumora/support/memory.h"
#include "tools/lumora/support/places.h"
#include "tools/lumora/support/talk.h"
#include "tools/lumora/video/containers.h"
#include "tools/lumora/video/face_source.h"
#include "tools/lumora/video/frames_ahead.h"
#include "tools/lumora/video/progress.h"
#include "tools/lumora/video/sample_range.h"
#include "tools/lumora/video/y4m.h"

namespace lumora::tools {
namespace {

using Json = nlohmann::ordered_json;

struct VideoOptions {
  std::string in, out, faces;
  LookOptions look;
  Device device = Device::Auto;
  int detect_every = 5;
  std::string range = "auto";
  bool json = false;
  bool require_face = false;
  Appetite appetite{kBytesForWhole};
};

void CheckNames(const VideoOptions& options) {
  if (options.in == kStandardStream && options.faces == kStandardStream) {
    throw Failure(ExitCode::Usage, "standard input cannot be both the clip and the faces");
  }
  if (options.out == kStandardStream) {
    if (options.json) throw Failure(ExitCode::Usage, "--json needs standard output for itself");
    if (isatty(STDOUT_FILENO) != 0) {
      throw Failure(ExitCode::Usage, "a clip cannot be shown on a terminal; redirect it");
    }
  }
  std::vector<std::string> results = {options.out};
  if (options.json) results.emplace_back(kStandardStream);
  CheckPlacesDiffer({options.in, options.faces}, results);
}

/// What to type instead, where one of the clips is in a container.
std::string Remedy(const VideoOptions& options, const Options& line, bool in_is_container) {
  // A clip that goes on to ffmpeg takes standard output, where the report would be.
  const std::vector<std::string> left_out = IsContainerName(options.out)
                                                ? std::vector<std::string>{"--output", "--json"}
                                                : std::vector<std::string>{"--output"};
  return FfmpegLine(program_invocation_name, options.in, in_is_container, options.out,
                    line.Given(left_out));
}

void CheckOutputIsY4m(const VideoOptions& options, const Options& line) {
  if (!IsContainerName(options.out)) return;
  const bool in_is_container = IsContainer(options.in);
  std::string sentence =
      options.out + ": lumora writes Y4M clips; ffmpeg makes other files of them";
  if (!in_is_container) {
    sentence +=
        " (for the sound of a file, say a.mp4, put -i a.mp4 -map 0:v -map '1:a?' behind -i -)";
  }
  throw Failure(ExitCode::Usage, sentence + ":", Remedy(options, line, in_is_container));
}

/// The header of a clip whose frames are not too large.
const Y4mHeader& Accepted(const Y4mReader& reader, const Appetite& appetite) {
  appetite.Check(reader.header().size, reader.name());
  return reader.header();
}

class Video {
 public:
  explicit Video(const VideoOptions& options)
      : options_(options),
        look_(options.look.Chosen()),
        reader_(options.in, &stop_),
        output_(Accepted(reader_, options.appetite)),
        stretched_(reader_.header()) {}

  ExitCode Run() {
    if (!IsOff(look_)) retoucher_ = std::make_unique<Retoucher>(options_.device);
    const std::unique_ptr<FaceSource> faces = Faces();
    ChooseRange();
    Y4mWriter writer(options_.out, reader_.header());
    const double start = Now();
    {
      Progress progress(reader_.FrameCount());
      FramesAhead ahead(reader_, *faces, stop_);
      while (FramesAhead::Frame* const frame = ahead.Next()) {
        writer.Write(frame->line, Process(frame->samples, frame->faces));
        progress.Show(++frames_);
      }
      if (!FaceIsMissing()) writer.Finish();
    }
    for (const std::string& remark : options_.look.Remarks()) Note(remark);
    for (const std::string& remark : faces->Remarks()) Note(remark);
    left_out_ = faces->left_out();
    if (needs_faces_ && frames_with_faces_ == 0 && !FaceIsMissing()) {
      Note(reader_.name() + ": no face found, the clip stays as it is");
    }
    for (const std::string& note : notes_) Complain(note);
    if (FaceIsMissing()) throw Failure(ExitCode::NoFace, reader_.name() + ": no face found");
    if (options_.json) Tell((Now() - start) / 1000);
    return ExitCode::Done;
  }

 private:
  void Note(const std::string& note) { notes_.push_back(note); }

  std::unique_ptr<FaceSource> Faces() {
    if (!options_.faces.empty()) return ListedFaces(options_.faces, &stop_);
    needs_faces_ = !IsOff(look_) || options_.require_face;
    if (!needs_faces_) return NoFaces();
    // The report counts them all.
    return IsOff(look_) && !options_.json ? FirstDetectedFaces(options_.detect_every)
                                          : DetectedFaces(options_.detect_every);
  }

  /// Whether a face was required and the frames so far have none.
  bool FaceIsMissing() const { return options_.require_face && frames_with_faces_ == 0; }

  /// Slimming moves samples and does not care what they mean; whitening does.
  void ChooseRange() {
    if (!Whitens(look_)) return;
    if (options_.range == "auto") {
      limited_ = !reader_.header().full_range.value_or(false);
      if (!reader_.header().full_range) {
        Note(reader_.name() + ": does not say its colour range; taken as limited (see --range)");
      }
    } else {
      limited_ = options_.range == "limited";
    }
  }

  /// The frame that goes into the file. One without faces is not even copied.
  const ClipFrame& Process(ClipFrame& input, const std::vector<Face>& faces) {
    if (faces.empty()) return input;
    ++frames_with_faces_;
    if (retoucher_ == nullptr) return input;
    if (!limited_) {
      Engage(input, output_, faces);
      return output_;
    }
    StretchToFull(input, stretched_);
    Engage(stretched_, output_, faces);
    MergeFromFull(stretched_, output_, input);
    return input;
  }

  void Engage(const ClipFrame& in, ClipFrame& out, const std::vector<Face>& faces) {
    Report report;
    ThrowUnlessOk(retoucher_->pipeline().Process(
        {in.View(), out.MutableView(), faces, look_, Chain::Preview}, &report));
    engine_ms_ += report.engine_ms;
    faces_ += report.faces;
    if (report.faces > 0) buffer_kind_ = report.buffer_kind;
  }

  /// Auto where nothing had to be computed.
  Device Used() const {
    return retoucher_ == nullptr ? Device::Auto : retoucher_->pipeline().Device().device;
  }

  void Tell(double seconds) const {
    const Size size = reader_.header().size;
    const auto count = static_cast<double>(frames_);
    PrintReport({{"input", options_.in},
                 {"output", options_.out},
                 {"width", size.width},
                 {"height", size.height},
                 {"look", LookJson(look_)},
                 {"range", limited_ ? "limited" : "full"},
                 {"frames", frames_},
                 {"frames_with_faces", frames_with_faces_},
                 {"faces", faces_},
                 {"faces_left_out", left_out_},
                 {"face_found", needs_faces_ ? Json(frames_with_faces_ > 0) : Json()},
                 {"chain", faces_ > 0 ? "preview" : "none"},
                 {"device", DeviceJson(Used())},
                 {"buffer", Name(buffer_kind_)},
                 {"seconds", seconds},
                 {"frames_per_second", seconds > 0 ? count / seconds : 0},
                 {"engine_ms_per_frame", frames_ > 0 ? engine_ms_ / count : 0},
                 {"peak_memory_mib", PeakMemory()},
                 {"notes", notes_}});
  }

  const VideoOptions& options_;
  Look look_;
  ReadStop stop_;
  Y4mReader reader_;
  ClipFrame output_;
  ClipFrame stretched_;                   // the input in full range, for clips of limited range
  std::unique_ptr<Retoucher> retoucher_;  // none where the look is off
  bool needs_faces_ = true;               // else none were looked for
  bool limited_ = false;
  std::vector<std::string> notes_;
  int64_t frames_ = 0, frames_with_faces_ = 0, faces_ = 0, left_out_ = 0;
  double engine_ms_ = 0;
  BufferKind buffer_kind_ = BufferKind::None;
};

ExitCode Retouch(const VideoOptions& options, const Options& line) {
  CheckNames(options);
  CheckOutputIsY4m(options, line);
  CheckWritable(options.out);
  try {
    return Video(options).Run();
  } catch (const ContainerFailure& failure) {
    throw Failure(failure.code(),
                  std::string(failure.what()) + "; ffmpeg reads it:", Remedy(options, line, true));
  }
}

constexpr char kVideoFormats[] =
    "Clips are Y4M: 8-bit 4:2:0 of any chroma position, or mono, which stays mono. Their headers\n"
    "are handed on as they are. From and to other formats, with their sound:\n";
constexpr char kFacesLines[] =
    "FILE.jsonl has one line a frame, each {\"faces\": [...]} as for photo (lumora photo --help);\n"
    "an empty line is a frame without faces.";

}  // namespace

Action OfferVideo(Options options) {
  auto chosen = std::make_shared<VideoOptions>();
  options.Text("IN", Need::Required, &chosen->in, "clip to read; - is standard input");
  options.Text("-o,--output", Need::Required, &chosen->out, "clip to write; - is standard output");
  chosen->look.AddTo(options);
  options.Text("--faces", Need::Optional, &chosen->faces,
               "FILE.jsonl: take the faces from there instead of looking for them");
  options.Whole("--detect-every", &chosen->detect_every, 1, 1000,
                "look for faces in every n-th frame and follow them in between");
  options.Choice("--range", Need::Optional, &chosen->range, {"auto", "full", "limited"},
                 "range of the samples: full, limited, or auto (as the clip says, else limited)");
  AddDevice(options, &chosen->device);
  AddForce(options, &chosen->appetite.force);
  AddReport(options, &chosen->json);
  options.Flag("--require-face", &chosen->require_face,
               "fail with exit code 5, and write no file, when no frame has a face; what\n"
               "went to standard output by then is the clip as it was");
  options.Explain(kVideoFormats + ("  " + FfmpegLine("lumora", "clip.mp4", true, "out.mp4", {})) +
                  "\n\n" + kFacesLines);
  return [chosen, options] { return Retouch(*chosen, options); };
}

}  // namespace lumora::tools
