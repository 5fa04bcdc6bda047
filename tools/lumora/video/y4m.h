// SPDX-License-Identifier: Apache-2.0
// YUV4MPEG2 clips, frame by frame.
#ifndef LUMORA_TOOLS_VIDEO_Y4M_H_
#define LUMORA_TOOLS_VIDEO_Y4M_H_

#include <cstdint>
#include <optional>
#include <string>

#include "lumora/pipeline/frame.h"
#include "tools/lumora/images/image.h"
#include "tools/lumora/support/files.h"

namespace lumora::tools {

/// What the header of a clip says.
struct Y4mHeader {
  std::string line;  ///< as it is in the file, without its end
  Size size;
  bool mono = false;               ///< luma alone; else 4:2:0 of 8 bits
  std::optional<bool> full_range;  ///< of the samples; nothing where the clip does not say
  double frames_per_second = 0;    ///< 0 where the clip does not say
};

/// Reads a header line. Throws Failure (Unreadable) with a sentence that starts with `name` for
/// anything but 8-bit 4:2:0 (of any chroma position) and mono from 32 x 32 to 200 million pixels.
Y4mHeader ParseY4mHeader(const std::string& line, const std::string& name);

/// The memory of one frame: I420, of a mono clip with chroma planes that hold no colour.
class ClipFrame {
 public:
  explicit ClipFrame(const Y4mHeader& header);

  ConstFrameView View() const;
  FrameView MutableView();
  const Bytes& bytes() const { return bytes_; }
  Bytes& bytes() { return bytes_; }
  /// How many bytes of it are in the file.
  size_t stored() const { return stored_; }

 private:
  Size size_;
  size_t stored_;
  Bytes bytes_;
};

class Y4mReader {
 public:
  /// Opens a clip and reads its header. Throws Failure (Unreadable), a ContainerFailure for a clip
  /// in a container. `stop`, where there is one, ends its reading.
  explicit Y4mReader(const std::string& path, const ReadStop* stop = nullptr);

  /// For messages: the path, or "standard input".
  const std::string& name() const { return input_.name(); }
  const Y4mHeader& header() const { return header_; }
  /// How many frames there are, where the input is a file with plain frame headers.
  std::optional<int64_t> FrameCount() const;

  /// Reads the next frame; false at the end of the clip. Throws Failure (Unreadable) for a frame
  /// that is cut short or does not begin as frames do.
  bool Read(ClipFrame& frame);
  /// The line before the frame that was read last, which may have parameters of its own.
  const std::string& frame_line() const { return frame_line_; }

 private:
  /// The next line; `line` is what was read of it before. Nothing at the end of the clip.
  std::optional<std::string> ReadLine(std::string line = {});
  [[noreturn]] void Reject(const std::string& what) const;

  InputStream input_;
  Y4mHeader header_;
  std::string frame_line_;
  int64_t frames_ = 0;  ///< read so far
};

class Y4mWriter {
 public:
  /// Writes to that path as OutputStream does. Throws Failure (Failed).
  Y4mWriter(const std::string& path, const Y4mHeader& header);

  void Write(const std::string& frame_line, const ClipFrame& frame);
  /// Puts the clip into its place.
  void Finish() { output_.Finish(); }

 private:
  void WriteLine(const std::string& line);

  OutputStream output_;
};

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_VIDEO_Y4M_H_
