// SPDX-License-Identifier: Apache-2.0
// What is processed: frames and faces.
#ifndef LUMORA_BENCH_SCENE_H_
#define LUMORA_BENCH_SCENE_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "lumora/engine/face_info.h"
#include "lumora/pipeline/face.h"
#include "lumora/pipeline/pipeline.h"

namespace lumora::bench {

struct Size {
  int width = 0;
  int height = 0;

  size_t Pixels() const { return static_cast<size_t>(width) * static_cast<size_t>(height); }
  size_t FrameBytes() const { return Pixels() * 3 / 2; }
  std::string Text() const;
};

/// Preview frames: widths are multiples of 128, so that no row of the packed targets is padded.
constexpr Size kVga{640, 480};
constexpr Size k720{1280, 720};
constexpr Size k1080{1920, 1080};
constexpr Size k12Megapixels{4000, 3000};
constexpr Size k48Megapixels{8000, 6000};

/// Memory that starts at a page, in huge pages where the system gives them.
class Buffer {
 public:
  explicit Buffer(size_t bytes);
  uint8_t* data() const { return memory_.get(); }
  size_t size() const { return size_; }

 private:
  struct Free {
    void operator()(uint8_t* memory) const;
  };
  size_t size_;
  std::unique_ptr<uint8_t, Free> memory_;
};

/// A frame of random bytes, the same at every call. Constant frames would be faster than real ones.
Buffer RandomFrame(Size size);
/// A frame whose samples change slowly, so that resampling by different filters gives nearly the
/// same.
Buffer SmoothFrame(Size size);
/// A frame in the colour of skin with a little noise: one that whitening does not leave alone.
Buffer SkinFrame(Size size);

/// A face in the middle of the frame whose eyes are that share of the frame's height apart.
Face CentredFace(Size size, double eye_distance);
/// The face that previews are measured with: as large as that of someone who holds the camera.
Face PreviewFace(Size size);

/// The strength of slimming, on the pipeline's scale.
constexpr int kSlim = 50;

/// The engine's record of a face.
FACE_INFO_t RecordOf(const Face& face, Size size, Chain chain = Chain::Preview);

}  // namespace lumora::bench

#endif  // LUMORA_BENCH_SCENE_H_
