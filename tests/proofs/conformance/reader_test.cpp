// SPDX-License-Identifier: Apache-2.0
// The reading of transcripts itself: what is left out, and what is noticed.
#include <EGL/egl.h>
#include <GLES2/gl2.h>
#include <gtest/gtest.h>

#include "engine/engine_images.h"
#include "proofs/conformance/transcript.h"

namespace lumora::test {
namespace {

/// An engine's input image, and objects of nobody.
class Reading : public testing::Test {
 protected:
  Reading() {
    engine_.Init(32, 16, 32, 16, nullptr, false);
    glGenTextures(1, &stranger_);
    glGenFramebuffers(1, &other_framebuffer_);
    glBindTexture(GL_TEXTURE_2D, engine_.m_pRGBImage->m_hTexture);
    glBindFramebuffer(GL_FRAMEBUFFER, engine_.m_hRGBFbo);
  }
  ~Reading() override {
    glDeleteTextures(1, &stranger_);
    glDeleteFramebuffers(1, &other_framebuffer_);
  }

  Script read(const Recording& recording) const { return recording.lines(NamesOf(engine_)); }
  GLuint input() const { return engine_.m_pRGBImage->m_hTexture; }
  GLuint work() const { return engine_.m_pWorkImage[0]->m_hTexture; }

  GPUBeautyFace engine_;
  GLuint stranger_ = 0;
  GLuint other_framebuffer_ = 0;
};

TEST_F(Reading, LeavesOutWhatIsDoneToOthersAndPutBack) {
  const Recording recording(Checks::Passes);
  glBindTexture(GL_TEXTURE_2D, stranger_);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
  glBindTexture(GL_TEXTURE_2D, input());
  glBindFramebuffer(GL_FRAMEBUFFER, other_framebuffer_);
  glViewport(0, 0, 4, 4);
  glBindFramebuffer(GL_FRAMEBUFFER, engine_.m_hRGBFbo);
  glFinish();
  EXPECT_TRUE(Same({}, read(recording)));
}

TEST_F(Reading, KeepsBindingsThatChange) {
  const Recording recording(Checks::Passes);
  glBindTexture(GL_TEXTURE_2D, stranger_);
  glBindTexture(GL_TEXTURE_2D, work());
  glBindTexture(GL_TEXTURE_2D, work());  // bound twice is told twice
  glBindFramebuffer(GL_FRAMEBUFFER, other_framebuffer_);
  glBindFramebuffer(GL_FRAMEBUFFER, engine_.m_hWorkFbo[2]);
  EXPECT_TRUE(Same({"glBindTexture TEXTURE_2D work0", "glBindTexture TEXTURE_2D work0",
                    "glBindFramebuffer FRAMEBUFFER work2"},
                   read(recording)));
}

TEST_F(Reading, TakesAFinishOnlyBehindAFlush) {
  const Recording recording(Checks::Passes);
  glFlush();
  glFinish();
  glFinish();
  EXPECT_TRUE(Same({"glFlush", "glFinish"}, read(recording)));
}

// Locks wait as well: what an engine leaves out must not be made up for by its images.
TEST_F(Reading, TakesNoFinishOfALockForTheEngines) {
  for (SEGLImage* image : {engine_.m_pRGBImage, engine_.m_pYYYYImage}) {
    const Recording recording(Checks::Passes);
    glFlush();
    EXPECT_NE(nullptr, image->Lock());
    EXPECT_TRUE(Same({"glFlush"}, read(recording)));
  }
}

TEST_F(Reading, TellsUnitsApart) {
  const Recording recording(Checks::Passes);
  glActiveTexture(GL_TEXTURE1);
  glBindTexture(GL_TEXTURE_2D, work());
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_2D, stranger_);
  glBindTexture(GL_TEXTURE_2D, input());
  EXPECT_TRUE(Same(
      {"glActiveTexture TEXTURE1", "glBindTexture TEXTURE_2D work0", "glActiveTexture TEXTURE0"},
      read(recording)));
}

// The driver makes contexts at places where others were.
TEST(ReadingContexts, KnowsNothingOfOnesThatEnded) {
  for (int i = 0; i < 8; ++i) {
    GPUBeautyFace engine;
    engine.Init(32, 16, 32, 16, nullptr, false);
    GLuint stranger = 0;
    glGenTextures(1, &stranger);
    const GLuint input = engine.m_pRGBImage->m_hTexture;
    glBindTexture(GL_TEXTURE_2D, input);
    {
      const Recording recording(Checks::Passes);
      glActiveTexture(GL_TEXTURE0);
      glBindTexture(GL_TEXTURE_2D, stranger);
      glBindTexture(GL_TEXTURE_2D, input);
      EXPECT_TRUE(Same({"glActiveTexture TEXTURE0"}, recording.lines(NamesOf(engine)))) << i;
    }
    glDeleteTextures(1, &stranger);
    glActiveTexture(GL_TEXTURE1);
  }
}

// The driver gives names out again: an object is known by when it was made.
TEST_F(Reading, KnowsANameThatCameBackAsAnotherObject) {
  const ObjectNames names = NamesOf(engine_);
  const GLuint name = work();
  glDeleteTextures(1, &name);
  GLuint again = 0;
  glGenTextures(1, &again);
  const Recording recording(Checks::Passes);
  glBindTexture(GL_TEXTURE_2D, again);
  EXPECT_TRUE(Same({}, recording.lines(names)));
  glDeleteTextures(1, &again);
}

TEST_F(Reading, PutsLogLinesAndCallsInTheirOrder) {
  const Recording recording(Checks::Passes);
  glFlush();
  ::LogLine("one");
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
  checkGlError("two");
  checkGlError("three");
  const Script expected = {"glFlush", "I/EGLImageTest one",
                           "glTexParameteri TEXTURE_2D TEXTURE_WRAP_T REPEAT",
                           "I/EGLImageTest after two() glError (0x500)\n"};
  EXPECT_TRUE(Same(expected, read(recording)));
  EXPECT_FALSE(Same({expected[1], expected[0], expected[2], expected[3]}, read(recording)));
  EXPECT_FALSE(Same({expected[0], expected[1], expected[2]}, read(recording)));
}

}  // namespace
}  // namespace lumora::test
