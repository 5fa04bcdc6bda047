// SPDX-License-Identifier: Apache-2.0
// Y4M clips: header, frames, and what is written of them.
#include "tools/lumora/video/y4m.h"

#include <algorithm>
#include <string>

#include "fuzz/support/files.h"
#include "fuzz/support/require.h"
#include "tools/lumora/support/failure.h"
#include "tools/lumora/video/sample_range.h"

using lumora::fuzz::MemoryFile;
using lumora::fuzz::Require;
namespace tools = lumora::tools;

namespace {

/// The first line, as far as there is one.
std::string FirstLine(const std::vector<uint8_t>& clip) {
  return {clip.begin(), std::find(clip.begin(), clip.end(), uint8_t{'\n'})};
}

/// Whether frames of the clip take little memory; a clip of a few bytes may claim any size.
bool IsSmall(const std::string& line) {
  try {
    const tools::Y4mHeader header = tools::ParseY4mHeader(line, "clip");
    return header.size.width * header.size.height <= 1 << 20;
  } catch (const tools::Failure&) {
    return true;
  }
}

void Samples(const tools::ClipFrame& frame) {
  tools::ClipFrame full = frame, limited = frame;
  tools::StretchToFull(frame, full);
  tools::MergeFromFull(full, full, limited);
  Require(limited.bytes() == frame.bytes(), "unchanged samples stay as they are");
  tools::MergeFromFull(frame, full, limited);
}

int64_t ReadFrames(tools::Y4mReader& reader, size_t clip_size) {
  tools::ClipFrame frame(reader.header());
  int64_t count = 0;
  while (reader.Read(frame)) {
    ++count;
    Require(frame.stored() <= clip_size, "frames are not larger than their clip");
    Require(reader.frame_line().compare(0, 5, "FRAME") == 0, "frames begin with FRAME");
    if (count == 1) Samples(frame);
  }
  return count;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static MemoryFile memory;
  const std::vector<uint8_t> clip(data, data + size);
  if (!IsSmall(FirstLine(clip))) return 0;
  memory.set(clip);
  try {
    tools::Y4mReader reader(memory.path());
    const tools::Y4mHeader& header = reader.header();
    Require(header.size.width >= 32 && header.size.height >= 32, "frames have 32 x 32 pixels");
    Require(header.frames_per_second >= 0, "the rate is none or positive");
    Require(header.line == FirstLine(clip), "the header is the first line");
    const int64_t stated = reader.FrameCount().value_or(-1);
    Require(stated >= 0, "a file's frames can be counted");
    Require(ReadFrames(reader, clip.size()) <= stated, "there are no more frames than stated");
  } catch (const tools::Failure& failure) {
    Require(failure.code() == tools::ExitCode::Unreadable, "a refusal says unreadable");
  }
  return 0;
}
