// SPDX-License-Identifier: Apache-2.0
// What the module shows to the command.
#include <cstring>

#include "tools/lumora/drawing/drawing.h"
#include "tools/lumora/modules/drawing/compare.h"
#include "tools/lumora/modules/drawing/explain.h"
#include "tools/lumora/modules/drawing/portraits/portrait.h"
#include "tools/lumora/modules/drawing/tilt.h"
#include "tools/lumora/modules/opencv.h"

namespace lumora::tools {
namespace {

class OpenCvDrawing final : public Drawing {
 public:
  Image TitledRow(const std::vector<TitledImage>& pictures) override {
    return WithOpenCv([&] {
      std::vector<Titled> row;
      row.reserve(pictures.size());
      for (const TitledImage& titled : pictures) {
        row.push_back({titled.title, MatOf(titled.picture)});
      }
      return ImageOf(tools::TitledRow(row));
    });
  }

  Image CompareSheet(const Image& before, const Image& after) override {
    return WithOpenCv([&] { return ImageOf(tools::CompareSheet(MatOf(before), MatOf(after))); });
  }

  Image Stacked(const std::vector<Image>& pictures) override {
    return WithOpenCv([&] {
      std::vector<cv::Mat> stack;
      stack.reserve(pictures.size());
      for (const Image& picture : pictures) stack.push_back(MatOf(picture));
      return ImageOf(tools::Stacked(stack));
    });
  }

  Image ExplainSheet(const Image& picture, const std::vector<Face>& faces,
                     const std::vector<PixelRect>& blocks) override {
    return WithOpenCv([&] { return ImageOf(tools::ExplainSheet(MatOf(picture), faces, blocks)); });
  }

  int PortraitCount() override { return tools::PortraitCount(); }

  Scene DrawPortrait(int index, int size) override {
    return WithOpenCv([&] {
      const Portrait portrait = tools::DrawPortrait(index, size);
      return Scene{ImageOf(portrait.picture), {portrait.face}};
    });
  }

  Scene DrawGroup(Size size) override {
    return WithOpenCv([&] {
      const Group group = tools::DrawGroup({size.width, size.height});
      return Scene{ImageOf(group.picture), group.faces};
    });
  }

  Image Tilted(const Image& straight, int degree) override {
    return WithOpenCv([&] { return ImageOf(tools::Tilted(MatOf(straight), degree)); });
  }
};

}  // namespace
}  // namespace lumora::tools

extern "C" {

__attribute__((visibility("default"))) lumora::tools::Drawing* LumoraMakeDrawing(
    const char* version) {
  if (std::strcmp(version, LUMORA_VERSION) != 0) return nullptr;
  return new lumora::tools::OpenCvDrawing;
}

}  // extern "C"
