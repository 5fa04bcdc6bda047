// SPDX-License-Identifier: Apache-2.0
// What the modules that work with OpenCV have in common.
#ifndef LUMORA_TOOLS_MODULES_OPENCV_H_
#define LUMORA_TOOLS_MODULES_OPENCV_H_

#include <algorithm>
#include <new>
#include <opencv2/core.hpp>
#include <stdexcept>

#include "tools/lumora/images/image.h"

namespace lumora::tools {

/// What `work` returns. Throws std::bad_alloc where OpenCV says that memory is short, and
/// std::runtime_error for its other errors: the command does not know its exceptions.
template <typename Work>
auto WithOpenCv(const Work& work) {
  try {
    return work();
  } catch (const cv::Exception& error) {
    if (error.code == cv::Error::StsNoMem) throw std::bad_alloc();
    throw std::runtime_error(error.what());
  }
}

/// The pixels as OpenCV takes them, in the same memory: to be read only, though it cannot say so.
inline cv::Mat MatOf(const PixelView& view) {
  return {view.size.height, view.size.width, CV_8UC(view.channels),
          const_cast<uint8_t*>(view.pixels), view.stride};
}

/// A copy of 8-bit pixels.
inline Image ImageOf(const cv::Mat& pixels) {
  Image image({pixels.cols, pixels.rows}, pixels.channels());
  for (int y = 0; y < pixels.rows; ++y) std::copy_n(pixels.ptr(y), image.stride(), image.Row(y));
  return image;
}

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_MODULES_OPENCV_H_
