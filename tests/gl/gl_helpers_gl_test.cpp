// SPDX-License-Identifier: Apache-2.0
// The free GL functions: what they answer, what they tell the log, and what they leave in GL.
#include "lumora/gl/gl_helpers.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "support/gl_faults.h"
#include "support/gl_test.h"
#include "support/log_capture.h"

namespace lumora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kTag = "EGLImageTest";

constexpr const char* kVertex =
    "attribute vec4 a_position; void main() { gl_Position = a_position; }";
constexpr const char* kFragment =
    "precision mediump float; void main() { gl_FragColor = vec4(1.0); }";
constexpr const char* kBroken = "void main() { this is no GLSL; }";
// Compiles, but the vertex shader above does not write its input.
constexpr const char* kUnlinkable =
    "precision mediump float; varying vec2 v_missing;"
    "void main() { gl_FragColor = vec4(v_missing, 0.0, 1.0); }";

GLuint Compiled(GLenum type, const char* source) {
  const GLuint shader = glCreateShader(type);
  glShaderSource(shader, 1, &source, nullptr);
  glCompileShader(shader);
  return shader;
}

// What the driver says of a source that it refuses.
std::string CompileMessage(GLenum type, const char* source) {
  const GLuint shader = Compiled(type, source);
  char text[4096] = "";
  glGetShaderInfoLog(shader, sizeof(text), nullptr, text);
  glDeleteShader(shader);
  return text;
}

std::string LinkMessage(const char* vertex, const char* fragment) {
  const GLuint program = glCreateProgram();
  glAttachShader(program, Compiled(GL_VERTEX_SHADER, vertex));
  glAttachShader(program, Compiled(GL_FRAGMENT_SHADER, fragment));
  glLinkProgram(program);
  char text[4096] = "";
  glGetProgramInfoLog(program, sizeof(text), nullptr, text);
  glDeleteProgram(program);
  return text;
}

LogLine GlErrorLine(const char* operation, GLenum error) {
  return Info(kTag, "after %s() glError (0x%x)\n", operation, error);
}

class GlHelpers : public GlTest {
 protected:
  LogCapture log_;
};

TEST_F(GlHelpers, LogLinePrintsAtInfoAndReturnsThePlatformsAnswer) {
  EXPECT_EQ(::LogLine("%d and %s", 7, "eight"), 11);
  EXPECT_TRUE(LogIs(log_, {Info(kTag, "7 and eight")}));
}

TEST_F(GlHelpers, PrintGlStringShowsTheDriversText) {
  printGLString("Renderer", GL_RENDERER);
  const auto* renderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
  EXPECT_TRUE(LogIs(log_, {Info(kTag, "GL Renderer = %s\n", renderer)}));
}

TEST_F(GlHelpers, PrintGlStringSurvivesANameThatHasNoText) {
  printGLString("Nothing", GL_TEXTURE_2D);
  ASSERT_EQ(log_.lines().size(), 1u);
  EXPECT_EQ(log_.lines()[0].text.rfind("GL Nothing = ", 0), 0u);
}

TEST_F(GlHelpers, CheckGlErrorIsSilentWithoutErrors) {
  EXPECT_EQ(checkGlError("quiet"), 0);
  EXPECT_TRUE(LogIs(log_, {}));
}

TEST_F(GlHelpers, CheckGlErrorTellsARealErrorOnceAtInfo) {
  glEnable(0xFFFF);
  EXPECT_EQ(checkGlError("glEnable"), 0);
  EXPECT_EQ(checkGlError("glEnable"), 0);
  EXPECT_TRUE(LogIs(log_, {GlErrorLine("glEnable", 0x500)}));
}

TEST_F(GlHelpers, CheckGlErrorEmptiesAQueueOfThreeInItsOrder) {
  GlFaults faults;
  faults.errors = {GL_INVALID_OPERATION, GL_INVALID_ENUM, GL_OUT_OF_MEMORY};
  EXPECT_EQ(checkGlError("op"), 0);
  EXPECT_TRUE(
      LogIs(log_, {GlErrorLine("op", 0x502), GlErrorLine("op", 0x500), GlErrorLine("op", 0x505)}));
  EXPECT_THAT(faults.errors, IsEmpty());
}

TEST_F(GlHelpers, CheckGlErrorStopsAtTheFirstZero) {
  GlFaults faults;
  faults.errors = {GL_INVALID_ENUM, GL_NO_ERROR, GL_INVALID_VALUE};
  checkGlError("op");
  EXPECT_TRUE(LogIs(log_, {GlErrorLine("op", 0x500)}));
  EXPECT_THAT(faults.errors, ElementsAre(GL_INVALID_VALUE));
}

TEST_F(GlHelpers, LocIsValidFromZeroOn) {
  EXPECT_TRUE(LocIsValid("zero", 0));
  EXPECT_TRUE(LocIsValid("many", 77));
  EXPECT_TRUE(LogIs(log_, {}));
  EXPECT_FALSE(LocIsValid("u_gone", -1));
  EXPECT_FALSE(LocIsValid("u_far", -5));
  EXPECT_TRUE(LogIs(log_, {Error(kTag, "[LocIsValid] invalid u_gone == -1"),
                           Error(kTag, "[LocIsValid] invalid u_far == -5")}));
}

TEST_F(GlHelpers, LoadShaderReturnsACompiledShader) {
  const GLuint shader = loadShader(GL_VERTEX_SHADER, kVertex);
  EXPECT_TRUE(glIsShader(shader));
  GLint type = 0;
  glGetShaderiv(shader, GL_SHADER_TYPE, &type);
  EXPECT_EQ(type, GL_VERTEX_SHADER);
  EXPECT_TRUE(LogIs(log_, {}));
}

TEST_F(GlHelpers, LoadShaderTellsTheCompilersLogAndDeletesTheShader) {
  for (const GLenum type : {GLenum{GL_VERTEX_SHADER}, GLenum{GL_FRAGMENT_SHADER}}) {
    const std::string message = CompileMessage(type, kBroken);
    ASSERT_FALSE(message.empty());
    GlFaults seen;
    EXPECT_EQ(loadShader(type, kBroken), 0u);
    EXPECT_TRUE(LogIs(log_, {Error(kTag, "Could not compile shader %d:\n%s\n",
                                   static_cast<int>(type), message.c_str())}));
    EXPECT_EQ(seen.shaders_made.size(), 1u);
    EXPECT_EQ(seen.shaders_deleted, seen.shaders_made);
  }
}

TEST_F(GlHelpers, LoadShaderReturnsAFailedShaderWhoseLogIsEmpty) {
  GlFaults faults;
  faults.shaders_fail = true;
  faults.logs_are_empty = true;
  const GLuint shader = loadShader(GL_FRAGMENT_SHADER, kFragment);
  EXPECT_NE(shader, 0u);
  EXPECT_TRUE(glIsShader(shader));
  EXPECT_THAT(faults.shaders_deleted, IsEmpty());
  EXPECT_TRUE(LogIs(log_, {}));
}

TEST_F(GlHelpers, LoadShaderGivesUpWithoutAShaderObject) {
  EXPECT_EQ(loadShader(0xBAD, kVertex), 0u);
  EXPECT_TRUE(LogIs(log_, {}));
  EXPECT_THAT(TakeGlErrors(), ElementsAre(GL_INVALID_ENUM));
}

TEST_F(GlHelpers, CreateProgramLinksAndKeepsItsShadersAttached) {
  GlFaults seen;
  const GLuint program = createProgram(kVertex, kFragment);
  EXPECT_TRUE(glIsProgram(program));
  GLuint shaders[4] = {};
  GLsizei count = 0;
  glGetAttachedShaders(program, 4, &count, shaders);
  EXPECT_EQ(std::vector<GLuint>(shaders, shaders + count), seen.shaders_made);
  EXPECT_EQ(count, 2);
  EXPECT_THAT(seen.shaders_deleted, IsEmpty());
  EXPECT_TRUE(LogIs(log_, {}));
}

TEST_F(GlHelpers, CreateProgramChecksForErrorsAfterEachStep) {
  GlFaults faults;
  for (int step = 0; step < 5; ++step) {
    faults.errors.push_back(GL_INVALID_ENUM + static_cast<GLenum>(step));
    faults.errors.push_back(GL_NO_ERROR);
  }
  EXPECT_NE(createProgram(kVertex, kFragment), 0u) << "errors are told, not acted on";
  EXPECT_TRUE(LogIs(
      log_,
      {GlErrorLine("gl Load Vertex Shader", 0x500), GlErrorLine("gl Load Fragment Shader", 0x501),
       GlErrorLine("glCreateProgram", 0x502), GlErrorLine("glAttachVertexShader", 0x503),
       GlErrorLine("glAttachFragmentShader", 0x504)}));
}

TEST_F(GlHelpers, CreateProgramStopsAtABrokenVertexShader) {
  const std::string message = CompileMessage(GL_VERTEX_SHADER, kBroken);
  GlFaults faults;
  faults.errors = {GL_INVALID_VALUE};
  EXPECT_EQ(createProgram(kBroken, kFragment), 0u);
  EXPECT_TRUE(LogIs(log_, {Error(kTag, "Could not compile shader 35633:\n%s\n", message.c_str()),
                           GlErrorLine("gl Load Vertex Shader", 0x501)}));
  EXPECT_EQ(faults.shaders_made.size(), 1u);
  EXPECT_THAT(faults.programs_made, IsEmpty());
}

TEST_F(GlHelpers, CreateProgramStopsAtABrokenFragmentShaderAndKeepsTheOther) {
  const std::string message = CompileMessage(GL_FRAGMENT_SHADER, kBroken);
  GlFaults seen;
  EXPECT_EQ(createProgram(kVertex, kBroken), 0u);
  EXPECT_TRUE(LogIs(log_, {Error(kTag, "Could not compile shader 35632:\n%s\n", message.c_str())}));
  ASSERT_EQ(seen.shaders_made.size(), 2u);
  EXPECT_THAT(seen.shaders_deleted, ElementsAre(seen.shaders_made[1]));
  EXPECT_TRUE(glIsShader(seen.shaders_made[0]));
  EXPECT_THAT(seen.programs_made, IsEmpty());
}

TEST_F(GlHelpers, CreateProgramStopsWithoutAProgramObject) {
  GlFaults faults;
  faults.no_programs = true;
  EXPECT_EQ(createProgram(kVertex, kFragment), 0u);
  EXPECT_THAT(faults.shaders_deleted, IsEmpty());
  EXPECT_TRUE(LogIs(log_, {}));
}

TEST_F(GlHelpers, CreateProgramTellsTheLinkersLogAndDeletesTheProgramOnly) {
  const std::string message = LinkMessage(kVertex, kUnlinkable);
  ASSERT_FALSE(message.empty());
  GlFaults seen;
  EXPECT_EQ(createProgram(kVertex, kUnlinkable), 0u);
  EXPECT_TRUE(LogIs(log_, {Error(kTag, "Could not link program:\n%s\n", message.c_str())}));
  EXPECT_EQ(seen.programs_deleted, seen.programs_made);
  EXPECT_EQ(seen.programs_made.size(), 1u);
  EXPECT_THAT(seen.shaders_deleted, IsEmpty());
}

TEST_F(GlHelpers, CreateProgramDeletesAnUnlinkedProgramWithAnEmptyLogToo) {
  GlFaults faults;
  faults.logs_are_empty = true;
  EXPECT_EQ(createProgram(kVertex, kUnlinkable), 0u);
  EXPECT_TRUE(LogIs(log_, {}));
  EXPECT_EQ(faults.programs_deleted, faults.programs_made);
}

TEST_F(GlHelpers, SetColorAttachmentCompletesTheBoundFramebuffer) {
  Image blue(4, 4);
  blue.fill(0, 0, 255, 255);
  const Texture texture(blue);
  GLuint framebuffer = 0;
  glGenFramebuffers(1, &framebuffer);
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  glBindTexture(GL_TEXTURE_2D, 0);
  EXPECT_TRUE(SetColorAttachment(GL_TEXTURE_2D, texture.name()));
  EXPECT_EQ(BoundTexture(0), texture.name());
  EXPECT_EQ(ReadFramebuffer(framebuffer, 4, 4).bytes, blue.bytes);
  EXPECT_TRUE(LogIs(log_, {}));
  glDeleteFramebuffers(1, &framebuffer);
}

TEST_F(GlHelpers, SetColorAttachmentTellsAnIncompleteFramebufferAndKeepsTheTexture) {
  GLuint texture = 0;
  glGenTextures(1, &texture);  // without storage
  GLuint framebuffer = 0;
  glGenFramebuffers(1, &framebuffer);
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  EXPECT_FALSE(SetColorAttachment(GL_TEXTURE_2D, texture));
  EXPECT_TRUE(LogIs(log_, {Error(kTag, "[SetColorAttachment] ERROR, FBO not complete, status %u\n",
                                 glCheckFramebufferStatus(GL_FRAMEBUFFER))}));
  GLint attached = 0;
  glGetFramebufferAttachmentParameteriv(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0,
                                        GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME, &attached);
  EXPECT_EQ(static_cast<GLuint>(attached), texture);
  EXPECT_EQ(BoundTexture(0), texture);
  glDeleteFramebuffers(1, &framebuffer);
  glDeleteTextures(1, &texture);
}

TEST_F(GlHelpers, SetColorAttachmentChecksForErrorsAfterBothSteps) {
  const Texture texture(Image(2, 2));
  const RenderTarget target(2, 2);
  GlFaults faults;
  faults.errors = {GL_INVALID_ENUM, GL_NO_ERROR, GL_INVALID_VALUE};
  EXPECT_TRUE(SetColorAttachment(GL_TEXTURE_2D, texture.name()));
  EXPECT_TRUE(
      LogIs(log_, {GlErrorLine("SetColorAttachment - glBindTexture", 0x500),
                   GlErrorLine("SetColorAttachment - after glFramebufferTexture2D", 0x501)}));
}

using Pixels = std::unique_ptr<unsigned char, decltype(&std::free)>;

TEST(GenTexturePixels, AreOneOpaqueColour) {
  const unsigned char expected[3][4] = {{255, 0, 0, 255}, {0, 255, 0, 255}, {0, 0, 255, 255}};
  for (int colour = 0; colour < 3; ++colour) {
    const Pixels pixels(GenTexture(5, 3, colour), &std::free);
    ASSERT_NE(pixels, nullptr);
    for (size_t i = 0; i < 5 * 3 * 4; ++i) {
      ASSERT_EQ(pixels.get()[i], expected[colour][i % 4]) << "colour " << colour << ", byte " << i;
    }
  }
}

TEST(GenTexturePixels, OfAnyOtherColourAreTheCallersToFill) {
  for (const int colour : {3, -1, 1 << 30}) {
    const Pixels pixels(GenTexture(16, 16, colour), &std::free);
    ASSERT_NE(pixels, nullptr);
    for (size_t i = 0; i < 16 * 16 * 4; ++i) pixels.get()[i] = static_cast<unsigned char>(i);
    EXPECT_EQ(pixels.get()[16 * 16 * 4 - 1], 255);
  }
}

TEST(GenTexturePixels, NeedNoContext) {
  ASSERT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
  const Pixels pixels(GenTexture(1, 1, 1), &std::free);
  EXPECT_EQ(pixels.get()[1], 255);
}

}  // namespace
}  // namespace lumora::test
