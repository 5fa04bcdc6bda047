// SPDX-License-Identifier: Apache-2.0
// Textures that end with their owner, and only those.
#include "lumora/platform/linux/owned_texture.h"

#include <gtest/gtest.h>

#include <optional>

#include "lumora/platform/gl_api.h"
#include "support/gl_test.h"

namespace lumora::test {
namespace {

using platform::OwnedTexture;

class OwnedTextureTest : public GlTest {};

TEST_F(OwnedTextureTest, GoesWithItsOwner) {
  GLuint name = 0;
  {
    const OwnedTexture texture;
    name = texture.name();
    EXPECT_EQ(BoundTexture(0), name);
    EXPECT_TRUE(texture.IsHere());
  }
  EXPECT_EQ(glIsTexture(name), GL_FALSE);
}

TEST_F(OwnedTextureTest, StaysInItsContextWhenAnotherIsCurrent) {
  std::optional<OwnedTexture> texture;
  texture.emplace();
  const GLuint name = texture->name();
  {
    const GlContext other;
    ASSERT_TRUE(other.ok());
    GLuint foreign = 0;
    while (foreign != name) {
      glGenTextures(1, &foreign);
      glBindTexture(GL_TEXTURE_2D, foreign);
    }
    EXPECT_FALSE(texture->IsHere());
    texture.reset();
    EXPECT_EQ(glIsTexture(foreign), GL_TRUE);
  }
  EXPECT_EQ(glIsTexture(name), GL_TRUE);
}

// As seen from the owner, a new context with the handle of its dead one is the same context with
// somebody else's texture of the same name.
TEST_F(OwnedTextureTest, AnotherTextureOfTheSameNameIsNotTouched) {
  if (!gl::ContextHasExtension("GL_KHR_debug")) GTEST_SKIP() << "textures have no labels here";
  std::optional<OwnedTexture> texture;
  texture.emplace();
  const GLuint name = texture->name();
  glDeleteTextures(1, &name);
  glBindTexture(GL_TEXTURE_2D, name);  // makes a new one
  EXPECT_FALSE(texture->IsHere());
  texture.reset();
  EXPECT_EQ(glIsTexture(name), GL_TRUE);
  EXPECT_TRUE(TakeGlErrors().empty());
}

}  // namespace
}  // namespace lumora::test
