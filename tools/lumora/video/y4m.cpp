// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/video/y4m.h"

#include <algorithm>
#include <charconv>
#include <sstream>

#include "tools/lumora/images/colours.h"
#include "tools/lumora/picture/picture.h"
#include "tools/lumora/picture/raw_frame.h"
#include "tools/lumora/support/failure.h"
#include "tools/lumora/video/containers.h"

namespace lumora::tools {
namespace {

constexpr char kMagic[] = "YUV4MPEG2";
constexpr char kFrame[] = "FRAME";
constexpr size_t kLongestLine = 4096;  // bytes

bool StartsWith(const std::string& text, const std::string& start) {
  return text.compare(0, start.size(), start) == 0;
}

std::optional<int> Number(const std::string& text) {
  int number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

/// "30:1"; 0 where no sensible rate is stated.
double Rate(const std::string& text) {
  const size_t colon = text.find(':');
  if (colon == std::string::npos) return 0;
  const std::optional<int> above = Number(text.substr(0, colon));
  const std::optional<int> below = Number(text.substr(colon + 1));
  return above && below && *above > 0 && *below > 0 ? static_cast<double>(*above) / *below : 0;
}

bool IsPlain420(const std::string& sampling) {
  constexpr const char* kKinds[] = {"420", "420jpeg", "420mpeg2", "420paldv"};
  return std::find(std::begin(kKinds), std::end(kKinds), sampling) != std::end(kKinds);
}

[[noreturn]] void Reject(const std::string& name, const std::string& what) {
  throw Failure(ExitCode::Unreadable, name + ": " + what);
}

/// Throws Failure (Unreadable) for frames that are too small or too large.
void CheckSize(Size size, const std::string& name) {
  if (size.width <= 0 || size.height <= 0) {
    Reject(name, "broken header: the width or height of the frames is missing");
  }
  const std::string pixels =
      std::to_string(size.width) + " x " + std::to_string(size.height) + " pixels";
  if (size.width < kSmallestSide || size.height < kSmallestSide) {
    Reject(name, "the frames have " + pixels + ", at least 32 x 32 are needed");
  }
  if (static_cast<int64_t>(size.width) * size.height > kMostPixels) {
    Reject(name, "the frames have " + pixels + ", more than 200 million");
  }
}

/// How many bytes of a frame are in the file.
size_t StoredBytes(const Y4mHeader& header) {
  const Size size = header.size;
  return header.mono ? static_cast<size_t>(size.width) * static_cast<size_t>(size.height)
                     : RawFrameBytes(size);
}

}  // namespace

Y4mHeader ParseY4mHeader(const std::string& line, const std::string& name) {
  Y4mHeader header;
  header.line = line;
  std::istringstream words(line);
  std::string word;
  words >> word;
  if (word != kMagic) Reject(name, "not a Y4M clip");
  std::string sampling = "420";  // the format's default
  while (words >> word) {
    const std::string value = word.substr(1);
    switch (word[0]) {
      case 'W':
        header.size.width = Number(value).value_or(0);
        break;
      case 'H':
        header.size.height = Number(value).value_or(0);
        break;
      case 'F':
        header.frames_per_second = Rate(value);
        break;
      case 'C':
        sampling = value;
        break;
      case 'X':
        if (value == "COLORRANGE=FULL") header.full_range = true;
        if (value == "COLORRANGE=LIMITED") header.full_range = false;
        break;
      default:
        break;  // interlacing, pixel shape, comments: handed on as they are
    }
  }
  CheckSize(header.size, name);
  header.mono = sampling == "mono";
  if (!header.mono && !IsPlain420(sampling)) {
    Reject(name, "the samples are \"C" + sampling + "\", but 8-bit 4:2:0 or mono is needed");
  }
  return header;
}

ClipFrame::ClipFrame(const Y4mHeader& header)
    : size_(header.size), stored_(StoredBytes(header)), bytes_(RawFrameBytes(size_), kNoColour) {}

ConstFrameView ClipFrame::View() const {
  return RawFrameView(bytes_.data(), PixelFormat::I420, size_);
}

FrameView ClipFrame::MutableView() {
  return RawFrameView(bytes_.data(), PixelFormat::I420, size_);
}

Y4mReader::Y4mReader(const std::string& path, const ReadStop* stop) : input_(path, stop) {
  constexpr size_t kMagicLength = sizeof(kMagic) - 1;
  Bytes start(kContainerStart);
  size_t got = input_.Read(start.data(), kMagicLength);
  if (got == 0) {
    throw Failure(ExitCode::Unreadable, "cannot read " + input_.name() + ": it is empty");
  }
  const std::string magic(start.begin(), start.begin() + static_cast<std::ptrdiff_t>(got));
  if (magic != kMagic) {
    if (got == kMagicLength) got += input_.Read(start.data() + got, start.size() - got);
    start.resize(got);
    if (const auto container = ContainerOf(start)) {
      throw ContainerFailure(input_.name(), *container);
    }
    throw Failure(ExitCode::Unreadable, input_.name() + ": not a Y4M clip");
  }
  std::optional<std::string> line;
  try {
    line = ReadLine(magic);
  } catch (const Failure&) {
    throw Failure(ExitCode::Unreadable, input_.name() + ": not a Y4M clip");
  }
  header_ = ParseY4mHeader(*line, input_.name());
}

std::optional<int64_t> Y4mReader::FrameCount() const {
  const std::optional<uint64_t> length = input_.Length();
  if (!length) return std::nullopt;
  const uint64_t header = header_.line.size() + 1;
  const uint64_t frame = sizeof(kFrame) + StoredBytes(header_);  // its '\n' for the '\0'
  return *length > header ? static_cast<int64_t>((*length - header) / frame) : 0;
}

bool Y4mReader::Read(ClipFrame& frame) {
  const std::optional<std::string> line = ReadLine();
  if (!line) return false;
  ++frames_;
  if (StartsWith(*line, kMagic)) {
    Reject("a second clip begins here; clips cannot be joined like that, nor change their size");
  }
  if (*line != kFrame && !StartsWith(*line, std::string(kFrame) + " ")) {
    Reject("does not begin with FRAME");
  }
  frame_line_ = *line;
  const size_t got = input_.Read(frame.bytes().data(), frame.stored());
  if (got != frame.stored()) {
    Reject("cut short: " + std::to_string(got) + " of " + std::to_string(frame.stored()) +
           " bytes");
  }
  return true;
}

std::optional<std::string> Y4mReader::ReadLine(std::string line) {
  uint8_t byte = 0;
  while (input_.Read(&byte, 1) == 1) {
    if (byte == '\n') return line;
    if (line.size() == kLongestLine) Reject("does not begin with FRAME");
    line.push_back(static_cast<char>(byte));
  }
  if (line.empty()) return std::nullopt;
  Reject("the clip ends within a header");
}

void Y4mReader::Reject(const std::string& what) const {
  throw Failure(ExitCode::Unreadable,
                input_.name() + ": frame " + std::to_string(frames_) + ": " + what);
}

Y4mWriter::Y4mWriter(const std::string& path, const Y4mHeader& header) : output_(path) {
  WriteLine(header.line);
}

void Y4mWriter::Write(const std::string& frame_line, const ClipFrame& frame) {
  WriteLine(frame_line);
  output_.Write(frame.bytes().data(), frame.stored());
}

void Y4mWriter::WriteLine(const std::string& line) {
  const std::string ended = line + "\n";
  output_.Write(reinterpret_cast<const uint8_t*>(ended.data()), ended.size());
}

}  // namespace lumora::tools
