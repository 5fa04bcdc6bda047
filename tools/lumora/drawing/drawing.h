// SPDX-License-Identifier: Apache-2.0
// Pictures that are drawn for people: what was done to a picture, and portraits to try it on. They
// are drawn in a module, since the libraries that it takes are many and most calls draw nothing.
#ifndef LUMORA_TOOLS_DRAWING_DRAWING_H_
#define LUMORA_TOOLS_DRAWING_DRAWING_H_

#include <string>
#include <vector>

#include "lumora/pipeline/face.h"
#include "lumora/pipeline/report.h"
#include "tools/lumora/images/image.h"
#include "tools/lumora/support/module.h"

namespace lumora::tools {

/// A picture with the faces that are in it.
struct Scene {
  Image picture;  ///< blue, green and red
  std::vector<Face> faces;
};

struct TitledImage {
  std::string title;
  Image picture;
};

/// All images have three channels.
class Drawing {
 public:
  virtual ~Drawing() = default;

  /// Pictures of one size side by side, each under its title.
  virtual Image TitledRow(const std::vector<TitledImage>& pictures) = 0;
  /// Two of them, under the titles "before" and "after".
  virtual Image CompareSheet(const Image& before, const Image& after) = 0;
  /// Pictures of one width below each other.
  virtual Image Stacked(const std::vector<Image>& pictures) = 0;

  /// The picture with what was found in it and what is done to it.
  virtual Image ExplainSheet(const Image& picture, const std::vector<Face>& faces,
                             const std::vector<PixelRect>& blocks) = 0;

  /// How many people there are to be drawn, and one of them, `size` pixels wide and high.
  virtual int PortraitCount() = 0;
  virtual Scene DrawPortrait(int index, int size) = 0;
  /// All of them in one picture, which is wider than high.
  virtual Scene DrawGroup(Size size) = 0;

  /// The picture as a tilted camera takes it: the one that rectification by `degree` makes
  /// straight.
  virtual Image Tilted(const Image& straight, int degree) = 0;
};

/// Loads the module at the first call. Throws Failure (Failed) when it is not installed.
Drawing& Draw();

inline constexpr Module kDrawingModule = {"drawing", "LumoraMakeDrawing", "draw",
                                          "install the command again"};

/// The module's function. What it makes is the caller's; it makes none where `version` is not the
/// module's own.
using MakeDrawing = Drawing* (*)(const char* version);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_DRAWING_DRAWING_H_
