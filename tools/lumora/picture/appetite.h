// SPDX-License-Identifier: Apache-2.0
// How much memory a picture may need: a small file can claim any size.
#ifndef LUMORA_TOOLS_PICTURE_APPETITE_H_
#define LUMORA_TOOLS_PICTURE_APPETITE_H_

#include <string>

#include "tools/lumora/images/image.h"

namespace lumora::tools {

/// What a command needs at its peak, in bytes a pixel, with software drivers (which draw into the
/// same memory): measured, and rounded up.
inline constexpr int kBytesForBlocks = 32;  ///< where only the blocks around faces are drawn
inline constexpr int kBytesForWhole = 48;   ///< where the whole picture is drawn

struct Appetite {
  int bytes_a_pixel = kBytesForBlocks;
  bool force = false;  ///< without looking at how much there is

  /// Throws Failure (Unreadable) when a picture of that size needs too much. `name` is that of the
  /// input.
  void Check(Size picture, const std::string& name) const;
};

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_PICTURE_APPETITE_H_
