// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/support/memory.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/tools/pictures.h"
#include "tools/lumora/support/failure.h"

namespace lumora::test {
namespace {

using tools::MemoryLimit;

constexpr uint64_t kMiB = uint64_t{1} << 20;

/// A system whose control groups are files in a folder.
class Groups : public testing::Test {
 protected:
  void Put(const std::string& path, const std::string& content) const {
    const std::filesystem::path file = folder_ / path;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << content;
  }
  uint64_t Limit() const { return MemoryLimit(folder_ / ""); }

  Folder folder_;
};

TEST_F(Groups, WithoutGroupsTheMachinesMemoryIsTheLimit) {
  EXPECT_LE(Limit(), static_cast<uint64_t>(sysconf(_SC_PHYS_PAGES)) *
                         static_cast<uint64_t>(sysconf(_SC_PAGESIZE)));
  EXPECT_GT(Limit(), 64 * kMiB);
  Put("proc/self/cgroup", "0::/user/session\n");
  Put("sys/fs/cgroup/user/session/memory.max", "max\n");
  EXPECT_EQ(Limit(), MemoryLimit(folder_ / "nothing here"));
}

TEST_F(Groups, TheLeastLimitOfAllGroupsAroundCounts) {
  Put("proc/self/cgroup", "0::/user/session/app\n");
  Put("sys/fs/cgroup/user/session/app/memory.max", "50331648\n");
  EXPECT_EQ(Limit(), 48 * kMiB);
  Put("sys/fs/cgroup/user/memory.max", "33554432\n");
  EXPECT_EQ(Limit(), 32 * kMiB);
  Put("sys/fs/cgroup/user/session/memory.max", "max\n");
  EXPECT_EQ(Limit(), 32 * kMiB);
  Put("sys/fs/cgroup/memory.max", "16777216\n");  // of a container, which sees its own as the root
  EXPECT_EQ(Limit(), 16 * kMiB);
}

TEST_F(Groups, TheOlderHierarchyCountsToo) {
  Put("proc/self/cgroup", "7:cpu,cpuacct:/here\n4:memory:/box/inner\n0::/\n");
  Put("sys/fs/cgroup/memory/box/inner/memory.limit_in_bytes", "9223372036854771712\n");
  const uint64_t machine = MemoryLimit(folder_ / "nothing here");
  EXPECT_EQ(Limit(), machine);
  Put("sys/fs/cgroup/memory/box/memory.limit_in_bytes", "25165824\n");
  EXPECT_EQ(Limit(), 24 * kMiB);
}

TEST_F(Groups, FilesThatMakeNoSenseAreNoLimit) {
  for (const char* text : {"", "0", "::", "0:memory", "a:b:c", "0::/../..", "4:memory:"}) {
    Put("proc/self/cgroup", text);
    EXPECT_GT(Limit(), 64 * kMiB) << text;
  }
}

TEST(Memory, HalfOfItMayBeAskedFor) {
  const uint64_t limit = MemoryLimit();
  EXPECT_NO_THROW(tools::CheckMemory(0, "in.png"));
  EXPECT_NO_THROW(tools::CheckMemory(limit / 2, "in.png"));
  EXPECT_THROW(tools::CheckMemory(limit / 2 + 1, "in.png"), tools::Failure);
  EXPECT_THROW(tools::CheckMemory(limit, "in.png"), tools::Failure);
}

TEST(Memory, ThePeakIsWhatThisProgramHeld) {
  constexpr size_t kHeld = 64 * kMiB;
  const double before = tools::PeakMemory();
  EXPECT_GT(before, 1);
  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  EXPECT_LE(before, static_cast<double>(usage.ru_maxrss) / 1024 + 1);
  const auto room = static_cast<size_t>(before) * kMiB + kHeld;
  const std::vector<char> held(room, 'x');
  EXPECT_GT(tools::PeakMemory(), before + static_cast<double>(kHeld / kMiB) - 1);
}

}  // namespace
}  // namespace lumora::test
