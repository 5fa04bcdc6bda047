// For modules that work with OpenCV: its errors in words that the command knows.
#ifndef LUMORA_TOOLS_SUPPORT_OPENCV_GUARD_H_
#define LUMORA_TOOLS_SUPPORT_OPENCV_GUARD_H_

#include <new>
#include <opencv2/core.hpp>
#include <stdexcept>

namespace lumora::tools {

/// What `work` returns. Throws std::bad_alloc where OpenCV says that memory is short, and
/// std::runtime_error for its other errors.
template <typename Work>
auto WithOpenCv(const Work& work) {
  try {
    return work();
  } catch (const cv::Exception& error) {
    if (error.code == cv::Error::StsNoMem) throw std::bad_alloc();
    throw std::runtime_error(error.what());
  }
}

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_SUPPORT_OPENCV_GUARD_H_
