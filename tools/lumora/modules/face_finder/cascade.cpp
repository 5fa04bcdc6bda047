// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/modules/face_finder/cascade.h"

#include <new>

#include "tools/lumora/support/failure.h"

namespace lumora::tools {

cv::CascadeClassifier LoadCascade(const std::string& folder, const char* file) {
  cv::CascadeClassifier cascade;
  bool loaded = false;
  try {
    loaded = !folder.empty() && cascade.load(folder + "/" + file);
  } catch (const cv::Exception& error) {
    if (error.code == cv::Error::StsNoMem) throw std::bad_alloc();
    // The file is damaged, as is told below.
  }
  if (!loaded) {
    throw Failure(ExitCode::Failed, std::string("cannot load the face classifier ") + file +
                                        "; install the package opencv-data or use --faces");
  }
  return cascade;
}

}  // namespace lumora::tools
