// SPDX-License-Identifier: Apache-2.0
// What the command computes with: as it is told, and told.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/tools/clips.h"
#include "tests/tools/pictures.h"
#include "tests/tools/process.h"

namespace lumora::test {
namespace {

using testing::HasSubstr;

using Words = std::vector<std::string>;

/// A portrait and a clip of it, and the command lines that draw them.
class Devices : public testing::Test {
 protected:
  Words Photo() const {
    return {"photo", in_, "-o", folder_ / "out.png", "--slim", "50", "--faces", faces_};
  }
  Words Video() const {
    return {"video", clip_, "-o", folder_ / "out.y4m", "--slim", "50", "--faces", lines_};
  }
  Words Rectify() const { return {"rectify", in_, "-o", folder_ / "out.png", "--degree", "8"}; }
  Words Convert() const { return {"convert", in_, "-o", folder_ / "out.png", "--to", "hsi"}; }

  static Words With(Words words, const Words& more) {
    words.insert(words.end(), more.begin(), more.end());
    return words;
  }

  const Folder folder_;
  const Sitter sitter_ = PortraitOf(160, 120);
  const Scene scene_ = MovingPortrait(160, 120, 2);
  const std::string in_ = folder_.Put("in.png", PngOf(sitter_.picture));
  const std::string faces_ = folder_.Put("faces.json", sitter_.faces_json);
  const std::string clip_ = folder_.Put("in.y4m", scene_.clip.Text());
  const std::string lines_ = folder_.Put("faces.jsonl", scene_.faces);
};

TEST_F(Devices, OneThatThereIsNotIsAUsageError) {
  const std::vector<std::string> before = folder_.Names();
  const Words commands[] = {Photo(),   Video(),   Rectify(), Convert(), {"demo", folder_ / ""},
                            {"bench"}, {"doctor"}};
  for (const Words& words : commands) {
    SCOPED_TRACE(words.front());
    const Result option = RunLumora(With(words, {"--device", "gpu"}));
    EXPECT_EQ(option.exit_code, 2);
    EXPECT_THAT(option.err, HasSubstr("--device: gpu not in {auto,cpu,gl}"));
    EXPECT_EQ(Lines(option.err), 1) << option.err;
    EXPECT_EQ(folder_.Names(), before);
    const Result setting = RunLumora(words, {}, {{{"LUMORA_DEVICE", "gpu"}}});
    EXPECT_EQ(setting.exit_code, 2);
    EXPECT_THAT(setting.err,
                HasSubstr("LUMORA_DEVICE is \"gpu\", but it has to be auto, gl or cpu"));
    EXPECT_EQ(Lines(setting.err), 1) << setting.err;
  }
}

TEST_F(Devices, ReportsTellWhichOneWorked) {
  for (const Words& words :
       {Photo(), Video(), Rectify(), Words{"bench", "--seconds", "0", "--largest", "0"}}) {
    SCOPED_TRACE(words.front());
    const Result result = RunLumora(With(words, {"--json"}));
    ASSERT_EQ(result.exit_code, 0) << result.err;
    EXPECT_EQ(nlohmann::json::parse(result.out).at("device"), TestDevice());
  }
}

TEST_F(Devices, NoneWorksWhereNothingIsToBeDrawn) {
  for (const Words& words : {Photo(), Video()}) {
    SCOPED_TRACE(words.front());
    Words off = words;
    off[5] = "0";  // the scale
    const Result result = RunLumora(With(off, {"--json"}));
    ASSERT_EQ(result.exit_code, 0) << result.err;
    EXPECT_EQ(nlohmann::json::parse(result.out).at("device"), nullptr);
  }
}

}  // namespace
}  // namespace lumora::test
