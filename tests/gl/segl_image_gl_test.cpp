// SPDX-License-Identifier: Apache-2.0
// Images that CPU and GPU share.
#include "lumora/gl/segl_image.h"

#include <gmock/gmock.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <regex>
#include <string>
#include <vector>

#include "lumora/gl/gl_helpers.h"
#include "lumora/gl/gl_program.h"
#include "support/gl_faults.h"
#include "support/gl_test.h"
#include "support/log_capture.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kTag = "EGLImageTest";
constexpr GLuint kUnset = 0xFFFFFFFFu;
constexpr int kRgba = 1;

// A line whose text matches a regular expression.
struct Pattern {
  int priority;
  const char* text;
};

testing::AssertionResult LogMatches(const std::vector<LogLine>& lines,
                                    const std::vector<Pattern>& patterns) {
  for (size_t i = 0; i < std::max(lines.size(), patterns.size()); ++i) {
    if (i >= lines.size()) return testing::AssertionFailure() << "missing: " << patterns[i].text;
    if (i >= patterns.size()) return testing::AssertionFailure() << "extra: " << lines[i];
    const bool good = lines[i].priority == patterns[i].priority && lines[i].tag == kTag &&
                      std::regex_match(lines[i].text, std::regex(patterns[i].text));
    if (!good) {
      return testing::AssertionFailure() << "line " << i << " is " << lines[i] << ", expected "
                                         << patterns[i].priority << " " << patterns[i].text;
    }
  }
  return testing::AssertionSuccess();
}

const std::vector<Pattern> kBufferMade = {{3, "SEGLImage::Create - start"},
                                          {3, "new GraphicBuffer - start"},
                                          {3, "new GraphicBuffer spend: [0-9]+\\.[0-9]{6} ms\n"},
                                          {3, "new GraphicBuffer - end"},
                                          {3, "clientBuf: -?[0-9]+"},
                                          {3, "eglCreateImageKHR - start"}};
const std::vector<Pattern> kImageMade = {{4, "eglCreateImageKHR\\(\\) done! "},
                                         {3, "eglImageID: -?[0-9]+"},
                                         {3, "eglCreateImageKHR - end"},
                                         {3, "CreateTexture - start"}};
const std::vector<Pattern> kTextureMade = {{3, "textureID: [0-9]+"},
                                           {3, "CreateTexture - end"},
                                           {3, "glBindTexture - start"},
                                           {3, "glBindTexture - end"},
                                           {3, "glEGLImageTargetTexture2DOES - start"},
                                           {3, "glEGLImageTargetTexture2DOES - end"}};
const std::vector<Pattern> kEnd = {{3, "GL create texture spend: [0-9]+\\.[0-9]{6} ms\n"},
                                   {3, "SEGLImage::Create - end"}};

std::vector<Pattern> Joined(const std::vector<std::vector<Pattern>>& parts) {
  std::vector<Pattern> all;
  for (const auto& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

class SharedImage : public GlTest {
 protected:
  void SetUp() override {
    GlTest::SetUp();
    platform::PreferredBufferKind();  // any proof of what the driver can do is made now
    log_.take();
  }
  LogCapture log_;
};

TEST(SharedImageFields, LieInTheirOrder) {
  SEGLImage image(7);
  const auto at = [&image](const void* field) {
    return static_cast<size_t>(static_cast<const char*>(field) -
                               reinterpret_cast<const char*>(&image));
  };
  constexpr size_t kPointer = sizeof(void*);
  EXPECT_EQ(at(&image.m_eglImage), 0u);
  EXPECT_EQ(at(&image.m_hTexture), kPointer);
  EXPECT_EQ(at(&image.m_spBuffer), 2 * kPointer);
  EXPECT_EQ(at(&image.m_pData), 3 * kPointer);
  EXPECT_EQ(at(&image.m_nFlag), 4 * kPointer);
  EXPECT_EQ(sizeof(SEGLImage), 5 * kPointer);
}

TEST(SharedImageFields, StartUnsetWithoutAnyContext) {
  ASSERT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
  const SEGLImage image(7);
  EXPECT_EQ(image.m_eglImage, EGL_NO_IMAGE_KHR);
  EXPECT_EQ(image.m_hTexture, kUnset);
  EXPECT_FALSE(image.m_spBuffer);
  EXPECT_EQ(image.m_nFlag, 7);
}

TEST_F(SharedImage, CreateTellsEveryStep) {
  SEGLImage image(1);
  EXPECT_EQ(image.Create(64, 16, kRgba), 1);
  const std::vector<LogLine> lines = log_.take();
  EXPECT_TRUE(LogMatches(lines, Joined({kBufferMade, kImageMade, kTextureMade, kEnd})));
  EXPECT_TRUE(LogHas(lines, {Debug(kTag, "textureID: %i", static_cast<int>(image.m_hTexture))}));
  const auto low_half = [](const void* pointer) {
    return static_cast<int>(static_cast<uint32_t>(reinterpret_cast<uintptr_t>(pointer)));
  };
  EXPECT_TRUE(
      LogHas(lines, {Debug(kTag, "clientBuf: %i", low_half(image.m_spBuffer->getNativeBuffer())),
                     Debug(kTag, "eglImageID: %i", low_half(image.m_eglImage))}));
  EXPECT_EQ(g_dCountTimeInterval,
            static_cast<double>(g_cTimeFinish - g_cTimeStart) * 1000.0 / 1000000.0);
  EXPECT_THAT(TakeGlErrors(), IsEmpty());
  image.Destroy();
}

TEST_F(SharedImage, CreateLeavesANearestClampedTextureBound) {
  SEGLImage image(1);
  ASSERT_EQ(image.Create(64, 16, kRgba), 1);
  EXPECT_TRUE(glIsTexture(image.m_hTexture));
  EXPECT_EQ(BoundTexture(0), image.m_hTexture);
  EXPECT_EQ(TextureParameter(image.m_hTexture, GL_TEXTURE_MIN_FILTER), GL_NEAREST);
  EXPECT_EQ(TextureParameter(image.m_hTexture, GL_TEXTURE_MAG_FILTER), GL_NEAREST);
  EXPECT_EQ(TextureParameter(image.m_hTexture, GL_TEXTURE_WRAP_S), GL_CLAMP_TO_EDGE);
  EXPECT_EQ(TextureParameter(image.m_hTexture, GL_TEXTURE_WRAP_T), GL_CLAMP_TO_EDGE);
  EXPECT_NE(image.m_eglImage, EGL_NO_IMAGE_KHR);
  image.Destroy();
}

TEST_F(SharedImage, IsAllocatedForTheCpusWritesAndTexturing) {
  SEGLImage image(1);
  ASSERT_EQ(image.Create(64, 16, kRgba), 1);
  EXPECT_EQ(image.GetFlag(), 0x130);
  EXPECT_NE(image.m_pData, nullptr);
  EXPECT_EQ(image.Lock(), image.m_pData);
  EXPECT_EQ(image.Unlock(), 0);
  EXPECT_EQ(image.Lock(), image.m_pData) << "the address never changes";
  image.Destroy();
}

TEST_F(SharedImage, AnyFlagButZeroIsBufferMode) {
  SEGLImage image(200);
  ASSERT_EQ(image.Create(32, 4, kRgba), 1);
  EXPECT_TRUE(image.m_spBuffer);
  image.Destroy();
}

// A program that copies its input, texel by texel.
class CopyProgram : public GLProgram {
 public:
  using GLProgram::Load;
  bool Load() override {
    const bool built = GLProgram::Load(
        "attribute vec4 a_at; attribute vec2 a_from; varying vec2 v_from;"
        "void main() { gl_Position = a_at; v_from = a_from; }",
        "precision highp float; uniform highp sampler2D s_texture0; varying vec2 v_from;"
        "void main() { gl_FragColor = texture2D(s_texture0, v_from); }");
    m_nVerCoordLoc = glGetAttribLocation(m_hProgram, "a_at");
    m_nTexCoordLoc = glGetAttribLocation(m_hProgram, "a_from");
    return built;
  }
};

// Copies `from` into `to` by a draw.
void CopyByDraw(SEGLImage& from, SEGLImage& to, int width, int height) {
  CopyProgram program;
  ASSERT_TRUE(program.Load());
  const float positions[8] = {-1, 1, -1, -1, 1, -1, 1, 1};
  const float coordinates[8] = {0, 1, 0, 0, 1, 0, 1, 1};
  GLuint framebuffer = 0;
  glGenFramebuffers(1, &framebuffer);
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  ASSERT_TRUE(SetColorAttachment(GL_TEXTURE_2D, to.m_hTexture));
  glViewport(0, 0, width, height);
  ASSERT_TRUE(program.Use());
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_2D, from.m_hTexture);
  program.SetVertexCoord(2, positions);
  program.SetTextureCoord(2, coordinates);
  program.Draw();
  glBindFramebuffer(GL_FRAMEBUFFER, 0);
  glDeleteFramebuffers(1, &framebuffer);
}

// The rows that `image` has at a CPU address, whose rows are the width rounded up to 32 pixels.
size_t RowBytes(const Image& image) {
  return static_cast<size_t>((image.width + 31) / 32 * 32) * 4;
}

void WriteRows(const Image& image, unsigned char* memory) {
  for (int y = 0; y < image.height; ++y) {
    std::memcpy(memory + static_cast<size_t>(y) * RowBytes(image), image.pixel(0, y),
                static_cast<size_t>(image.width) * 4);
  }
}

Image ReadRows(const unsigned char* memory, int width, int height) {
  Image image(width, height);
  for (int y = 0; y < height; ++y) {
    std::memcpy(image.pixel(0, y), memory + static_cast<size_t>(y) * RowBytes(image),
                static_cast<size_t>(width) * 4);
  }
  return image;
}

TEST_F(SharedImage, CarriesBytesFromCpuToGpuAndBack) {
  const int sizes[][2] = {{64, 8}, {100, 7}, {32, 1}, {33, 5}, {1, 1}, {320, 240}};
  for (const auto& size : sizes) {
    const Image noise = NoiseImage(size[0], size[1], 5);
    const std::string name = std::to_string(size[0]) + " x " + std::to_string(size[1]);
    SEGLImage input(1);
    SEGLImage output(1);
    ASSERT_EQ(input.Create(size[0], size[1], kRgba), 1);
    ASSERT_EQ(output.Create(size[0], size[1], kRgba), 1);
    unsigned char* const memory = input.Lock();
    ASSERT_NE(memory, nullptr);
    WriteRows(noise, memory);
    ASSERT_EQ(input.Unlock(), 0);
    EXPECT_EQ(ReadTexture(input.m_hTexture, size[0], size[1]).bytes, noise.bytes) << name;
    CopyByDraw(input, output, size[0], size[1]);
    EXPECT_EQ(ReadRows(output.Lock(), size[0], size[1]).bytes, noise.bytes) << name;
    output.Unlock();
    input.Destroy();
    output.Destroy();
  }
}

TEST_F(SharedImage, ShowsRawGlWritesAfterItWasAColorAttachment) {
  SEGLImage image(1);
  ASSERT_EQ(image.Create(32, 4, kRgba), 1);
  GLuint framebuffer = 0;
  glGenFramebuffers(1, &framebuffer);
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  ASSERT_TRUE(SetColorAttachment(GL_TEXTURE_2D, image.m_hTexture));
  for (const int red : {255, 0, 255}) {
    glClearColor(static_cast<float>(red) / 255.0f, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    EXPECT_EQ(image.Lock()[4 * 31], red);
    image.Unlock();
  }
  image.Destroy();
  glDeleteFramebuffers(1, &framebuffer);
}

TEST_F(SharedImage, DestroyTwiceDeletesTheEglImageOnce) {
  GlFaults seen;
  SEGLImage image(1);
  ASSERT_EQ(image.Create(64, 16, kRgba), 1);
  const GLuint texture = image.m_hTexture;
  log_.take();
  image.Destroy();
  EXPECT_FALSE(glIsTexture(texture));
  EXPECT_EQ(image.m_hTexture, kUnset);
  EXPECT_EQ(image.m_eglImage, EGL_NO_IMAGE_KHR);
  EXPECT_TRUE(image.m_spBuffer) << "the buffer goes with the object";
  image.Destroy();
  EXPECT_EQ(seen.egl_images_made, 1);
  EXPECT_EQ(seen.egl_images_destroyed, 1);
  EXPECT_THAT(seen.textures_deleted, ElementsAre(texture, kUnset));
  EXPECT_THAT(TakeGlErrors(), IsEmpty());
  EXPECT_TRUE(LogIs(log_, {}));
}

TEST_F(SharedImage, FailedEglImageIsOnlyTold) {
  GlFaults faults;
  faults.no_egl_images = true;
  SEGLImage image(1);
  EXPECT_EQ(image.Create(64, 16, kRgba), 1);
  EXPECT_EQ(image.m_eglImage, EGL_NO_IMAGE_KHR);
  EXPECT_TRUE(LogMatches(
      log_.take(),
      // The driver refuses the null image; the code told is that of a second, empty read.
      Joined({kBufferMade,
              {{3, "eglCreateImageKHR\\(\\) failed. err=0x3003"}},
              kImageMade,
              kTextureMade,
              {{3, "glEGLImageTargetTexture2DOES failed 0x00000000"}},
              kEnd})));
  GLuint framebuffer = 0;
  glGenFramebuffers(1, &framebuffer);
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  EXPECT_FALSE(SetColorAttachment(GL_TEXTURE_2D, image.m_hTexture)) << "where the fault shows";
  EXPECT_NE(image.Lock(), nullptr);
  image.Destroy();
  EXPECT_EQ(faults.egl_images_destroyed, 0);
  glDeleteFramebuffers(1, &framebuffer);
}

TEST_F(SharedImage, FailedTextureTellsTheNextErrorInTheQueueAndGivesUp) {
  const std::vector<std::vector<GLenum>> queues = {{GL_OUT_OF_MEMORY},
                                                   {GL_OUT_OF_MEMORY, GL_INVALID_ENUM}};
  for (const std::vector<GLenum>& queue : queues) {
    GlFaults faults;
    faults.errors_of_edge_mode = queue;
    SEGLImage image(1);
    EXPECT_EQ(image.Create(64, 16, kRgba), 0);
    const char* const told =
        queue.size() == 1 ? "CreateTexture failed 0x00000000" : "CreateTexture failed 0x00000500";
    EXPECT_TRUE(LogMatches(log_.take(), Joined({kBufferMade, kImageMade, {{4, told}}})));
    EXPECT_TRUE(glIsTexture(image.m_hTexture)) << "stored, so that Destroy deletes it";
    image.Destroy();
  }
}

TEST_F(SharedImage, FailedImageTargetIsOnlyTold) {
  GlFaults faults;
  faults.errors_of_image_target = {GL_INVALID_OPERATION, GL_INVALID_VALUE};
  SEGLImage image(1);
  EXPECT_EQ(image.Create(64, 16, kRgba), 1);
  EXPECT_TRUE(
      LogMatches(log_.take(), Joined({kBufferMade,
                                      kImageMade,
                                      kTextureMade,
                                      {{3, "glEGLImageTargetTexture2DOES failed 0x00000501"}},
                                      kEnd})));
  image.Destroy();
}

TEST_F(SharedImage, ErrorsWhileMakingTheTextureAreChecked) {
  GlFaults faults;
  faults.no_egl_images = true;  // so that nothing before asks for errors
  glEnable(0xFFFF);             // an error left behind by the caller
  SEGLImage image(1);
  EXPECT_EQ(image.Create(64, 16, kRgba), 1);
  EXPECT_TRUE(
      LogHas(log_.take(), {Debug(kTag, "CreateTexture - start"),
                           Info(kTag, "after CreateTexture - glGenTextures() glError (0x500)\n"),
                           Debug(kTag, "textureID: %i", static_cast<int>(image.m_hTexture))}));
  image.Destroy();
}

TEST_F(SharedImage, BufferThatCannotBeAllocatedIsNoCrash) {
  SEGLImage image(1);
  image.Create(64, 16, 5);  // no such format
  EXPECT_EQ(image.Lock(), nullptr);
  log_.take();
  EXPECT_LT(image.Unlock(), 0);
  EXPECT_TRUE(LogIs(log_, {Debug(kTag, "[Unlock] clean buffer error")}));
  image.Destroy();
}

TEST_F(SharedImage, PlainModeMakesASilentRepeatingTexture) {
  SEGLImage image(0);
  EXPECT_EQ(image.Create(30, 10, 5), 1);
  EXPECT_EQ(BoundTexture(0), image.m_hTexture);
  EXPECT_EQ(TextureParameter(image.m_hTexture, GL_TEXTURE_MIN_FILTER), GL_NEAREST);
  EXPECT_EQ(TextureParameter(image.m_hTexture, GL_TEXTURE_MAG_FILTER), GL_NEAREST);
  EXPECT_EQ(TextureParameter(image.m_hTexture, GL_TEXTURE_WRAP_S), GL_REPEAT);
  EXPECT_EQ(TextureParameter(image.m_hTexture, GL_TEXTURE_WRAP_T), GL_REPEAT);
  EXPECT_EQ(image.m_eglImage, EGL_NO_IMAGE_KHR);
  EXPECT_FALSE(image.m_spBuffer);
  EXPECT_EQ(image.Lock(), nullptr);
  EXPECT_EQ(image.Unlock(), 0);
  EXPECT_EQ(image.GetFlag(), 0);

  // Its size is 30 x 10: the last texel can be set, the one behind it not.
  const unsigned char texel[4] = {1, 2, 3, 4};
  glTexSubImage2D(GL_TEXTURE_2D, 0, 29, 9, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, texel);
  EXPECT_THAT(TakeGlErrors(), IsEmpty());
  glTexSubImage2D(GL_TEXTURE_2D, 0, 30, 9, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, texel);
  EXPECT_THAT(TakeGlErrors(), ElementsAre(GL_INVALID_VALUE));

  const GLuint texture = image.m_hTexture;
  image.Destroy();
  EXPECT_FALSE(glIsTexture(texture));
  image.Destroy();
  EXPECT_TRUE(LogIs(log_, {})) << "not one line, from Create to the second Destroy";
}

}  // namespace
}  // namespace lumora::test
