// SPDX-License-Identifier: Apache-2.0
// The slimming warp as a user of OpenCV would write it.
#ifndef LUMORA_BENCH_OPENCV_SLIMMING_H_
#define LUMORA_BENCH_OPENCV_SLIMMING_H_

#include <cstdint>
#include <opencv2/core.hpp>

#include "bench/scene.h"
#include "lumora/programs/cheek_slimmer_programs.h"

namespace lumora::bench {

/// Works on as many threads as OpenCV is told to (cv::setNumThreads). Nothing is allocated after
/// the first frame.
class OpenCvSlimming {
 public:
  OpenCvSlimming(Size size, const GLProgWarp& warp);

  /// Computes where every pixel comes from; once a frame where the face moves. `skip` leaves the
  /// formula out where nothing moves.
  void BuildMap(bool skip);
  /// NV21 to BGR, remap, back to NV21, in place.
  void Remap(uint8_t* frame);
  /// Both planes remapped as they are, without conversions: what someone would write who knows
  /// that a warp needs no colours.
  void RemapPlanes(uint8_t* frame);

 private:
  Size size_;
  float centre_x_, centre_y_, strength_, radius_, aspect_;
  float limiter_x_, limiter_y_, reach_, limiter_scale_;
  cv::Mat map_x_, map_y_, half_x_, half_y_, bgr_, warped_, i420_, luma_, chroma_;
};

}  // namespace lumora::bench

#endif  // LUMORA_BENCH_OPENCV_SLIMMING_H_
