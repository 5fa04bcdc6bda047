// SPDX-License-Identifier: Apache-2.0
// Loading each of the programs: from source and from the cache, line by line, location by location.
#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

#include "gl/cache_fixture.h"
#include "programs/program_cases.h"
#include "support/gl_faults.h"

namespace lumora::test {
namespace {

using testing::ElementsAreArray;
using testing::IsEmpty;

/// The index of a program in AllPrograms(): the table is made at start-up, as the tests are.
class ProgramLoad : public CacheTest, public testing::WithParamInterface<int> {
 protected:
  const ProgramCase& program_case() const { return AllPrograms()[static_cast<size_t>(GetParam())]; }
  bool cached() const { return program_case().cache_file != nullptr; }
  std::string cache_path() const { return directory().file(program_case().cache_file); }

  /// Lines up to the point where locations are looked up.
  Lines Built(const GLProgram& program) const {
    if (!cached()) return {};
    return CannotOpen(cache_path()) + SwitchToCompiling() + CompiledWell() + Saved(program);
  }
  Lines Announced() const {
    if (!program_case().announces_use) return {};
    return {Info(kNoTag, "[Load] use program")};
  }
};

constexpr int kCaseCount = 17;

TEST(ProgramTable, HoldsThirteenClassesAndTheFourMaskVariants) {
  EXPECT_EQ(AllPrograms().size(), static_cast<size_t>(kCaseCount));
}

TEST_P(ProgramLoad, FromSourceTellsItsStepsAndSavesUnderItsName) {
  const auto program = program_case().make();
  EXPECT_TRUE(program->Load());
  EXPECT_TRUE(LogIs(log(), Built(*program) + Announced() + Located(*program)));
  if (cached()) {
    EXPECT_THAT(NamesIn(directory().path()),
                ElementsAreArray(WithSeals({program_case().cache_file})));
    EXPECT_TRUE(ReadFile(cache_path()) == ExpectedFile(*program));
  } else {
    EXPECT_THAT(NamesIn(directory().path()), IsEmpty());
  }
}

TEST_P(ProgramLoad, ASecondTimeCompilesOnlyWhatHasNoCache) {
  program_case().make()->Load();
  log().take();
  GlFaults seen;
  const auto program = program_case().make();
  EXPECT_TRUE(program->Load());
  EXPECT_TRUE(LogIs(log(), Announced() + Located(*program)));
  EXPECT_EQ(seen.compiles, cached() ? 0 : 2);
  EXPECT_TRUE(program->Use());
}

TEST_P(ProgramLoad, LooksItsLocationsUpInOrderAndKeepsThem) {
  GlFaults seen;
  const auto program = program_case().make();
  ASSERT_TRUE(program->Load());
  std::vector<std::string> names;
  for (const Lookup& lookup : program_case().lookups) names.push_back(lookup.name);
  EXPECT_EQ(seen.looked_up, names);
  for (const Lookup& lookup : program_case().lookups) {
    const bool attribute = lookup.slot.table == Slot::Vertex || lookup.slot.table == Slot::Texture;
    const int location = attribute ? glGetAttribLocation(program->m_hProgram, lookup.name)
                                   : glGetUniformLocation(program->m_hProgram, lookup.name);
    EXPECT_GE(location, 0) << lookup.name;
    EXPECT_EQ(lookup.slot.value(*program), location) << lookup.name;
  }
}

TEST_P(ProgramLoad, MissingLocationIsReportedUnderItsLabelAndEndsTheLoad) {
  program_case().make()->Load();  // fills the cache
  const std::vector<Lookup>& lookups = program_case().lookups;
  for (size_t missing = 0; missing < lookups.size(); ++missing) {
    if (lookups[missing].label == nullptr) continue;
    SCOPED_TRACE(lookups[missing].name);
    log().take();
    GlFaults faults;
    faults.hidden_location = lookups[missing].name;
    const auto program = program_case().make();
    EXPECT_FALSE(program->Load());
    const Lines told = {
        Info(kNoTag, "[Load] get locations"),
        Error("GLProgram", "[LocIsValid] invalid %s == -1", lookups[missing].label)};
    EXPECT_TRUE(LogIs(log(), Announced() + told));
    EXPECT_EQ(faults.looked_up.size(), missing + 1) << "nothing is looked up afterwards";
    for (size_t i = 0; i < lookups.size(); ++i) {
      const int location = lookups[i].slot.value(*program);
      EXPECT_EQ(location >= 0, i < missing) << lookups[i].name;
    }
    EXPECT_TRUE(glIsProgram(program->m_hProgram)) << "it stays linked";
  }
}

TEST_P(ProgramLoad, LocationWhoseCheckLooksElsewhereMayBeMissing) {
  for (const Lookup& lookup : program_case().lookups) {
    if (lookup.label != nullptr) continue;
    SCOPED_TRACE(lookup.name);
    GlFaults faults;
    faults.hidden_location = lookup.name;
    const auto program = program_case().make();
    EXPECT_TRUE(program->Load());
    EXPECT_EQ(lookup.slot.value(*program), -1);
    EXPECT_EQ(faults.looked_up.size(), program_case().lookups.size());
    EXPECT_THAT(log().lines(6), testing::Not(testing::Contains(testing::Field(
                                    &LogLine::text, testing::HasSubstr("LocIsValid")))));
  }
}

TEST_P(ProgramLoad, SourceThatCannotBeBuiltIsReportedAndSavesNothing) {
  GlFaults faults;
  faults.programs_fail = true;
  faults.logs_are_empty = true;
  const auto program = program_case().make();
  EXPECT_FALSE(program->Load());
  const Lines head = cached() ? CannotOpen(cache_path()) + SwitchToCompiling() : Lines();
  const Lines told = {
      Error("GLProgram", "[InitShaderProgram]m_hFaceDistProgram: Could not create program."),
      Error(kNoTag, "[Load] can't load shader")};
  EXPECT_TRUE(LogIs(log(), head + told));
  EXPECT_THAT(faults.looked_up, IsEmpty());
  EXPECT_THAT(NamesIn(directory().path()), IsEmpty());
  EXPECT_FALSE(program->Use());
}

std::string CaseName(const testing::TestParamInfo<int>& one) {
  return AllPrograms()[static_cast<size_t>(one.param)].name;
}

INSTANTIATE_TEST_SUITE_P(All, ProgramLoad, testing::Range(0, kCaseCount), CaseName);

}  // namespace
}  // namespace lumora::test
