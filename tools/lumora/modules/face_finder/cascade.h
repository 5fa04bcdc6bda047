// SPDX-License-Identifier: Apache-2.0
// Loading of cascade classifiers.
#ifndef LUMORA_TOOLS_MODULES_FACE_FINDER_CASCADE_H_
#define LUMORA_TOOLS_MODULES_FACE_FINDER_CASCADE_H_

#include <opencv2/objdetect.hpp>
#include <string>

namespace lumora::tools {

/// Throws Failure (Failed) when the file is missing or damaged.
cv::CascadeClassifier LoadCascade(const std::string& folder, const char* file);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_MODULES_FACE_FINDER_CASCADE_H_
