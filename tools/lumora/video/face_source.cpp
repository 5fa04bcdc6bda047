// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/video/face_source.h"

#include <optional>

#include "lumora/pipeline/face_tracker.h"
#include "tools/lumora/faces/face_finder.h"
#include "tools/lumora/faces/faces_json.h"
#include "tools/lumora/support/failure.h"
#include "tools/lumora/support/line_reader.h"

namespace lumora::tools {
namespace {

class FacesByDetection final : public FaceSource {
 public:
  FacesByDetection(int every, bool first_only) : every_(every), first_only_(first_only) {}

  std::vector<Face> Next(const PixelView& luma) override {
    if (first_only_ && found_) return {};
    const bool looks = frame_++ % every_ == 0;
    if (!looks) return tracker_.Skipped();
    std::vector<Face> faces;
    for (const FoundFace& found : finder_.Find(luma)) faces.push_back(found.face);
    found_ = found_ || !faces.empty();
    return tracker_.Detected(faces);
  }

  int search_every() const override { return every_; }

 private:
  int every_;
  bool first_only_, found_ = false;
  int64_t frame_ = 0;
  FaceFinder finder_;
  FaceTracker tracker_;
};

class FacesOfList final : public FaceSource {
 public:
  FacesOfList(const std::string& path, const ReadStop* stop) : path_(path), lines_(path, stop) {}

  std::vector<Face> Next(const PixelView& luma) override {
    const std::optional<std::string> line = lines_.Next();
    if (!line) {
      throw Failure(ExitCode::Unreadable, path_ + ": ends after line " + std::to_string(line_) +
                                              ", but the clip has more frames");
    }
    ++line_;
    if (line->find_first_not_of(" \t\r") == std::string::npos) return {};
    int left_out = 0;
    std::vector<std::string> doubts;
    std::vector<Face> faces = ParseFaces(*line, LineName(), luma.size, &left_out, &doubts);
    if (left_out > 0 && left_out_ == 0) first_left_out_ = line_;
    left_out_ += left_out;
    if (!doubts.empty() && doubt_.empty()) doubt_ = LineName() + ": " + doubts[0];
    return faces;
  }

  int64_t left_out() const override { return left_out_; }

  std::vector<std::string> Remarks() override {
    std::vector<std::string> remarks;
    if (left_out_ > 0) {
      remarks.push_back(path_ + ": left out " + std::to_string(left_out_) +
                        (left_out_ == 1 ? " face" : " faces") +
                        " outside the frame, first in line " + std::to_string(first_left_out_));
    }
    if (!doubt_.empty()) remarks.push_back(doubt_);
    if (lines_.Next()) {
      remarks.push_back(path_ + ": has more lines than the clip has frames (" +
                        std::to_string(line_) + ")");
    }
    return remarks;
  }

 private:
  std::string LineName() const { return path_ + ": line " + std::to_string(line_); }

  std::string path_;
  LineReader lines_;
  int64_t line_ = 0;
  std::string doubt_;                          ///< the first
  int64_t left_out_ = 0, first_left_out_ = 0;  ///< a count, and the line of the first
};

class NoFacesAtAll final : public FaceSource {
 public:
  std::vector<Face> Next(const PixelView& /*luma*/) override { return {}; }
};

}  // namespace

std::unique_ptr<FaceSource> DetectedFaces(int every) {
  return std::make_unique<FacesByDetection>(every, false);
}

std::unique_ptr<FaceSource> FirstDetectedFaces(int every) {
  return std::make_unique<FacesByDetection>(every, true);
}

std::unique_ptr<FaceSource> NoFaces() {
  return std::make_unique<NoFacesAtAll>();
}

std::unique_ptr<FaceSource> ListedFaces(const std::string& path, const ReadStop* stop) {
  return std::make_unique<FacesOfList>(path, stop);
}

}  // namespace lumora::tools
