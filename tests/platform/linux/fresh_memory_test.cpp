// SPDX-License-Identifier: Apache-2.0
// Fresh memory reads as zeros, whatever its file tells, and stays untouched where it is zero.
#include "lumora/platform/linux/fresh_memory.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

namespace {

using lumora::platform::ZeroFreshMemory;

size_t PageSize() {
  return static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

constexpr size_t kPages = 40;

// A file in memory, mapped whole, that begins with a driver's own bytes as drivers' files do.
class MappedFile {
 public:
  MappedFile() : descriptor_(memfd_create("fresh", MFD_CLOEXEC)) {
    EXPECT_EQ(ftruncate(descriptor_, static_cast<off_t>(bytes())), 0);
    whole_ = static_cast<unsigned char*>(
        mmap(nullptr, bytes(), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor_, 0));
    std::memset(whole_, 0xdd, kHead);
  }
  ~MappedFile() {
    munmap(whole_, bytes());
    close(descriptor_);
  }
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  int descriptor() const { return descriptor_; }
  unsigned char* memory() const { return whole_ + kHead; }
  static size_t size() { return bytes() - kHead; }
  unsigned char* head() const { return whole_; }

  bool has_only_zeros() const {
    return std::all_of(memory(), memory() + size(), [](unsigned char byte) { return byte == 0; });
  }
  // Pages of the file that somebody wrote to.
  size_t pages() const {
    size_t count = 0;
    for (size_t page = 0; page < kPages; ++page) {
      const auto start = static_cast<off_t>(page * PageSize());
      count += lseek(descriptor_, start, SEEK_DATA) == start ? 1 : 0;
    }
    return count;
  }

  static constexpr size_t kHead = 64;

 private:
  static size_t bytes() { return kPages * PageSize(); }
  int descriptor_;
  unsigned char* whole_ = nullptr;
};

TEST(FreshMemory, HolesAreNotWrittenTo) {
  const MappedFile file;
  ZeroFreshMemory(file.memory(), MappedFile::size(), file.descriptor());
  EXPECT_LE(file.pages(), 4u);
  EXPECT_TRUE(file.has_only_zeros());
  EXPECT_EQ(file.head()[MappedFile::kHead - 1], 0xdd);
}

TEST(FreshMemory, UsedPagesAreZeroed) {
  for (const size_t page : {size_t{0}, size_t{1}, kPages / 2, kPages - 1}) {
    const MappedFile file;
    file.head()[page * PageSize() + MappedFile::kHead] = 1;
    ZeroFreshMemory(file.memory(), MappedFile::size(), file.descriptor());
    EXPECT_TRUE(file.has_only_zeros()) << page;
  }
}

// A file that says nothing about the memory: another one, one that is too small, none at all.
TEST(FreshMemory, OnlyTheFileOfTheMemoryIsBelieved) {
  const MappedFile other;
  const int small = memfd_create("small", MFD_CLOEXEC);
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  for (const int descriptor : {other.descriptor(), small, ends[0], -1}) {
    const MappedFile file;
    std::memset(file.memory(), 7, MappedFile::size());
    ZeroFreshMemory(file.memory(), MappedFile::size(), descriptor);
    EXPECT_TRUE(file.has_only_zeros()) << descriptor;
  }
  for (const int descriptor : {small, ends[0], ends[1]}) close(descriptor);
}

// The last pages are a file's, the others are not.
TEST(FreshMemory, AFileOfAPartIsNotBelieved) {
  constexpr size_t kFilePages = 3;
  const size_t size = kPages * PageSize(), file_size = kFilePages * PageSize();
  const int part = memfd_create("part", MFD_CLOEXEC);
  ASSERT_EQ(ftruncate(part, static_cast<off_t>(file_size)), 0);
  auto* const memory = static_cast<unsigned char*>(
      mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
  std::memset(memory, 7, size - file_size);
  ASSERT_EQ(mmap(memory + size - file_size, file_size, PROT_READ | PROT_WRITE,
                 MAP_SHARED | MAP_FIXED, part, 0),
            memory + size - file_size);
  ZeroFreshMemory(memory, size, part);
  EXPECT_TRUE(std::all_of(memory, memory + size, [](unsigned char byte) { return byte == 0; }));
  munmap(memory, size);
  close(part);
}

TEST(FreshMemory, LittleMemoryIsZeroedWhole) {
  for (const size_t size : {size_t{1}, PageSize(), 2 * PageSize()}) {
    const MappedFile file;
    std::memset(file.memory(), 7, size + 1);
    ZeroFreshMemory(file.memory(), size, file.descriptor());
    EXPECT_EQ(file.memory()[0], 0);
    EXPECT_EQ(file.memory()[size - 1], 0);
    EXPECT_EQ(file.memory()[size], 7);
  }
}

}  // namespace
