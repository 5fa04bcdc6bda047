// SPDX-License-Identifier: Apache-2.0
// Faces handed in as JSON, on to the engine's records.
#include "tools/lumora/faces/faces_json.h"

#include <cmath>
#include <string>

#include "fuzz/support/input.h"
#include "fuzz/support/require.h"
#include "tools/lumora/support/failure.h"

using lumora::fuzz::Input;
using lumora::fuzz::Require;

namespace {

bool IsInside(const lumora::WarpCircle& circle, int width, int height) {
  return circle.centre.x >= 0 && circle.centre.y >= 0 &&
         circle.centre.x < static_cast<float>(width) &&
         circle.centre.y < static_cast<float>(height) && std::isfinite(circle.radius);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const int width = input.between(32, 4000), height = input.between(32, 4000);
  const std::vector<uint8_t> rest = input.rest();
  const std::string text(rest.begin(), rest.end());
  try {
    for (const lumora::Face& face : lumora::tools::ParseFaces(text, "faces", {width, height})) {
      const lumora::WarpCircle circle = lumora::SlimmingCircle(face, width, height);
      Require(circle.radius == 0 || IsInside(circle, width, height),
              "a face that is slimmed lies in the picture");
      for (const lumora::Ellipse& ellipse : lumora::WhiteningEllipses(face)) {
        Require(std::isfinite(ellipse.half_along) && std::isfinite(ellipse.half_across) &&
                    std::isfinite(ellipse.centre.x) && std::isfinite(ellipse.centre.y),
                "ellipses are finite");
      }
    }
  } catch (const lumora::tools::Failure& failure) {
    Require(failure.code() == lumora::tools::ExitCode::Unreadable &&
                std::string(failure.what()).compare(0, 5, "faces") == 0,
            "a refusal names the file and says that it is unreadable");
  }
  return 0;
}
