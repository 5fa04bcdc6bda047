// SPDX-License-Identifier: Apache-2.0
// Every call of every set-up, made to fail: what is told, what works afterwards, and that another
// set-up makes it good.
#include <gtest/gtest.h>

#include <set>
#include <tuple>

#include "proofs/faults/engine_modes.h"
#include "proofs/faults/fault_layer.h"
#include "proofs/faults/fault_test.h"

namespace lumora::test {
namespace {

using Setting = std::tuple<int, Cache>;

class SetUpFaults : public testing::TestWithParam<Setting> {
 protected:
  const Mode& mode() const { return AllModes()[static_cast<size_t>(std::get<0>(GetParam()))]; }
  Cache cache() const { return std::get<1>(GetParam()); }

  // The set-up's ERROR lines.
  std::vector<LogLine> SetUpEngine(GPUBeautyFace& engine) {
    LogCapture log;
    EXPECT_EQ(1, mode().set_up(engine)) << "set-ups always say 1";
    return log.lines(6);
  }

  std::vector<LogLine> FaultySetUp(GPUBeautyFace& engine, const Fault& fault) {
    cache_.prepare(cache());
    const FaultScope scope(fault);
    std::vector<LogLine> errors = SetUpEngine(engine);
    EXPECT_EQ(1, scope.failed());
    EXPECT_TRUE(cache_.holds_whole_files());
    return errors;
  }

  // Without a fault: what every later set-up has to come back to.
  void SetUp() override {
    cache_.prepare(Cache::Warm);
    SetUpEngine(engine_);  // fills the cache, and finds out how memory can be shared
    mode().release(engine_);
    cache_.prepare(cache());
    {
      const FaultScope scope;
      SetUpEngine(engine_);
      counts_ = scope.counts();
    }
    staged_ = engine_.m_pYYYYImage->m_spBuffer->kind() == lumora::platform::BufferKind::Staged;
    good_ = RunAll(mode(), engine_);
    mode().release(engine_);
    live_ = LiveGlNames();
  }

  void ExpectAsGood(const std::vector<Outcome>& outcomes) {
    for (size_t i = 0; i < good_.size(); ++i) {
      SCOPED_TRACE(mode().steps[i].name);
      EXPECT_TRUE(SameForCaller(good_[i], outcomes[i]));
      EXPECT_TRUE(LogIs(outcomes[i].errors, {}));
    }
  }

  // An outcome that is not as it should be has been told, by the set-up or by the step.
  void ExpectToldOrGood(const std::vector<Outcome>& outcomes, bool told) {
    for (size_t i = 0; i < good_.size(); ++i) {
      SCOPED_TRACE(mode().steps[i].name);
      told = told || !outcomes[i].errors.empty();
      EXPECT_TRUE(told || SameForCaller(good_[i], outcomes[i]));
    }
  }

  void Inject(const Parts& parts, const Fault& fault) {
    SCOPED_TRACE(testing::Message() << fault);
    const Consequence expected = Predict(parts, fault);
    const std::vector<LogLine> errors = FaultySetUp(engine_, fault);
    EXPECT_TRUE(LogIs(errors, expected.errors));
    const std::vector<Outcome> outcomes = RunAll(mode(), engine_);
    if (expected.after == After::Works) ExpectAsGood(outcomes);
    if (expected.after == After::Broken) ExpectToldOrGood(outcomes, !errors.empty());
    EXPECT_EQ(1, mode().release(engine_));
    EXPECT_EQ(live_, LiveGlNames());

    TakeGlErrors();
    cache_.prepare(Cache::Warm);
    EXPECT_TRUE(LogIs(SetUpEngine(engine_), {}));
    if (expected.after != After::Works) ExpectAsGood(RunAll(mode(), engine_));
    EXPECT_EQ(1, mode().release(engine_));
    EXPECT_EQ(static_cast<GLenum>(GL_NO_ERROR), glGetError());
    EXPECT_EQ(live_, LiveGlNames());
  }

  // The destructor of an engine that nobody released.
  void DestroyAtOnce(const Fault& fault) {
    SCOPED_TRACE(testing::Message() << fault << ", destroyed at once");
    const MeantLeaks leaks;  // an engine's end releases what previews make, not what captures do
    {
      GPUBeautyFace other;
      FaultySetUp(other, fault);
    }
    eglMakeCurrent(engine_.m_eglDisplay, engine_.m_eglSurface, engine_.m_eglSurface,
                   engine_.m_eglContext);
  }

  GPUBeautyFace engine_;
  CacheFolder cache_;
  CallCounts counts_{};
  bool staged_ = false;
  LiveNames live_{};
  std::vector<Outcome> good_;
};

// Whether a cold cache makes a difference to the call: images do not depend on it, and programs
// are looked through in the same way.
bool DependsOnCache(Call call) {
  static const std::set<Call> kDepend = {
      Call::CreateShader, Call::CompileShader, Call::CompileQuietly, Call::CreateProgram,
      Call::LinkProgram,  Call::TakeBinary,    Call::NewArray,       Call::Open,
      Call::Stat,         Call::MakeDirectory, Call::MakeTemporary,  Call::Write,
      Call::Close,        Call::Rename};
  return kDepend.count(call) != 0;
}

TEST_P(SetUpFaults, AreToldAndMadeGood) {
  const Parts parts = PartsOf(mode(), cache(), cache_.directory(cache()), staged_);
  for (const Call call : AllCalls()) {
    const auto i = static_cast<size_t>(call);
    ASSERT_EQ(CountsOf(parts)[i], counts_[i]) << call << ": the model of the set-up is not right";
  }
  size_t injected = 0;
  for (const Fault& fault : FaultsOf(counts_)) {
    if (cache() == Cache::Cold && !DependsOnCache(fault.call)) continue;
    Inject(parts, fault);
    DestroyAtOnce(fault);
    injected += 2;
  }
  EXPECT_GT(injected, 100u);
  TellInjected(injected);
}

// A step has to do something for its outcome to tell anything.
TEST_P(SetUpFaults, StepsWorkWithoutThem) {
  bool changed = false;
  for (const Outcome& outcome : good_) {
    EXPECT_EQ(1, outcome.result);
    EXPECT_TRUE(LogIs(outcome.errors, {}));
    changed = changed || outcome.frame != PicturePlanes(mode());
  }
  EXPECT_TRUE(changed);
}

std::string SettingName(const testing::TestParamInfo<Setting>& row) {
  return std::string(AllModes()[static_cast<size_t>(std::get<0>(row.param))].name) +
         NameOf(std::get<1>(row.param));
}

// Modes by their index: the table is made at start-up, as the tests are. Large captures make the
// programs of smaller ones.
const Setting kSettings[] = {{0, Cache::Cold}, {0, Cache::Warm}, {1, Cache::Cold},
                             {1, Cache::Warm}, {2, Cache::Cold}, {2, Cache::Warm},
                             {3, Cache::Cold}, {3, Cache::Warm}, {4, Cache::Warm}};
INSTANTIATE_TEST_SUITE_P(Modes, SetUpFaults, testing::ValuesIn(kSettings), SettingName);

}  // namespace
}  // namespace lumora::test
