#include "tools/lumora/support/slimmer.h"

#include "tools/lumora/support/failure.h"

namespace lumora::tools {

Slimmer::Slimmer() {
  Status status;
  pipeline_ = Pipeline::Create(&status);
  ThrowUnlessOk(status);
}

Frame420 Slimmer::Slim(const Frame420& frame, const std::vector<Face>& faces, int slim,
                       Report* report) {
  Frame420 result = frame.Clone();
  Look look;
  look.slim = slim;
  ThrowUnlessOk(pipeline_->Process(frame.View(), result.MutableView(), faces, look, report));
  return result;
}

}  // namespace lumora::tools
