// SPDX-License-Identifier: Apache-2.0
// Where the faces of a clip come from.
#ifndef LUMORA_TOOLS_VIDEO_FACE_SOURCE_H_
#define LUMORA_TOOLS_VIDEO_FACE_SOURCE_H_

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "lumora/pipeline/face.h"
#include "tools/lumora/images/image.h"
#include "tools/lumora/support/streams.h"

namespace lumora::tools {

class FaceSource {
 public:
  virtual ~FaceSource() = default;

  /// The faces of the next frame, whose luma plane is given. Throws Failure.
  virtual std::vector<Face> Next(const PixelView& luma) = 0;
  /// Every how many frames a call takes long.
  virtual int search_every() const { return 1; }
  /// How many faces were left out so far, because they lie outside their frames.
  virtual int64_t left_out() const { return 0; }
  /// Sentences for the user at the end of the clip.
  virtual std::vector<std::string> Remarks() { return {}; }
};

/// Looks for faces in every n-th frame and follows them smoothly in between.
std::unique_ptr<FaceSource> DetectedFaces(int every);

/// Looks for faces like that up to the first frame that has one, and no further: for who wants to
/// know no more than whether there is any.
std::unique_ptr<FaceSource> FirstDetectedFaces(int every);

/// No face at all, for clips that stay as they are.
std::unique_ptr<FaceSource> NoFaces();

/// Takes them from a file with one line a frame, each as ParseFaces reads it; an empty line is a
/// frame without faces. `stop`, where there is one, ends the reading. Throws Failure (Unreadable).
std::unique_ptr<FaceSource> ListedFaces(const std::string& path, const ReadStop* stop = nullptr);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_VIDEO_FACE_SOURCE_H_
