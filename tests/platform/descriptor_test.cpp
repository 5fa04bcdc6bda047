// SPDX-License-Identifier: Apache-2.0
// Descriptors, the entries of directories that are held open, and regular files.
#include "lumora/platform/descriptor.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <utility>

#include "lumora/platform/regular_file.h"
#include "support/scoped.h"

namespace lumora::platform {
namespace {

namespace fs = std::filesystem;
using test::TempDirectory;

bool IsOpenNow(int fd) {
  return ::fcntl(fd, F_GETFD) >= 0;
}

std::set<std::string> EntriesOf(int directory) {
  std::set<std::string> names;
  ForEachEntry(directory, [&](const char* name) { names.insert(name); });
  return names;
}

TEST(Descriptors, CloseWithTheirLife) {
  int fd = -1;
  {
    const Descriptor file(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    ASSERT_TRUE(file.IsOpen());
    fd = file.Get();
    EXPECT_TRUE(IsOpenNow(fd));
  }
  EXPECT_FALSE(IsOpenNow(fd));
}

TEST(Descriptors, AreClosedByWhoeverHoldsThemLast) {
  Descriptor first(::open("/dev/null", O_RDONLY | O_CLOEXEC));
  const int fd = first.Get();
  Descriptor second(std::move(first));
  EXPECT_EQ(fd, second.Release());
  EXPECT_FALSE(second.IsOpen());
  EXPECT_TRUE(IsOpenNow(fd));

  second.Take(fd);
  EXPECT_TRUE(second.Close());
  EXPECT_FALSE(second.IsOpen());
  EXPECT_FALSE(IsOpenNow(fd));
}

TEST(Entries, AreThoseOfTheDirectoryThatIsHeldWhateverItsPathSays) {
  const TempDirectory temporary;
  const std::string path = temporary.file("held");
  fs::create_directory(path);
  test::WriteFile(path + "/one", "bytes");
  const Descriptor held(::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  fs::rename(path, temporary.file("elsewhere"));
  fs::create_directory(path);
  test::WriteFile(path + "/stranger", "bytes");
  EXPECT_EQ((std::set<std::string>{".", "..", "one"}), EntriesOf(held.Get()));
  EXPECT_EQ((std::set<std::string>{".", "..", "one"}), EntriesOf(held.Get())) << "and once more";
}

TEST(Entries, AreNoneWhereThereIsNoDirectory) {
  const Descriptor file(::open("/dev/null", O_RDONLY | O_CLOEXEC));
  EXPECT_TRUE(EntriesOf(file.Get()).empty());
  EXPECT_TRUE(EntriesOf(-1).empty());
}

TEST(RegularFiles, AreTheOnlyOnesThatAreOpened) {
  const TempDirectory temporary;
  const Descriptor folder(::open(temporary.file("").c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  test::WriteFile(temporary.file("file"), "bytes");
  fs::create_directory(temporary.file("directory"));
  fs::create_symlink("file", temporary.file("link"));
  ASSERT_EQ(0, ::mkfifo(temporary.file("pipe").c_str(), 0600));

  struct stat status = {};
  EXPECT_TRUE(OpenRegularAt(folder.Get(), "file", 0, &status).IsOpen());
  EXPECT_EQ(5, status.st_size);
  EXPECT_TRUE(OpenRegularAt(folder.Get(), "link", 0, &status).IsOpen());
  EXPECT_FALSE(OpenRegularAt(folder.Get(), "link", O_NOFOLLOW, &status).IsOpen());
  for (const char* name : {"directory", "pipe", "nothing"}) {
    EXPECT_FALSE(OpenRegularAt(folder.Get(), name, 0, &status).IsOpen()) << name;
  }
}

TEST(Owners, AreUsOrRootAndNobodyElseMayWrite) {
  struct stat status = {};
  for (const uid_t owner : {::geteuid(), uid_t{0}}) {
    status.st_uid = owner;
    for (const mode_t mode : {0600U, 0644U, 0755U}) {
      status.st_mode = S_IFREG | mode;
      EXPECT_TRUE(IsOnlyOurs(status)) << owner << " " << mode;
    }
    for (const mode_t mode : {0660U, 0622U, 0777U}) {
      status.st_mode = S_IFREG | mode;
      EXPECT_FALSE(IsOnlyOurs(status)) << owner << " " << mode;
    }
  }
  status.st_uid = ::geteuid() + 1;
  status.st_mode = S_IFREG | 0600;
  EXPECT_FALSE(IsOnlyOurs(status));
}

}  // namespace
}  // namespace lumora::platform
