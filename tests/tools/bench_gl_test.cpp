// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <tuple>

#include "tests/tools/process.h"

namespace lumora::test {
namespace {

TEST(Bench, MeasuresEveryEffectAtEverySize) {
  const Result result = RunLumora({"bench", "--seconds", "0", "--largest", "12", "--json"});
  ASSERT_EQ(result.exit_code, 0) << result.err;
  const auto report = nlohmann::json::parse(result.out);
  const bool on_gl = TestDevice() == "gl";
  EXPECT_EQ(report.at("renderer").get<std::string>().empty(), !on_gl);
  EXPECT_EQ(report.at("simd").get<std::string>().empty(), on_gl);
  EXPECT_EQ(report.at("threads"), on_gl ? 0 : 1);

  using Row = std::tuple<std::string, int, std::string>;
  std::set<Row> expected, found;
  for (const int width : {640, 1280, 1920}) {
    for (const char* effect : {"slimming", "whitening", "both"}) {
      expected.insert({"preview", width, effect});
    }
  }
  for (const char* effect : {"slimming", "whitening", "both"}) {
    expected.insert({"capture", 4000, effect});
  }
  for (const auto& row : report.at("results")) {
    SCOPED_TRACE(row.dump());
    found.insert({row.at("chain").get<std::string>(), row.at("width").get<int>(),
                  row.at("effect").get<std::string>()});
    EXPECT_EQ(row.at("frames").get<int>(), 2);  // the first one and one more
    const auto median = row.at("median_ms").get<double>();
    EXPECT_GT(median, 0);
    EXPECT_NEAR(row.at("frames_per_second").get<double>() * median, 1e3, 1e-3);
    // The engine's share is part of the whole, of the last frame at least.
    EXPECT_GT(row.at("engine_ms").get<double>(), 0);
  }
  EXPECT_EQ(found, expected);
  EXPECT_EQ(report.at("results").size(), expected.size());
}

TEST(Bench, TellsPeople) {
  const Result result = RunLumora({"bench", "--seconds", "0", "--largest", "0"});
  ASSERT_EQ(result.exit_code, 0) << result.err;
  EXPECT_THAT(result.out, testing::HasSubstr("preview  1280 x 720   whitening"));
  EXPECT_THAT(result.out, testing::Not(testing::HasSubstr("capture")));
  EXPECT_THAT(result.out, testing::HasSubstr("frames/s"));
  EXPECT_EQ(Lines(result.out), 1 + 3 * 3);
}

TEST(Bench, RefusesNonsense) {
  EXPECT_EQ(RunLumora({"bench", "--seconds", "-1"}).exit_code, 2);
  EXPECT_EQ(RunLumora({"bench", "--largest", "49"}).exit_code, 2);
}

}  // namespace
}  // namespace lumora::test
