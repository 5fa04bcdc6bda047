// SPDX-License-Identifier: Apache-2.0
// Memory that the driver imports: waiting for it, frames that prove it, and drivers that refuse it.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <iterator>
#include <vector>

#include "lumora/platform/linux/memory_object.h"
#include "lumora/platform/linux/memory_object_rehearsal.h"
#include "platform/buffer/faulty_driver.h"
#include "platform/buffer/test_image.h"
#include "support/compare.h"

namespace lumora::test {
namespace {

using platform::BufferKind;
using platform::GraphicBuffer;
using reference::Image;

// ---- Waiting --------------------------------------------------------------------------------

class BufferWait : public BufferTest {};
INSTANTIATE_TEST_SUITE_P(Kinds, BufferWait, kBufferKinds, KindName);

// Only memory that is really shared.
class SharedMemory : public BufferTest {};
INSTANTIATE_TEST_SUITE_P(Kinds, SharedMemory, testing::Values(BufferKind::MemoryObject), KindName);

// Large enough to keep the GPU busy for a while.
constexpr int kLargeWidth = 640;
constexpr int kLargeHeight = 480;

TEST_P(BufferWait, WhatWasFlushedIsRead) {
  TestImage source(kLargeWidth, kLargeHeight);
  TestImage image(kLargeWidth, kLargeHeight);
  std::vector<unsigned char> rows(size_t{kLargeWidth} * kLargeHeight * 4);
  for (unsigned round = 0; round < 6; ++round) {
    const Image picture = Pattern(kLargeWidth, kLargeHeight, round);
    source.upload(picture);
    for (int i = 0; i < 4; ++i) Draw(source.texture(), image, kLargeWidth, kLargeHeight);
    glFlush();
    glFinish();
    if (round % 2 == 0) {
      EXPECT_TRUE(SameImage(picture, image.read())) << round;
    } else {
      EXPECT_EQ(
          0, image.buffer().readInto({0, 0, kLargeWidth, kLargeHeight}, rows.data(), kLargeWidth));
      EXPECT_TRUE(rows == picture.bytes) << round;
    }
    Clear(image, static_cast<unsigned char>(round));
  }
}

TEST_P(BufferWait, WhatIsStillSampledIsNotOverwritten) {
  TestImage source(kLargeWidth, kLargeHeight);
  TestImage image(kLargeWidth, kLargeHeight);
  Image picture = Pattern(kLargeWidth, kLargeHeight, 100);
  source.upload(picture);
  for (unsigned round = 0; round < 6; ++round) {
    for (int i = 0; i < 4; ++i) Draw(source.texture(), image, kLargeWidth, kLargeHeight);
    glFlush();
    glFinish();
    const Image next = Pattern(kLargeWidth, kLargeHeight, 101 + round);
    source.write(source.buffer().lockForOverwrite(), next);
    EXPECT_EQ(0, source.buffer().clean());
    EXPECT_TRUE(SameImage(picture, image.read())) << round;
    picture = next;
  }
}

// Every way by which the CPU gets at the bytes. What glFlush sent is waited for as well, although a
// glFinish directly after it may wait for nothing.
TEST_P(SharedMemory, IsWaitedForWithSomethingToBeFinished) {
  std::vector<unsigned char> rows(size_t{kWidth} * kHeight * 4);
  const struct {
    const char* name;
    std::function<void(GraphicBuffer&)> access;
  } kCases[] = {
      {"lock", [](GraphicBuffer& buffer) { buffer.lockPixels(); }},
      {"lock to overwrite", [](GraphicBuffer& buffer) { buffer.lockForOverwrite(); }},
      {"lock a part", [](GraphicBuffer& buffer) { buffer.lockPart(1, 1, 2, 2); }},
      {"read", [&](GraphicBuffer& buffer) { buffer.readInto(kWhole, rows.data(), kWidth); }},
      {"write", [&](GraphicBuffer& buffer) { buffer.writeFrom(kWhole, rows.data(), kWidth); }},
      {"image", [](GraphicBuffer& buffer) {  // the former texture goes
         const EGLDisplay display = eglGetCurrentDisplay();
         gl::Extensions().eglDestroyImageKHR(display, buffer.createImage(display, nullptr));
       }}};
  for (const auto& row : kCases) {
    TestImage image(kWidth, kHeight);
    Clear(image, 7);
    glFlush();
    glFinish();
    WatchFinishes();
    row.access(image.buffer());
    EXPECT_TRUE(SomethingWasFinished()) << row.name;
  }
}

// ---- The proof ------------------------------------------------------------------------------

class MemoryObject : public GlTest {
 protected:
  void SetUp() override {
    GlTest::SetUp();
    device_ = platform::CurrentMemoryDevice();
    if (device_ == nullptr) GTEST_SKIP() << "GL imports no memory here";
  }

  const platform::VulkanMemory* device_ = nullptr;
};

TEST_F(MemoryObject, FramesAreRehearsed) {
  EXPECT_TRUE(platform::RehearseFrames(*device_));
}

TEST_F(MemoryObject, FaultsAreSeenByTheRehearsal) {
  for (const DriverFault fault :
       {DriverFault::ImportRefused, DriverFault::StorageRefused, DriverFault::StorageApart,
        DriverFault::CopiesLost, DriverFault::DrawsLost, DriverFault::ScissorIgnored}) {
    const GlContext own;
    ASSERT_TRUE(own.ok());
    const FaultyDriver faulty(fault);
    EXPECT_FALSE(platform::RehearseFrames(*device_)) << static_cast<int>(fault);
  }
}

// ---- Refused memory -------------------------------------------------------------------------

size_t OpenDescriptors() {
  const std::filesystem::directory_iterator first("/proc/self/fd");
  return static_cast<size_t>(std::distance(first, std::filesystem::directory_iterator()));
}

TEST_P(SharedMemory, ThatIsRefusedIsCopiedInsteadWithoutATrace) {
  for (const DriverFault fault : {DriverFault::ImportRefused, DriverFault::StorageRefused}) {
    const size_t before = OpenDescriptors();
    for (unsigned i = 0; i < 20; ++i) {
      const FaultyDriver faulty(fault);
      TestImage image(kWidth, kHeight);
      EXPECT_EQ(static_cast<GLenum>(GL_NO_ERROR), glGetError());
      EXPECT_EQ(BufferKind::Staged, image.buffer().kind());
      image.upload(PatternImage(i));
      EXPECT_TRUE(SameImage(PatternImage(i), Shown(image)));
      Clear(image, 9);
      EXPECT_TRUE(SameImage(PlainImage(9), image.read()));
    }
    EXPECT_EQ(before, OpenDescriptors()) << static_cast<int>(fault);
  }
}

TEST_P(SharedMemory, LeavesPendingErrors) {
  glEnable(GL_NONE);
  TestImage image(kWidth, kHeight);
  EXPECT_EQ(BufferKind::MemoryObject, image.buffer().kind());
  EXPECT_EQ(static_cast<GLenum>(GL_INVALID_ENUM), glGetError());
}

}  // namespace
}  // namespace lumora::test
