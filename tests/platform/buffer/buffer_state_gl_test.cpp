// SPDX-License-Identifier: Apache-2.0
// Which side of a buffer is newer, with real draws; and what transfers leave alone.
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <thread>
#include <vector>

#include "platform/buffer/test_image.h"
#include "support/compare.h"

namespace lumora::test {
namespace {

using platform::NoteColorAttachment;
using reference::Image;

class BufferState : public BufferTest {};
INSTANTIATE_TEST_SUITE_P(Kinds, BufferState, kBufferKinds, KindName);

TEST_P(BufferState, UnlockAfterRenderingKeepsWhatWasRendered) {
  TestImage image(kWidth, kHeight);
  image.upload(PatternImage(1));
  Clear(image, 60);
  EXPECT_EQ(image.buffer().clean(), 0);
  EXPECT_TRUE(SameImage(PlainImage(60), Shown(image)));
  EXPECT_TRUE(SameImage(PlainImage(60), image.read()));
}

TEST_P(BufferState, DrawsOverUnlockedWritesWin) {
  TestImage image(kWidth, kHeight);
  image.write(image.buffer().lockPixels(), PatternImage(1));
  Clear(image, 61);
  EXPECT_EQ(image.buffer().clean(), 0);
  EXPECT_TRUE(SameImage(PlainImage(61), image.read()));
}

TEST_P(BufferState, WritesThroughAKeptAddressAreShownAfterUnlock) {
  for (const bool attached : {false, true}) {
    TestImage image(kWidth, kHeight);
    if (attached) NoteColorAttachment(image.texture());
    image.upload(PatternImage(1));
    image.write(static_cast<unsigned char*>(image.buffer().handle().base), PatternImage(2));
    EXPECT_EQ(image.buffer().clean(), 0);
    EXPECT_TRUE(SameImage(PatternImage(2), Shown(image))) << "attached: " << attached;
  }
}

TEST_P(BufferState, RawDrawsIntoAttachedImagesAreSeenByLock) {
  TestImage image(kWidth, kHeight);
  NoteColorAttachment(image.texture());
  for (unsigned char level = 70; level < 76; ++level) {
    Clear(image, level, Notice::Silent);
    if (level % 2 == 0) {
      EXPECT_EQ(image.buffer().clean(), 0);
    }
    EXPECT_TRUE(SameImage(PlainImage(level), image.read()));
  }
  image.upload(PatternImage(5));
  EXPECT_TRUE(SameImage(PatternImage(5), Shown(image)));
  Clear(image, 77, Notice::Silent);
  EXPECT_TRUE(SameImage(PlainImage(77), image.read()));
}

TEST_P(BufferState, WritesOfSeveralLocksIntoAttachedImagesAreKept) {
  TestImage image(kWidth, kHeight);
  NoteColorAttachment(image.texture());
  Clear(image, 80, Notice::Silent);
  image.write(image.buffer().lockPixels(), PatternImage(6));
  EXPECT_TRUE(SameImage(PatternImage(6), image.read()));
  EXPECT_EQ(image.buffer().clean(), 0);
  EXPECT_TRUE(SameImage(PatternImage(6), Shown(image)));
}

TEST_P(BufferState, DrawsAreNoticedByTheAttachmentOfTheBoundFramebuffer) {
  TestImage drawn(kWidth, kHeight);
  TestImage other(kWidth, kHeight);
  drawn.upload(PatternImage(1));
  other.upload(PatternImage(2));
  Clear(drawn, 90);
  // Nothing was drawn into the other one: what the CPU writes there is newer.
  other.write(other.buffer().lockPixels(), PatternImage(3));
  EXPECT_EQ(other.buffer().clean(), 0);
  EXPECT_TRUE(SameImage(PatternImage(3), Shown(other)));
  EXPECT_TRUE(SameImage(PlainImage(90), drawn.read()));
}

TEST_P(BufferState, ANewTextureOfTheSameNameBelongsToItsNewBuffer) {
  TestImage former(kWidth, kHeight);
  TestImage image(kWidth, kHeight);
  former.buffer().attachTexture(image.texture());
  image.buffer().attachTexture(image.texture());
  Clear(image, 91);
  EXPECT_TRUE(SameImage(PlainImage(91), image.read()));
}

TEST_P(BufferState, DetachedTexturesAreForgotten) {
  TestImage image(kWidth, kHeight);
  image.buffer().detachTexture();
  Clear(image, 92);
  glFinish();  // nobody else knows that there is something to wait for
  image.upload(PatternImage(7));
  EXPECT_TRUE(SameImage(PatternImage(7), Shown(image)));
}

TEST_P(BufferState, NoticesLeaveNoErrorWhateverIsBound) {
  GLuint framebuffer = 0;
  GLuint renderbuffer = 0;
  glGenFramebuffers(1, &framebuffer);
  glGenRenderbuffers(1, &renderbuffer);
  glBindFramebuffer(GL_FRAMEBUFFER, 0);
  platform::BeforeDraw();
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  platform::BeforeDraw();
  glBindRenderbuffer(GL_RENDERBUFFER, renderbuffer);
  glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA4, 4, 4);
  glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, renderbuffer);
  platform::BeforeDraw();
  const RenderTarget foreign(4, 4);
  platform::BeforeDraw();
  NoteColorAttachment(foreign.texture());
  NoteColorAttachment(0);
  EXPECT_TRUE(TakeGlErrors().empty());
}

TEST_P(BufferState, TransfersKeepTheContextsState) {
  TestImage image(kWidth, kHeight);
  const RenderTarget target(16, 4);
  const struct {
    GLenum query;
    GLint value;
    GLint reset;
  } pixel_store[] = {{GL_PACK_ALIGNMENT, 8, 4},      {GL_UNPACK_ALIGNMENT, 2, 4},
                     {GL_PACK_ROW_LENGTH_NV, 23, 0}, {GL_UNPACK_ROW_LENGTH_EXT, 29, 0},
                     {GL_PACK_SKIP_ROWS_NV, 3, 0},   {GL_UNPACK_SKIP_ROWS_EXT, 4, 0},
                     {GL_PACK_SKIP_PIXELS_NV, 5, 0}, {GL_UNPACK_SKIP_PIXELS_EXT, 6, 0}};
  for (const auto& parameter : pixel_store) glPixelStorei(parameter.query, parameter.value);
  std::array<GLuint, 2> buffers{};
  glGenBuffers(2, buffers.data());
  glBindBuffer(GL_PIXEL_PACK_BUFFER_NV, buffers[0]);
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER_NV, buffers[1]);
  if (!TakeGlErrors().empty()) GTEST_SKIP() << "the context has no such state";

  const auto check = [&] {
    for (const auto& parameter : pixel_store) {
      GLint value = -1;
      glGetIntegerv(parameter.query, &value);
      EXPECT_EQ(value, parameter.value) << std::hex << parameter.query;
    }
    const std::array<std::pair<GLenum, GLuint>, 5> bindings = {
        {{GL_PIXEL_PACK_BUFFER_BINDING_NV, buffers[0]},
         {GL_PIXEL_UNPACK_BUFFER_BINDING_NV, buffers[1]},
         {GL_READ_FRAMEBUFFER_BINDING_NV, 0},
         {GL_FRAMEBUFFER_BINDING, target.framebuffer()},
         {GL_TEXTURE_BINDING_2D, target.texture()}}};
    for (const auto& [query, expected] : bindings) {
      GLint value = -1;
      glGetIntegerv(query, &value);
      EXPECT_EQ(static_cast<GLuint>(value), expected) << std::hex << query;
    }
    EXPECT_EQ(BoundTexture(0), 0u);
    GLint active = 0;
    glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
    EXPECT_EQ(active, GL_TEXTURE3);
  };
  glBindTexture(GL_TEXTURE_2D, 0);
  glActiveTexture(GL_TEXTURE3);
  glBindTexture(GL_TEXTURE_2D, target.texture());

  const Image picture = PatternImage(8);
  Clear(image, 100);
  glBindFramebuffer(GL_FRAMEBUFFER, target.framebuffer());
  glBindFramebuffer(GL_READ_FRAMEBUFFER_NV, 0);
  EXPECT_TRUE(SameImage(PlainImage(100), image.read()));
  check();
  image.upload(picture);
  check();
  const EGLImageKHR again = image.buffer().createImage(eglGetCurrentDisplay(), nullptr);
  EXPECT_NE(again, EGL_NO_IMAGE_KHR);
  check();
  gl::Extensions().eglDestroyImageKHR(eglGetCurrentDisplay(), again);

  for (const auto& parameter : pixel_store) {
    glPixelStorei(parameter.query, parameter.reset);
  }
  glBindBuffer(GL_PIXEL_PACK_BUFFER_NV, 0);
  EXPECT_TRUE(SameImage(picture, Shown(image)));
}

TEST_P(BufferState, TransfersKeepTheCallersPendingError) {
  TestImage image(kWidth, kHeight);
  glEnable(GL_TEXTURE_2D + 77);  // no such capability
  image.upload(PatternImage(1));
  Clear(image, 101);
  image.read();
  EXPECT_EQ(TakeGlErrors(), std::vector<GLenum>{GL_INVALID_ENUM});
}

TEST_P(BufferState, BuffersThatOutliveTheirContextLeaveTheNextOneAlone) {
  const EGLDisplay display = context().display();
  for (int round = 0; round < 4; ++round) {
    auto first = std::make_unique<GlContext>();
    TestImage image(kWidth, kHeight);
    image.upload(PatternImage(1));
    Clear(image, 102);
    if (round % 2 == 0) {
      image.read();
    } else {
      glFinish();  // the image stays newer on the GPU
    }
    first.reset();
    image.AbandonContext(display);

    const GlContext second;  // its handle may well be that of the first
    ASSERT_TRUE(second.ok());
    std::vector<std::unique_ptr<RenderTarget>> targets;
    for (int i = 0; i < 8; ++i) targets.push_back(std::make_unique<RenderTarget>(4, 4));
    image.DropBuffer();
    for (const auto& target : targets) {
      EXPECT_EQ(glIsTexture(target->texture()), GL_TRUE);
      EXPECT_EQ(glIsFramebuffer(target->framebuffer()), GL_TRUE);
    }
    EXPECT_TRUE(TakeGlErrors().empty());
  }
}

TEST_P(BufferState, BuffersDieOnThreadsWithoutContext) {
  TestImage image(kWidth, kHeight);
  image.upload(PatternImage(1));
  image.AbandonContext(context().display());
  std::thread([&image] { image.DropBuffer(); }).join();
  EXPECT_TRUE(TakeGlErrors().empty());
}

TEST_P(BufferState, WhatCannotMoveNowMovesWhenTheContextIsBack) {
  TestImage image(kWidth, kHeight);
  Clear(image, 103);
  {
    const GlContext other;
    ASSERT_TRUE(other.ok());
    EXPECT_EQ(nullptr, image.buffer().lockPixels());
    void* address = &image;
    EXPECT_GT(0, image.buffer().lock(0x33, &address));
    EXPECT_EQ(nullptr, address);
    EXPECT_EQ(nullptr, image.buffer().lockForOverwrite());
    EXPECT_EQ(nullptr, image.buffer().lockPart(1, 1, 2, 2));
  }
  ASSERT_TRUE(context().make_current());
  EXPECT_TRUE(SameImage(PlainImage(103), image.read()));
}

TEST_P(BufferState, WhatTheCpuLeftIsThereWithoutTheContext) {
  for (const bool attached : {false, true}) {
    TestImage image(kWidth, kHeight);
    if (attached) NoteColorAttachment(image.texture());
    image.upload(PatternImage(4));
    {
      const GlContext other;
      ASSERT_TRUE(other.ok());
      EXPECT_TRUE(SameImage(PatternImage(4), image.read()));
    }
    ASSERT_TRUE(context().make_current());
  }
}

}  // namespace
}  // namespace lumora::test
