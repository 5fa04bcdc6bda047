// A small render whose result is computed a second time on the CPU.
#ifndef LUMORA_TOOLS_COMMANDS_SELF_TEST_H_
#define LUMORA_TOOLS_COMMANDS_SELF_TEST_H_

#include <string>

#include "pipeline/face.h"
#include "tools/lumora/support/slimmer.h"

namespace lumora::tools {

/// The slimming warp in double precision: where each pixel of the result is taken from.
struct WarpModel {
  double centre_x = 0, centre_y = 0;    ///< pixels
  double radius = 0;                    ///< pixels
  double towards_x = 0, towards_y = 0;  ///< unit vector to the chin
  double strength = 0;                  ///< growth of the pull with the distance, in frame widths
  double limiter = 1;                   ///< scale of the ellipse that holds the upper face back

  struct Position {
    double x, y;
  };
  /// The place that the pixel around (x, y) shows, all in pixels of a frame of width x height.
  Position Source(double x, double y, int width, int height) const;
};

struct SelfTest {
  bool passed = false;
  double largest_difference = 0;  ///< of all samples, in steps of 1/255
  int moved_pixels = 0;           ///< luma samples that clearly changed
  std::string Sentence() const;
};

/// Slims a synthetic face and compares every sample with the model. Throws Failure when the
/// pipeline itself fails.
SelfTest RunSelfTest(Slimmer& slimmer);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_COMMANDS_SELF_TEST_H_
