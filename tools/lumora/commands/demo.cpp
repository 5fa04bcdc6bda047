// SPDX-License-Identifier: Apache-2.0
// lumora demo: portraits drawn by the program itself, before and after.
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tools/lumora/commands/command.h"
#include "tools/lumora/commands/retoucher.h"
#include "tools/lumora/drawing/drawing.h"
#include "tools/lumora/options/common_options.h"
#include "tools/lumora/picture/colour_picture.h"
#include "tools/lumora/picture/picture.h"
#include "tools/lumora/support/files.h"
#include "tools/lumora/support/talk.h"

namespace lumora::tools {
namespace {

constexpr int kSmallest = 64, kUsual = 640, kLargest = 4096;  // pixels
constexpr int kDegree = 8;                                    // of the keystone correction

struct DemoOptions {
  std::string folder;
  Look look = {70, 70, 15};  // stronger than photo's: the difference is the point here
  int size = kUsual;
  int capture = 4000;
  Device device = Device::Auto;
};

/// The 4:3 picture of that width.
Size FourToThree(int width) {
  return {width, width * 3 / 4};
}

/// The picture after what `change` makes of its frame.
template <typename Change>
Image Changed(const Image& picture, const Change& change) {
  ColourPicture changed(picture);
  const Frame420 frame = changed.Frame();
  changed.Merge(frame, change(frame));
  return changed.Bgr();
}

class Demo {
 public:
  explicit Demo(const DemoOptions& options) : options_(options) {}

  ExitCode Run() {
    std::error_code error;
    std::filesystem::create_directories(options_.folder, error);
    if (error) {
      throw Failure(ExitCode::Failed,
                    "cannot create the folder " + options_.folder + ": " + error.message());
    }
    CheckWritable(PathOf("overview.png"));
    retoucher_ = std::make_unique<Retoucher>(options_.device);
    std::vector<Image> rows;
    for (int i = 0; i < Draw().PortraitCount(); ++i) {
      const Scene portrait = Draw().DrawPortrait(i, options_.size);
      rows.push_back(Show("portrait-" + std::to_string(i + 1), portrait));
    }
    Write("overview.png", Draw().Stacked(rows));
    Show("group", Draw().DrawGroup(FourToThree(2 * options_.size)));
    if (options_.capture > 0) ShowCapture();
    return ExitCode::Done;
  }

 private:
  /// Writes one picture before and after, and step by step, from a photo that was taken with a
  /// tilted camera. Returns the steps.
  Image Show(const std::string& name, const Scene& scene) {
    const auto& [drawn, faces] = scene;
    const Image tilted = Draw().Tilted(drawn, kDegree);
    const Image straight = Rectified(tilted);
    Look slim, whiten = options_.look;
    slim.slim = options_.look.slim;
    whiten.slim = 0;
    Image steps = Draw().TitledRow({{"as taken", tilted},
                                    {"rectified", straight},
                                    {"slimmed", Retouched(straight, faces, slim)},
                                    {"whitened", Retouched(straight, faces, whiten)},
                                    {"all together", Retouched(straight, faces, options_.look)}});
    const Image after = Retouched(drawn, faces, options_.look);
    Write(name + "-before.png", drawn);
    Write(name + "-after.png", after);
    Write(name + "-compare.png", Draw().CompareSheet(drawn, after));
    Write(name + "-steps.png", steps);
    return steps;
  }

  /// A large still, which goes through the engine block by block.
  void ShowCapture() {
    const Scene group = Draw().DrawGroup(FourToThree(options_.capture));
    Report report;
    const Image after = Retouched(group.picture, group.faces, options_.look, &report);
    Write("capture-before.jpg", group.picture);
    Write("capture-after.jpg", after);
    Write("capture-compare.jpg", Draw().CompareSheet(group.picture, after));
    Write("capture-explain.jpg", Draw().ExplainSheet(group.picture, group.faces, report.blocks));
  }

  Image Retouched(const Image& picture, const std::vector<Face>& faces, const Look& look,
                  Report* report = nullptr) {
    return Changed(picture, [&](const Frame420& frame) {
      return retoucher_->Process(frame, faces, look, report);
    });
  }

  Image Rectified(const Image& picture) {
    const auto rectify = [](Pipeline& pipeline, const ConstFrameView& in, const FrameView& out) {
      return pipeline.Rectify(in, out, kDegree);
    };
    return Changed(picture, [&](const Frame420& frame) { return retoucher_->Run(frame, rectify); });
  }

  std::string PathOf(const std::string& name) const {
    return (std::filesystem::path(options_.folder) / name).string();
  }

  void Write(const std::string& name, const Image& picture) {
    WriteWhole(PathOf(name), EncodeNew(picture, FormatOfName(name)));
    Print(PathOf(name));
  }

  const DemoOptions& options_;
  std::unique_ptr<Retoucher> retoucher_;
};

}  // namespace

Action OfferDemo(Options options) {
  auto chosen = std::make_shared<DemoOptions>();
  options.Text("DIR", Need::Required, &chosen->folder,
               "folder for the pictures; it is made if need be");
  const auto scale = [&options](const char* name, int* value, const char* help) {
    options.Whole(name, value, 0, 100, help);
  };
  scale("--slim", &chosen->look.slim, "how much cheeks and chin are narrowed");
  scale("--whiten", &chosen->look.whiten, "how much the skin is brightened");
  scale("--saturate", &chosen->look.saturate, "how much richer its colour gets");
  options.Whole("--size", &chosen->size, kSmallest, kLargest,
                "width and height of a portrait in pixels");
  options.Whole("--capture", &chosen->capture, 0, 2 * kLargest,
                "width of the large still in pixels; 0 leaves it out");
  AddDevice(options, &chosen->device);
  return [chosen] { return Demo(*chosen).Run(); };
}

}  // namespace lumora::tools
