// SPDX-License-Identifier: Apache-2.0
// The base of all shader programs, without its cache.
#include "lumora/gl/gl_program.h"

#include <gmock/gmock.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "support/gl_faults.h"
#include "support/gl_test.h"
#include "support/log_capture.h"

namespace lumora::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kTag = "GLProgram";
constexpr unsigned int kUnset = 0xFFFFFFFFu;

constexpr const char* kVertex =
    "attribute vec4 a_vertexCoord; attribute vec2 a_textureCoord; varying vec2 v_at;"
    "void main() { gl_Position = a_vertexCoord; v_at = a_textureCoord; }";
// Shows the coordinate, so that a draw tells which arrays it read.
constexpr const char* kFragment =
    "precision highp float; varying vec2 v_at;"
    "void main() { gl_FragColor = vec4(v_at, 0.0, 1.0); }";

constexpr float kPositions[16] = {-1, 1, 1, 1, -1, -1, 1, 1, 1, -1, 1, 1, 1, 1, 1, 1};
constexpr float kCoordinates[8] = {0, 1, 0, 0, 1, 0, 1, 1};

class TestProgram : public GLProgram {
 public:
  using GLProgram::Load;
  bool Load() override {
    if (!GLProgram::Load(kVertex, kFragment)) return false;
    m_nVerCoordLoc = glGetAttribLocation(m_hProgram, "a_vertexCoord");
    m_nTexCoordLoc = glGetAttribLocation(m_hProgram, "a_textureCoord");
    return true;
  }
};

// The place of a virtual function in its class's table, read out of a member pointer: the offset
// in bytes, on some processors marked by the lowest bit.
template <typename Member>
size_t SlotOf(Member member) {
  struct {
    uintptr_t function;
    ptrdiff_t adjustment;
  } pointer;
  static_assert(sizeof(pointer) == sizeof(member));
  std::memcpy(&pointer, &member, sizeof(pointer));
  return (pointer.function & ~uintptr_t{1}) / sizeof(void*);
}

TEST(ProgramVirtuals, HaveFixedSlotsBehindTheTwoDestructors) {
  using Draw = bool (GLProgram::*)();
  using DrawIndices = bool (GLProgram::*)(int, const void*);
  EXPECT_EQ(SlotOf(static_cast<Draw>(&GLProgram::Load)), 2u);
  EXPECT_EQ(SlotOf(&GLProgram::Use), 3u);
  EXPECT_EQ(SlotOf(&GLProgram::SetVertexCoord), 4u);
  EXPECT_EQ(SlotOf(&GLProgram::SetTextureCoord), 5u);
  EXPECT_EQ(SlotOf(static_cast<Draw>(&GLProgram::Draw)), 6u);
  EXPECT_EQ(SlotOf(static_cast<DrawIndices>(&GLProgram::Draw)), 7u);
}

TEST(ProgramFields, LieInTheirOrderBehindTheTablePointer) {
  TestProgram program;
  const auto at = [&program](const void* field) {
    return static_cast<size_t>(static_cast<const char*>(field) -
                               reinterpret_cast<const char*>(&program)) -
           sizeof(void*);
  };
  EXPECT_EQ(at(&program.m_hProgram), 0u);
  EXPECT_EQ(at(&program.m_nAttribLoc), 4u);
  EXPECT_EQ(at(&program.m_nUniformLoc), 36u);
  EXPECT_EQ(at(&program.m_nSamplerLoc), 100u);
  EXPECT_EQ(at(&program.m_nVerCoordLoc), 132u);
  EXPECT_EQ(at(&program.m_nTexCoordLoc), 136u);
  EXPECT_EQ(at(&program.m_hTextures), 140u);
  EXPECT_EQ(at(&program.m_fMatYUV2RGB), 172u);
  const size_t fields = sizeof(void*) + 172 + 16 * 4;
  EXPECT_EQ(sizeof(GLProgram), (fields + sizeof(void*) - 1) / sizeof(void*) * sizeof(void*));
  static_assert(GLProgram::SAMPLER_INPUT_TEX == 0 && GLProgram::SAMPLER_SECOND_TEX == 1 &&
                GLProgram::SAMPLER_MAT_YUV2RGB == 7);
}

TEST(ProgramFields, StartUnsetWithoutAnyContext) {
  ASSERT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
  const TestProgram program;
  EXPECT_EQ(program.m_hProgram, kUnset);
  EXPECT_THAT(program.m_nAttribLoc, Each(-1));
  EXPECT_THAT(program.m_nUniformLoc, Each(-1));
  EXPECT_THAT(program.m_nSamplerLoc, Each(-1));
  EXPECT_EQ(program.m_nVerCoordLoc, -1);
  EXPECT_EQ(program.m_nTexCoordLoc, -1);
  EXPECT_THAT(program.m_hTextures, Each(0u));
  EXPECT_THAT(program.m_fMatYUV2RGB,
              ElementsAre(1.0f, 1.0f, 1.0f, 0.0f, 1.402f, -0.714f, 0.0f, 0.0f, 0.0f, -0.344f,
                          1.772f, 0.0f, -0.701f, 0.529f, -0.886f, 1.0f));
}

TEST(ProgramTextures, AreStoredBelowEightAndRefusedFromEightOn) {
  TestProgram program;
  LogCapture log;
  EXPECT_TRUE(program.SetTextures(0, 11));
  EXPECT_TRUE(program.SetTextures(7, 77));
  EXPECT_TRUE(LogIs(log, {}));
  EXPECT_FALSE(program.SetTextures(8, 88));
  EXPECT_FALSE(program.SetTextures(0xFFFFFFFFu, 99));
  EXPECT_TRUE(LogIs(log, {Error(kTag, "[SetTextures] nIdx 8 must < 8"),
                          Error(kTag, "[SetTextures] nIdx -1 must < 8")}));
  EXPECT_THAT(program.m_hTextures, ElementsAre(11u, 0u, 0u, 0u, 0u, 0u, 0u, 77u));
  EXPECT_EQ(program.m_fMatYUV2RGB[0], 1.0f) << "what lies behind the table";
}

TEST(ProgramLocations, AreCheckedUnderTheProgramsOwnTag) {
  TestProgram program;
  LogCapture log;
  EXPECT_TRUE(program.LocIsValid("fine", 0));
  EXPECT_FALSE(program.LocIsValid("m_nVerCoordLoc", -1));
  EXPECT_TRUE(LogIs(log, {Error(kTag, "[LocIsValid] invalid m_nVerCoordLoc == -1")}));
}

class Program : public GlTest {
 protected:
  LogCapture log_;
};

TEST_F(Program, UseWithoutLoadTellsTheIdAndUsesNothing) {
  TestProgram program;
  EXPECT_FALSE(program.Use());
  EXPECT_TRUE(LogIs(log_, {Error(kTag, "[Use] invalid program id -1")}));
  GLint current = -1;
  glGetIntegerv(GL_CURRENT_PROGRAM, &current);
  EXPECT_EQ(current, 0);
}

TEST_F(Program, UseMakesTheProgramCurrent) {
  TestProgram program;
  ASSERT_TRUE(program.Load());
  EXPECT_TRUE(program.Use());
  GLint current = -1;
  glGetIntegerv(GL_CURRENT_PROGRAM, &current);
  EXPECT_EQ(static_cast<GLuint>(current), program.m_hProgram);
  EXPECT_TRUE(LogIs(log_, {}));
}

TEST_F(Program, LoadOfABrokenSourceLeavesZeroAndSaysSoInItsOneText) {
  TestProgram program;
  EXPECT_FALSE(program.Load("nonsense", kFragment));
  EXPECT_EQ(program.m_hProgram, 0u);
  const std::vector<LogLine> lines = log_.take();
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0].text.rfind("Could not compile shader 35633:\n", 0), 0u);
  EXPECT_EQ(lines[1],
            Error(kTag, "[InitShaderProgram]m_hFaceDistProgram: Could not create program."));
  EXPECT_FALSE(program.Use());
  EXPECT_TRUE(LogIs(log_, {Error(kTag, "[Use] invalid program id 0")}));
}

TEST_F(Program, LoadAgainDoesNotDeleteTheEarlierProgram) {
  TestProgram program;
  ASSERT_TRUE(program.Load());
  const GLuint first = program.m_hProgram;
  GlFaults seen;
  ASSERT_TRUE(program.Load());
  EXPECT_NE(program.m_hProgram, first);
  EXPECT_TRUE(glIsProgram(first));
  EXPECT_THAT(seen.programs_deleted, IsEmpty());
  glDeleteProgram(first);
}

TEST_F(Program, EndsByDeletingItsProgramWithALine) {
  auto program = std::make_unique<TestProgram>();
  ASSERT_TRUE(program->Load());
  const GLuint name = program->m_hProgram;
  EXPECT_TRUE(glIsProgram(name));
  std::unique_ptr<GLProgram> base = std::move(program);
  GlFaults seen;
  base.reset();
  EXPECT_FALSE(glIsProgram(name));
  EXPECT_THAT(seen.programs_deleted, ElementsAre(name));
  EXPECT_TRUE(
      LogIs(log_, {Info(kTag, "[~GLProgram] program %d deleted\n", static_cast<int>(name))}));
}

TEST_F(Program, EndsByDeletingWhateverItsNameIs) {
  GlFaults seen;
  { const TestProgram never_loaded; }
  EXPECT_THAT(seen.programs_deleted, ElementsAre(kUnset));
  EXPECT_TRUE(LogIs(log_, {Info(kTag, "[~GLProgram] program -1 deleted\n")}));
}

// The picture of the whole quad: red grows with x, green with y, both to the byte.
Image Coordinates(int size) {
  Image image(size, size);
  for (int y = 0; y < size; ++y) {
    for (int x = 0; x < size; ++x) {
      image.set(x, y, {(x + 0.5) / size, (y + 0.5) / size, 0.0, 1.0});
    }
  }
  return image;
}

TEST_F(Program, DrawsTheQuadFromClientMemory) {
  TestProgram program;
  ASSERT_TRUE(program.Load());
  const RenderTarget target(16, 16);
  target.bind();
  ASSERT_TRUE(program.Use());
  EXPECT_TRUE(program.SetVertexCoord(4, kPositions));
  EXPECT_TRUE(program.SetTextureCoord(2, kCoordinates));
  EXPECT_TRUE(program.Draw());
  EXPECT_EQ(target.read().bytes, Coordinates(16).bytes);
  EXPECT_THAT(TakeGlErrors(), IsEmpty());
}

TEST_F(Program, DrawsTheIndicesThatItIsGiven) {
  TestProgram program;
  ASSERT_TRUE(program.Load());
  const RenderTarget target(16, 16, 0x66);
  target.bind();
  ASSERT_TRUE(program.Use());
  program.SetVertexCoord(4, kPositions);
  program.SetTextureCoord(2, kCoordinates);
  const uint16_t lower_left[3] = {0, 1, 2};
  EXPECT_TRUE(program.Draw(3, lower_left));
  const Image drawn = target.read();
  EXPECT_EQ(drawn.pixel(1, 1)[3], 255);
  EXPECT_EQ(drawn.pixel(14, 14)[3], 0x66) << "the other half of the quad";
}

TEST_F(Program, TakesCoordinatesOfAnySizeAndAttributesByIndex) {
  TestProgram program;
  ASSERT_TRUE(program.Load());
  const float flat_positions[8] = {-1, 1, -1, -1, 1, -1, 1, 1};
  program.m_nAttribLoc[5] = program.m_nTexCoordLoc;
  const RenderTarget target(16, 16);
  target.bind();
  ASSERT_TRUE(program.Use());
  EXPECT_TRUE(program.SetVertexCoord(2, flat_positions));
  EXPECT_TRUE(program.VertexAttribPointer(5, 2, kCoordinates));
  program.Draw();
  EXPECT_EQ(target.read().bytes, Coordinates(16).bytes);
}

TEST_F(Program, AnswersTrueEvenWhereGlRefuses) {
  TestProgram program;  // no locations
  EXPECT_TRUE(program.SetVertexCoord(4, kPositions));
  EXPECT_THAT(TakeGlErrors(), ElementsAre(GL_INVALID_VALUE));
  EXPECT_TRUE(program.SetTextureCoord(2, kCoordinates));
  EXPECT_THAT(TakeGlErrors(), ElementsAre(GL_INVALID_VALUE));
  EXPECT_TRUE(LogIs(log_, {}));
}

}  // namespace
}  // namespace lumora::test
