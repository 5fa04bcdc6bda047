// SPDX-License-Identifier: Apache-2.0
// What happens once in a process: the first set-up finds out how CPU and GPU can share memory.
// Every call of that, made to fail, each in a process of its own.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <optional>

#include "proofs/faults/engine_modes.h"
#include "proofs/faults/fault_layer.h"
#include "proofs/faults/fault_test.h"

namespace lumora::test {
namespace {

// What the other process tells.
struct Answer {
  CallCounts first{};   ///< calls of the first set-up
  CallCounts second{};  ///< ... of another
  bool as_good = false;
  bool quiet = false;  ///< no ERROR line, no GL error
};

Answer SetUpTwice(const std::optional<Fault>& fault) {
  const Mode& mode = AllModes()[0];
  CacheFolder cache;
  cache.prepare(Cache::Off);
  GPUBeautyFace engine;
  Answer answer;
  LogCapture log;
  {
    const FaultScope scope(fault.value_or(Fault{Call::Malloc, -1}));
    mode.set_up(engine);
    answer.first = scope.counts();
  }
  answer.quiet = log.lines(6).empty();
  const std::vector<Outcome> first = RunAll(mode, engine);
  mode.release(engine);
  {
    const FaultScope scope;
    mode.set_up(engine);
    answer.second = scope.counts();
  }
  // Nothing is slimmed without a face: the frame comes back as it was.
  answer.as_good = first[0].result == 1 && first[0].frame != PicturePlanes(mode) &&
                   first[1].result == 1 && first[1].frame == PicturePlanes(mode);
  for (const Outcome& outcome : first) answer.quiet = answer.quiet && outcome.errors.empty();
  mode.release(engine);
  answer.quiet = answer.quiet && log.lines(6).empty() && glGetError() == GL_NO_ERROR;
  return answer;
}

// The answer of a process that begins here; nothing when it ended in any other way.
std::optional<Answer> InAnotherProcess(const std::optional<Fault>& fault) {
  int ends[2];
  if (pipe(ends) != 0) return std::nullopt;
  const pid_t child = fork();
  if (child == 0) {
    const bool failed_before = testing::Test::HasFailure();
    const Answer answer = SetUpTwice(fault);
    const bool sent = write(ends[1], &answer, sizeof(answer)) == sizeof(answer);
    _exit(sent && testing::Test::HasFailure() == failed_before ? 0 : 1);
  }
  close(ends[1]);
  Answer answer;
  const bool received = child > 0 && read(ends[0], &answer, sizeof(answer)) == sizeof(answer);
  close(ends[0]);
  int status = -1;
  waitpid(child, &status, 0);
  if (!received || status != 0) return std::nullopt;
  return answer;
}

TEST(FirstSetUpFaults, AreGotRound) {
  const std::optional<Answer> good = InAnotherProcess(std::nullopt);
  ASSERT_TRUE(good.has_value());
  EXPECT_TRUE(good->as_good && good->quiet);
  size_t injected = 0;
  for (const Call call : AllCalls()) {
    // What the first set-up calls in excess comes before all that it shares with the second.
    const auto i = static_cast<size_t>(call);
    for (int number = 1; number <= good->first[i] - good->second[i]; ++number) {
      const Fault fault{call, number};
      SCOPED_TRACE(testing::Message() << fault);
      const std::optional<Answer> answer = InAnotherProcess(fault);
      ASSERT_TRUE(answer.has_value()) << "the process did not survive";
      // A driver that does not give the engine's context back leaves nothing to draw with; the
      // programs tell. Everything else has another way.
      const bool lost = call == Call::MakeCurrent && number == 2;
      EXPECT_EQ(!lost, answer->as_good);
      EXPECT_EQ(!lost, answer->quiet);
      ++injected;
    }
  }
  TellInjected(injected);
}

}  // namespace
}  // namespace lumora::test
