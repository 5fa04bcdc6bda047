// SPDX-License-Identifier: Apache-2.0
// Every call of every operation of an engine that is set up well, made to fail.
#include <gtest/gtest.h>

#include "proofs/faults/engine_modes.h"
#include "proofs/faults/fault_layer.h"
#include "proofs/faults/fault_test.h"

namespace lumora::test {
namespace {

class StepFaults : public testing::TestWithParam<int> {
 protected:
  StepFaults() { cache_.prepare(Cache::Warm); }

  const Mode& mode() const { return AllModes()[static_cast<size_t>(GetParam())]; }

  // The calls of one step after all steps before it.
  CallCounts CountCalls(size_t step) {
    mode().set_up(engine_);
    for (size_t i = 0; i < step; ++i) RunStep(mode().steps[i], mode(), engine_);
    const FaultScope scope;
    RunStep(mode().steps[step], mode(), engine_);
    const CallCounts counts = scope.counts();
    mode().release(engine_);
    return counts;
  }

  void Inject(size_t step, const Fault& fault) {
    SCOPED_TRACE(testing::Message() << mode().steps[step].name << ": " << fault);
    mode().set_up(engine_);
    std::vector<Outcome> outcomes;
    bool told = false;
    for (size_t i = 0; i < mode().steps.size(); ++i) {
      const auto run = [&] { return RunStep(mode().steps[i], mode(), engine_); };
      if (i == step) {
        const FaultScope scope(fault);
        outcomes.push_back(run());
        EXPECT_EQ(1, scope.failed());
      } else {
        outcomes.push_back(run());
      }
      // Whatever is not as it should be is told, and the step that failed left the frame alone.
      told = told || !outcomes[i].errors.empty();
      EXPECT_TRUE(told || SameForCaller(good_[i], outcomes[i])) << mode().steps[i].name;
    }
    if (outcomes[step].result == 0) {
      EXPECT_EQ(PicturePlanes(mode()), outcomes[step].frame);
    }
    TakeGlErrors();
    // The same steps again, on the same images: the fault has passed.
    const std::vector<Outcome> again = RunAll(mode(), engine_);
    for (size_t i = 0; i < good_.size(); ++i) {
      EXPECT_TRUE(SameForCaller(good_again_[i], again[i])) << "again: " << mode().steps[i].name;
      EXPECT_TRUE(LogIs(again[i].errors, {}));
    }
    mode().release(engine_);
    EXPECT_EQ(static_cast<GLenum>(GL_NO_ERROR), glGetError());
    EXPECT_EQ(live_, LiveGlNames());
  }

  CacheFolder cache_;
  GPUBeautyFace engine_;
  std::vector<Outcome> good_;
  std::vector<Outcome> good_again_;  // passes leave filters behind: a second run is not the first
  LiveNames live_{};
};

TEST_P(StepFaults, AreToldAndPass) {
  mode().set_up(engine_);
  good_ = RunAll(mode(), engine_);
  good_again_ = RunAll(mode(), engine_);
  mode().release(engine_);
  live_ = LiveGlNames();
  size_t injected = 0;
  for (size_t step = 0; step < mode().steps.size(); ++step) {
    for (const Fault& fault : FaultsOf(CountCalls(step))) {
      Inject(step, fault);
      ++injected;
    }
  }
  TellInjected(injected);
}

// Nothing that is released has to be made first.
TEST_P(StepFaults, ReleaseMakesNothing) {
  mode().set_up(engine_);
  const FaultScope scope;
  EXPECT_EQ(1, mode().release(engine_));
  EXPECT_TRUE(FaultsOf(scope.counts()).empty());
}

INSTANTIATE_TEST_SUITE_P(Modes, StepFaults, testing::Range(0, 5),
                         [](const testing::TestParamInfo<int>& row) {
                           return AllModes()[static_cast<size_t>(row.param)].name;
                         });

}  // namespace
}  // namespace lumora::test
