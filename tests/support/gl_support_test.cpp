// SPDX-License-Identifier: Apache-2.0
// The GL helpers, and the sampler model against the driver's samplers.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <tuple>

#include "reference/bounds.h"
#include "reference/quad.h"
#include "reference/slimming_capture.h"
#include "support/compare.h"
#include "support/gl_test.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

using reference::Vec2;

constexpr const char* kVertexShader =
    "attribute vec2 position; varying vec2 coordinate;"
    "void main() { gl_Position = vec4(position, 0.0, 1.0); coordinate = position * 0.5 + 0.5; }";
constexpr const char* kFragmentShader =
    "precision highp float; uniform sampler2D image; varying vec2 coordinate;"
    "void main() { gl_FragColor = texture2D(image, coordinate * 3.7 - 1.35); }";

GLuint Shader(GLenum type, const char* text) {
  const GLuint shader = glCreateShader(type);
  glShaderSource(shader, 1, &text, nullptr);
  glCompileShader(shader);
  return shader;
}

GLuint UsedProgram(const char* fragment_shader) {
  const GLuint program = glCreateProgram();
  glAttachShader(program, Shader(GL_VERTEX_SHADER, kVertexShader));
  glAttachShader(program, Shader(GL_FRAGMENT_SHADER, fragment_shader));
  glLinkProgram(program);
  glUseProgram(program);
  return program;
}

// Draws over the whole viewport with the program in use.
void DrawOver(GLuint program) {
  static const float kPositions[] = {-1, -1, 1, -1, -1, 1, 1, 1};
  const GLuint position = static_cast<GLuint>(glGetAttribLocation(program, "position"));
  glVertexAttribPointer(position, 2, GL_FLOAT, GL_FALSE, 0, kPositions);
  glEnableVertexAttribArray(position);
  glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
}

// Draws the bound texture's surroundings.
void DrawSurroundings() {
  DrawOver(UsedProgram(kFragmentShader));
}

class GlObjects : public GlTest {};

TEST_F(GlObjects, TexturesAndTargetsReadBackAsUploaded) {
  const Image noise = NoiseImage(37, 11, 1);
  const Texture texture(noise, Filter::Linear, Wrap::MirroredRepeat);
  EXPECT_TRUE(SameImage(noise, ReadTexture(texture.name(), 37, 11)));
  EXPECT_EQ(TextureParameter(texture.name(), GL_TEXTURE_MAG_FILTER), GL_LINEAR);
  EXPECT_EQ(TextureParameter(texture.name(), GL_TEXTURE_WRAP_T), GL_MIRRORED_REPEAT);

  const RenderTarget target(5, 3);
  EXPECT_EQ(target.read().bytes, std::vector<uint8_t>(5 * 3 * 4, 0x66));
  EXPECT_EQ(BoundFramebuffer(), target.framebuffer());
  EXPECT_EQ(BoundTexture(0), target.texture());
  EXPECT_TRUE(TakeGlErrors().empty());
}

TEST_F(GlObjects, ErrorsComeOutOldestFirstAndOnce) {
  glEnable(GL_RGBA);
  const std::vector<GLenum> errors = TakeGlErrors();
  ASSERT_FALSE(errors.empty());
  EXPECT_EQ(errors.front(), static_cast<GLenum>(GL_INVALID_ENUM));
  EXPECT_TRUE(TakeGlErrors().empty());
}

TEST_F(GlObjects, ASecondContextGivesTheFirstBack) {
  const Texture texture(NoiseImage(2, 2, 1));
  {
    const GlContext other;
    ASSERT_TRUE(other.ok());
    EXPECT_EQ(BoundTexture(0), 0u);
  }
  EXPECT_EQ(eglGetCurrentContext(), context().context());
  EXPECT_EQ(BoundTexture(0), texture.name());
}

class SamplerModel : public GlTest,
                     public ::testing::WithParamInterface<std::tuple<Wrap, Filter>> {};

TEST_P(SamplerModel, AgreesWithTheDriver) {
  const Wrap wrap = std::get<0>(GetParam());
  const Filter filter = std::get<1>(GetParam());
  const Image noise = NoiseImage(32, 16, 3);
  const ImageBounds exact(noise);
  const RenderTarget target(211, 97);
  const Texture texture(noise, filter, wrap);
  target.bind();
  DrawSurroundings();

  ImageBounds expected(211, 97);
  reference::ForEachFragment({}, 211, 97, 211, 97, [&](int x, int y, Vec2 c) {
    const auto texel = reference::SampleBounds(exact, wrap, filter,
                                               {c.x * 3.7 - 1.35, c.y * 3.7 - 1.35}, 1.0 / 128);
    expected.low.set(x, y, texel.low);
    expected.high.set(x, y, texel.high);
  });
  const int tolerance = filter == Filter::Linear ? 1 : 0;
  EXPECT_TRUE(WithinImage(expected, target.read(), Compare().within(tolerance)));
}

std::string ModeName(const ::testing::TestParamInfo<SamplerModel::ParamType>& mode) {
  static const char* const kWraps[] = {"Clamp", "Mirrored", "Repeat"};
  return std::string(kWraps[static_cast<int>(std::get<0>(mode.param))]) +
         (std::get<1>(mode.param) == Filter::Linear ? "Linear" : "Nearest");
}

INSTANTIATE_TEST_SUITE_P(AllModes, SamplerModel,
                         ::testing::Combine(::testing::Values(Wrap::ClampToEdge,
                                                              Wrap::MirroredRepeat, Wrap::Repeat),
                                            ::testing::Values(Filter::Nearest, Filter::Linear)),
                         ModeName);

// Looks along a row of texels up close, a texel's width to both sides of a border.
constexpr const char* kBorderShader =
    "precision highp float; uniform sampler2D image; uniform float border, step;"
    "void main() {"
    "  gl_FragColor = texture2D(image, vec2(border + (gl_FragCoord.x - 256.0) * step, 0.5)); }";

class NearestSampling : public GlTest, public ::testing::WithParamInterface<int> {};

// The bound that warps are compared with counts on it: places are found with 16 bits of a
// coordinate or more. The share beyond them is the shader's own arithmetic.
TEST_P(NearestSampling, FindsBordersWithSixteenBits) {
  constexpr int kLooks = 512;
  const int width = GetParam();
  Image row(width, 1);
  for (int x = 0; x < width; ++x) {
    row.pixel(x, 0)[0] = static_cast<uint8_t>(x);
    row.pixel(x, 0)[1] = static_cast<uint8_t>(x / 256);
  }
  const RenderTarget target(kLooks, 1);
  const Texture texture(row, Filter::Nearest, Wrap::MirroredRepeat);
  target.bind();
  const GLuint program = UsedProgram(kBorderShader);
  const auto step = static_cast<float>(2.0 / kLooks / width);
  glUniform1f(glGetUniformLocation(program, "step"), step);
  const double slack = reference::kCaptureSlack * width;
  double farthest = 0;
  for (int i = 1; i < 100; ++i) {
    const auto border = static_cast<float>(static_cast<double>(i * (width - 1) / 100 + 1) / width);
    glUniform1f(glGetUniformLocation(program, "border"), border);
    DrawOver(program);
    const Image seen = target.read();
    for (int x = 0; x < kLooks; ++x) {
      const double place = (double{border} + (x + 0.5 - kLooks / 2) * double{step}) * width;
      const int texel = seen.pixel(x, 0)[0] + 256 * seen.pixel(x, 0)[1];
      const double off = std::max({texel - place, place - (texel + 1), 0.0});
      farthest = std::max(farthest, off);
    }
  }
  EXPECT_LE(farthest, slack);
}

INSTANTIATE_TEST_SUITE_P(Widths, NearestSampling,
                         ::testing::Values(64, 100, 1280, 2048, 3000, 4000));

}  // namespace
}  // namespace lumora::test
