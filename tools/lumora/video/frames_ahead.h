// SPDX-License-Identifier: Apache-2.0
// The frames of a clip with their faces, read and searched while earlier ones are processed.
#ifndef LUMORA_TOOLS_VIDEO_FRAMES_AHEAD_H_
#define LUMORA_TOOLS_VIDEO_FRAMES_AHEAD_H_

#include <condition_variable>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "tools/lumora/support/streams.h"
#include "tools/lumora/video/face_source.h"
#include "tools/lumora/video/y4m.h"

namespace lumora::tools {

/// Reads a clip and asks for the faces of its frames on a thread of its own, in the clip's order:
/// what comes out does not depend on how fast the thread is. It runs ahead no further than two
/// searches, and in large frames than 64 MiB.
class FramesAhead {
 public:
  struct Frame {
    explicit Frame(const Y4mHeader& header) : samples(header) {}
    ClipFrame samples;
    std::string line;  ///< before it in the clip
    std::vector<Face> faces;
  };

  /// `reader` and `faces` are the thread's until Next() has said that the clip has ended, or until
  /// this object is gone; `stop` is that of their streams, which it sets when it goes early.
  FramesAhead(Y4mReader& reader, FaceSource& faces, ReadStop& stop);
  ~FramesAhead();
  FramesAhead(const FramesAhead&) = delete;
  FramesAhead& operator=(const FramesAhead&) = delete;

  /// The next frame, the caller's until the next call; none at the end of the clip. What reading or
  /// searching threw is thrown here, after the frames before it.
  Frame* Next();

 private:
  using FramePointer = std::unique_ptr<Frame>;

  void Work();
  /// A frame to read into; none when the work is to end. Waits while enough frames are ahead.
  FramePointer Free();

  Y4mReader& reader_;
  FaceSource& faces_;
  ReadStop& stop_;
  size_t most_;  ///< frames at a time, with the caller's
  FramePointer current_;

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<FramePointer> ready_;  // guarded by mutex_, as the rest down to the thread
  std::vector<FramePointer> free_;
  size_t made_ = 0;
  bool ended_ = false, stopping_ = false;
  std::exception_ptr thrown_;

  std::thread thread_;  // last: it starts when the rest is there
};

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_VIDEO_FRAMES_AHEAD_H_
