// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/video/containers.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <string_view>

#include "tools/lumora/support/shell.h"

namespace lumora::tools {
namespace {

using namespace std::string_view_literals;

/// Bytes that all files of a kind have at that place.
struct Mark {
  size_t at;
  std::string_view bytes;
  const char* container;
};
constexpr Mark kMarks[] = {
    {4, "ftyp"sv, "an MP4 or QuickTime file"},
    {4, "moov"sv, "an MP4 or QuickTime file"},
    {4, "mdat"sv, "an MP4 or QuickTime file"},
    {4, "wide"sv, "an MP4 or QuickTime file"},
    {4, "free"sv, "an MP4 or QuickTime file"},
    {4, "skip"sv, "an MP4 or QuickTime file"},
    {0, "\x1a\x45\xdf\xa3"sv, "a Matroska or WebM file"},
    {8, "AVI "sv, "an AVI file"},
    {0, "FLV\x01"sv, "a Flash video"},
    {0, "\x30\x26\xb2\x75\x8e\x66\xcf\x11"sv, "a Windows Media file"},
    {0, "OggS"sv, "an Ogg file"},
    {0, "\x00\x00\x01\xba"sv, "an MPEG program stream"},
    {0, "\x00\x00\x01\xb3"sv, "an MPEG video"},
    {0, "\x06\x0e\x2b\x34"sv, "an MXF file"},
    {0, "DKIF"sv, "an IVF file"},
    {0, "GIF8"sv, "a GIF"},
};
constexpr size_t kTransportPacket = 188;
constexpr uint8_t kTransportSync = 0x47;

/// A name's ending, and what ffmpeg has to be told to write such a file.
struct Container {
  std::string_view ending;
  std::vector<std::string> video = {}, sound = {};  // the latter for sound that is coded anew
};

const std::vector<Container>& Containers() {
  static const std::vector<Container> containers = {
      {"mp4"},
      {"m4v"},
      {"mov"},
      {"mkv"},
      {"webm"},
      {"avi"},
      {"wmv"},
      {"asf"},
      {"flv"},
      {"ts"},
      {"mts"},
      {"m2ts"},
      {"mpg"},
      {"mpeg"},
      {"vob"},
      {"ogv"},
      {"gif"},
      {"qt", {"-f", "mov"}},
      // Their usual codings are for small sizes only, or not built into every ffmpeg.
      {"3gp", {"-c:v", "libx264"}, {"-c:a", "aac"}},
      {"3g2", {"-c:v", "libx264"}, {"-c:a", "aac"}},
      {"mxf", {}, {"-ar", "48000"}}};
  return containers;
}

bool Holds(const Bytes& start, size_t at, std::string_view bytes) {
  return start.size() >= at + bytes.size() &&
         std::equal(bytes.begin(), bytes.end(), start.begin() + static_cast<std::ptrdiff_t>(at),
                    [](char a, uint8_t b) { return static_cast<uint8_t>(a) == b; });
}

/// Packets of 188 bytes, each with a time before it on some discs and cameras.
bool IsTransportStream(const Bytes& start) {
  for (const size_t before : {size_t{0}, size_t{4}}) {
    const size_t next = 2 * before + kTransportPacket;
    if (start.size() > next && start[before] == kTransportSync && start[next] == kTransportSync) {
      return true;
    }
  }
  return false;
}

/// What a name says about its content, in small letters.
std::string Ending(const std::string& path) {
  std::string ending = std::filesystem::path(path).extension().string();
  if (!ending.empty()) ending.erase(0, 1);
  for (char& c : ending) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return ending;
}

const Container* ContainerOfName(const std::string& path) {
  const std::string ending = Ending(path);
  for (const Container& container : Containers()) {
    if (container.ending == ending) return &container;
  }
  return nullptr;
}

/// Whether sound can be handed on as it is: most containers hold only some of its codings.
bool HoldsSoundOf(const std::string& out, const std::string& in) {
  return Ending(out) == Ending(in) || Ending(out) == "mkv";
}

}  // namespace

std::optional<std::string> ContainerOf(const Bytes& start) {
  for (const Mark& mark : kMarks) {
    if (Holds(start, mark.at, mark.bytes)) return mark.container;
  }
  if (IsTransportStream(start)) return "an MPEG transport stream";
  return std::nullopt;
}

bool IsContainerName(const std::string& path) {
  return ContainerOfName(path) != nullptr;
}

bool IsContainer(const std::string& path) {
  if (path == kStandardStream) return false;
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(path, ignored)) return IsContainerName(path);
  Bytes start(kContainerStart);
  InputStream file(path);
  start.resize(file.Read(start.data(), start.size()));
  return ContainerOf(start).has_value();
}

std::string FfmpegLine(const std::string& program, const std::string& in, bool in_is_container,
                       const std::string& out, const std::vector<std::string>& options) {
  const auto append = [](std::vector<std::string>* words, const std::vector<std::string>& more) {
    words->insert(words->end(), more.begin(), more.end());
  };
  const Container* const container = ContainerOfName(out);
  std::string line;
  if (in_is_container) {
    // Without the filter ffmpeg states the range of the samples only where the container does.
    line = ShellLine({"ffmpeg", "-i", PlainPath(in), "-vf", "scale=out_range=limited", "-pix_fmt",
                      "yuv420p", "-f", "yuv4mpegpipe", "-"}) +
           " | ";
  }
  std::vector<std::string> lumora = {program, "video", in_is_container ? "-" : PlainPath(in), "-o",
                                     container != nullptr ? "-" : PlainPath(out)};
  append(&lumora, options);
  line += ShellLine(lumora);
  if (container == nullptr) return line;
  std::vector<std::string> writer = {"ffmpeg", "-i", "-"};
  const bool has_sound = in_is_container && in != kStandardStream && Ending(out) != "gif";
  if (has_sound) {
    append(&writer, {"-i", PlainPath(in), "-map", "0:v", "-map", "1:a?"});
    const std::vector<std::string> as_it_is = {"-c:a", "copy"};
    append(&writer, HoldsSoundOf(out, in) ? as_it_is : container->sound);
  }
  append(&writer, container->video);
  writer.push_back(PlainPath(out));
  return line + " | " + ShellLine(writer);
}

}  // namespace lumora::tools
