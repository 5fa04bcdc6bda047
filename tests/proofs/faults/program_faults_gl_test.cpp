// SPDX-License-Identifier: Apache-2.0
// Every call of the Load of each program, made to fail.
#include <gtest/gtest.h>

#include <memory>

#include "lumora/gl/gl_helpers.h"
#include "programs/program_cases.h"
#include "proofs/faults/fault_layer.h"
#include "proofs/faults/fault_test.h"
#include "support/gl_test.h"

namespace lumora::test {
namespace {

class ProgramFaults : public GlTest, public testing::WithParamInterface<Cache> {
 protected:
  // Loads the program; its result and ERROR lines.
  struct Loaded {
    bool result;
    std::vector<LogLine> errors;
  };
  static Loaded Load(GLProgram& program) {
    LogCapture log;
    const bool result = program.Load();
    return {result, log.lines(6)};
  }

  void InjectAll(const ProgramCase& one) {
    SCOPED_TRACE(one.name);
    const Parts parts = {LoneProgram(one.name, GetParam(), cache_.directory(GetParam()))};
    cache_.prepare(Cache::Warm);
    // Fills the warm cache; a driver may refuse the first binary of its process.
    for (int i = 0; i < 2; ++i) Load(*one.make());
    cache_.prepare(GetParam());
    CallCounts counts{};
    {
      const FaultScope scope;
      Load(*one.make());
      counts = scope.counts();
    }
    ASSERT_EQ(CountsOf(parts), counts) << "the model of the load is not right";
    for (const Fault& fault : FaultsOf(counts)) Inject(one, parts, fault);
    injected_ += FaultsOf(counts).size();
  }

  void Inject(const ProgramCase& one, const Parts& parts, const Fault& fault) {
    SCOPED_TRACE(testing::Message() << fault);
    const Consequence expected = Predict(parts, fault);
    cache_.prepare(GetParam());
    const std::unique_ptr<GLProgram> program = one.make();
    {
      const FaultScope scope(fault);
      const Loaded loaded = Load(*program);
      EXPECT_EQ(expected.after != After::Broken, loaded.result);
      EXPECT_TRUE(LogIs(loaded.errors, expected.errors));
      EXPECT_EQ(1, scope.failed());
    }
    EXPECT_TRUE(cache_.holds_whole_files());
    {
      LogCapture log;
      // A program with a missing location stays linked.
      const bool located = fault.call == Call::FindAttribute || fault.call == Call::FindUniform;
      EXPECT_EQ(located || expected.after != After::Broken, program->Use());
    }
    TakeGlErrors();
    // The same object, once more: a cache that the fault left behind does no harm.
    cache_.prepare(Cache::Warm);
    const Loaded again = Load(*program);
    EXPECT_TRUE(again.result);
    EXPECT_TRUE(LogIs(again.errors, {}));
    EXPECT_TRUE(program->Use());
    EXPECT_EQ(static_cast<GLenum>(GL_NO_ERROR), glGetError());
  }

  CacheFolder cache_;
  size_t injected_ = 0;
};

TEST_P(ProgramFaults, AreToldAndMadeGood) {
  for (const ProgramCase& one : AllPrograms()) InjectAll(one);
  EXPECT_GT(injected_, 200u);
  TellInjected(injected_);
}

INSTANTIATE_TEST_SUITE_P(Caches, ProgramFaults,
                         testing::Values(Cache::Off, Cache::Cold, Cache::Warm),
                         [](const testing::TestParamInfo<Cache>& row) {
                           return NameOf(row.param);
                         });

using HelperFaults = GlTest;

constexpr char kVertex[] = "void main() { gl_Position = vec4(0.0); }";
constexpr char kFragment[] = "void main() { gl_FragColor = vec4(0.0); }";

// Without memory for the info log its text is left out, and nothing else.
TEST_F(HelperFaults, InfoLogsWithoutMemoryAreLeftOut) {
  for (const Call call : {Call::CompileShader, Call::LinkProgram}) {
    SCOPED_TRACE(NameOf(call));
    const FaultScope scope({{call, 1}, {Call::Calloc, 1}});
    LogCapture log;
    EXPECT_EQ(0u, createProgram(kVertex, kFragment));
    EXPECT_TRUE(LogIs(log.lines(6), {}));
    EXPECT_EQ(2, scope.failed());
  }
  EXPECT_NE(0u, createProgram(kVertex, kFragment));
}

TEST_F(HelperFaults, PicturesWithoutMemoryAreNull) {
  const FaultScope scope(Fault{Call::Malloc, 1});
  EXPECT_EQ(nullptr, GenTexture(4, 4, 0));
  EXPECT_EQ(1, scope.failed());
}

}  // namespace
}  // namespace lumora::test
