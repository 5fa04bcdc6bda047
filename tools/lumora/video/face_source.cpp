#include "tools/lumora/video/face_source.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>

#include "pipeline/face_tracker.h"
#include "tools/lumora/faces/face_finder.h"
#include "tools/lumora/faces/faces_json.h"
#include "tools/lumora/support/failure.h"
#include "tools/lumora/support/files.h"

namespace lumora::tools {
namespace {

class Detected final : public FaceSource {
 public:
  explicit Detected(int every) : every_(every) {}

  std::vector<Face> Next(const cv::Mat& luma) override {
    const bool looks = frame_++ % every_ == 0;
    if (!looks) return tracker_.Skipped();
    std::vector<Face> faces;
    for (const FoundFace& found : finder_.Find(luma)) faces.push_back(found.face);
    return tracker_.Detected(faces);
  }

 private:
  int every_;
  int64_t frame_ = 0;
  FaceFinder finder_;
  FaceTracker tracker_;
};

class Listed final : public FaceSource {
 public:
  explicit Listed(const std::string& path) : path_(path) {
    if (path == kStandardStream) return;
    file_.open(path);
    if (!file_) {
      throw Failure(ExitCode::Unreadable, "cannot read " + path + ": " + std::strerror(errno));
    }
  }

  std::vector<Face> Next(const cv::Mat& luma) override {
    std::string line;
    if (!std::getline(stream(), line)) {
      throw Failure(ExitCode::Unreadable, path_ + ": ends after line " + std::to_string(line_) +
                                              ", but the clip has more frames");
    }
    ++line_;
    if (line.find_first_not_of(" \t\r") == std::string::npos) return {};
    int left_out = 0;
    std::vector<Face> faces =
        ParseFaces(line, path_ + ": line " + std::to_string(line_), luma.size(), &left_out);
    if (left_out > 0 && left_out_ == 0) first_left_out_ = line_;
    left_out_ += left_out;
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
    std::string line;
    if (std::getline(stream(), line)) {
      remarks.push_back(path_ + ": has more lines than the clip has frames (" +
                        std::to_string(line_) + ")");
    }
    return remarks;
  }

 private:
  std::istream& stream() { return path_ == kStandardStream ? std::cin : file_; }

  std::string path_;
  std::ifstream file_;
  int64_t line_ = 0;
  int64_t left_out_ = 0, first_left_out_ = 0;  ///< a count, and the line of the first
};

class None final : public FaceSource {
 public:
  std::vector<Face> Next(const cv::Mat& /*luma*/) override { return {}; }
};

}  // namespace

std::unique_ptr<FaceSource> DetectedFaces(int every) {
  return std::make_unique<Detected>(every);
}

std::unique_ptr<FaceSource> NoFaces() {
  return std::make_unique<None>();
}

std::unique_ptr<FaceSource> ListedFaces(const std::string& path) {
  return std::make_unique<Listed>(path);
}

}  // namespace lumora::tools
