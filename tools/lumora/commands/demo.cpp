// lumora demo: portraits drawn by the program itself, before and after.
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tools/lumora/drawing/compare.h"
#include "tools/lumora/drawing/portrait.h"
#include "tools/lumora/picture/colour_picture.h"
#include "tools/lumora/picture/picture.h"
#include "tools/lumora/support/command.h"
#include "tools/lumora/support/files.h"
#include "tools/lumora/support/slimmer.h"
#include "tools/lumora/support/talk.h"

namespace lumora::tools {
namespace {

constexpr int kSmallest = 64, kUsual = 640, kLargest = 4096;  // pixels

struct DemoOptions {
  std::string folder;
  int slim = 70;  // stronger than photo's: the difference is the point here
  int size = kUsual;
};

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
    Slimmer slimmer;
    std::vector<cv::Mat> sheets;
    for (int i = 0; i < PortraitCount(); ++i) {
      const Portrait portrait = DrawPortrait(i, options_.size);
      ColourPicture picture(portrait.picture.clone());
      const Frame420 frame = picture.Frame();
      picture.Merge(frame, slimmer.Slim(frame, {portrait.face}, options_.slim));
      sheets.push_back(CompareSheet(portrait.picture, picture.Bgr()));
      const std::string name = "portrait-" + std::to_string(i + 1);
      Write(name + "-before.png", portrait.picture);
      Write(name + "-after.png", picture.Bgr());
      Write(name + "-compare.png", sheets.back());
    }
    Write("overview.png", Tiled(sheets, 2));
    return ExitCode::Done;
  }

 private:
  std::string PathOf(const std::string& name) const {
    return (std::filesystem::path(options_.folder) / name).string();
  }

  void Write(const std::string& name, const cv::Mat& picture) {
    WriteWhole(PathOf(name), EncodePng(picture));
    Print(PathOf(name));
  }

  const DemoOptions& options_;
};

}  // namespace

void AddDemo(CLI::App& program, Action* action) {
  CLI::App* command =
      program.add_subcommand("demo", "Draw portraits and slim them: no photo is needed");
  auto options = std::make_shared<DemoOptions>();
  command->add_option("DIR", options->folder, "folder for the pictures; it is made if need be")
      ->required();
  command
      ->add_option("--slim", options->slim,
                   "how much cheeks and chin are narrowed, 0 (exactly off) to 100")
      ->check(CLI::Range(0, 100))
      ->capture_default_str();
  command->add_option("--size", options->size, "width and height of a portrait in pixels")
      ->check(CLI::Range(kSmallest, kLargest))
      ->capture_default_str();
  command->footer(kExitCodes);
  command->callback([options, action] { *action = [options] { return Demo(*options).Run(); }; });
}

}  // namespace lumora::tools
