#include "tools/lumora/faces/cascade.h"

#include "tools/lumora/support/failure.h"
#include "tools/lumora/support/memory.h"

namespace lumora::tools {

cv::CascadeClassifier LoadCascade(const std::string& folder, const char* file) {
  cv::CascadeClassifier cascade;
  bool loaded = false;
  try {
    loaded = !folder.empty() && cascade.load(folder + "/" + file);
  } catch (const cv::Exception&) {
    RethrowIfOutOfMemory();
    // Others are reported below.
  }
  if (!loaded) {
    throw Failure(ExitCode::Failed, std::string("cannot load the face classifier ") + file +
                                        "; install the package opencv-data or use --faces");
  }
  return cascade;
}

}  // namespace lumora::tools
