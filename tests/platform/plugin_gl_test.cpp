// SPDX-License-Identifier: Apache-2.0
// Plug-ins that come and go, and the library with them.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>

namespace lumora::test {
namespace {

int EntriesOf(const char* folder) {
  const std::filesystem::directory_iterator first(folder);
  return static_cast<int>(std::distance(first, std::filesystem::directory_iterator()));
}

struct Held {
  int threads = EntriesOf("/proc/self/task");
  int descriptors = EntriesOf("/proc/self/fd");
};

// A plug-in, loaded for the life of the object.
class Plugin {
 public:
  explicit Plugin(const char* path) : handle_(dlopen(path, RTLD_NOW | RTLD_LOCAL)) {
    EXPECT_NE(nullptr, handle_) << dlerror();
  }
  ~Plugin() { EXPECT_EQ(0, dlclose(handle_)); }
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;

  void work() const {
    auto* const function = reinterpret_cast<int (*)()>(dlsym(handle_, "Work"));
    ASSERT_NE(nullptr, function);
    EXPECT_EQ(1, function());
  }

 private:
  void* const handle_;
};

class Plugins : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(Libraries, Plugins, testing::Values(LUMORA_TEST_PLUGINS),
                         [](const auto& plugin) {
                           return std::filesystem::path(plugin.param).stem().string();
                         });

// Drivers keep something of each display that ends; no more may be kept when the plug-in goes too.
TEST_P(Plugins, LeaveNothingMoreEachTime) {
  constexpr int kRounds = 5;
  const auto visit = [] { Plugin(GetParam()).work(); };
  for (int i = 0; i < 2; ++i) visit();
  const Held before;
  {
    const Plugin kept(GetParam());
    for (int i = 0; i < kRounds; ++i) kept.work();
  }
  const Held between;
  for (int i = 0; i < kRounds; ++i) visit();
  const Held after;
  EXPECT_EQ(nullptr, dlopen(GetParam(), RTLD_NOW | RTLD_NOLOAD)) << "the plug-in itself is gone";
  EXPECT_LE(after.threads - between.threads, between.threads - before.threads);
  EXPECT_LE(after.descriptors - between.descriptors, between.descriptors - before.descriptors);
}

}  // namespace
}  // namespace lumora::test
