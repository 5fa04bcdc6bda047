// SPDX-License-Identifier: Apache-2.0
// Programs and shared images on their own: every line and call of each operation.
#include <gtest/gtest.h>

#include <memory>
#include <ostream>

#include "engine/engine_images.h"
#include "engine/setup_transcript.h"
#include "proofs/conformance/contract.h"
#include "support/gl_objects.h"
#include "support/scoped.h"

namespace lumora::test {
namespace {

/// In the context of an engine that has nothing else.
class InContext {
 protected:
  ObjectNames context() const { return CurrentContext(); }

  GPUBeautyFace engine_;
};

class ProgramCalls : public InContext, public testing::TestWithParam<size_t> {
 protected:
  void SetUp() override {
    if (!DriverHasBinaries()) GTEST_SKIP() << "this driver has no program binaries";
  }
  const ProgramCase& one() const { return AllPrograms()[GetParam()]; }
  /// The class: variants with marks upload the same.
  std::string kind() const {
    const std::string name = one().name;
    const size_t mask = name.find("Mask");
    return mask == std::string::npos ? name : name.substr(0, mask);
  }

  TempDirectory cache_;
  ScopedEnvironment environment_{"LUMORA_CACHE_DIR", cache_.path()};
};

TEST_P(ProgramCalls, OfLoadingFromSourceThenFromTheCache) {
  for (const bool cached : {false, true}) {
    SCOPED_TRACE(cached);
    const std::unique_ptr<GLProgram> program = one().make();
    const Recording recording(Checks::SetUp);
    ASSERT_TRUE(program->Load());
    EXPECT_TRUE(Same(cached ? LoadedFromCache(*program, "program", one())
                            : LoadedFromSource(*program, "program", one(), cache_.path()),
                     recording.lines(context() + NamesOf(*program))));
  }
}

// From the cache the earlier program is deleted first, from source it is left.
TEST_P(ProgramCalls, OfLoadingAgain) {
  const std::unique_ptr<GLProgram> program = one().make();
  ASSERT_TRUE(program->Load());
  ObjectNames names = context();
  for (const auto& [object, name] : NamesOf(*program)) names[object] = "earlier";
  const Recording recording(Checks::SetUp);
  ASSERT_TRUE(program->Load());
  Script expected = LoadedFromCache(*program, "program", one());
  if (one().cache_file != nullptr) {
    expected[0] = "glIsProgram earlier";
    expected.insert(expected.begin() + 1, "glDeleteProgram earlier");
  }
  EXPECT_TRUE(Same(expected, recording.lines(names + NamesOf(*program))));
}

TEST_P(ProgramCalls, OfUsingAndDrawing) {
  const Texture first(Image(2, 2));
  const Texture second(Image(2, 2));
  const RenderTarget target(4, 4);
  const std::unique_ptr<GLProgram> program = one().make();
  ASSERT_TRUE(program->Load());
  program->SetTextures(0, static_cast<int>(first.name()));
  program->SetTextures(1, static_cast<int>(second.name()));
  const bool two_inputs = kind() == "CheekSlimmerLarge" || kind() == "FaceWhiteningLarge";
  const std::vector<std::string> inputs =
      two_inputs ? std::vector<std::string>{"first", "second"} : std::vector<std::string>{"first"};

  const Recording recording(Checks::Passes);
  const float positions[16] = {-1, 1, 1, 1, -1, -1, 1, 1, 1, -1, 1, 1, 1, 1, 1, 1};
  const float coordinates[8] = {0.25f, 1, 0.25f, 0.5f, 0.75f, 0.5f, 0.75f, 1};
  const unsigned short indices[3] = {2, 1, 3};
  EXPECT_TRUE(program->Use());
  EXPECT_TRUE(program->SetVertexCoord(4, positions));
  EXPECT_TRUE(program->SetTextureCoord(2, coordinates));
  EXPECT_TRUE(program->Draw());
  EXPECT_TRUE(program->Draw(3, indices));
  program->m_nAttribLoc[5] = program->m_nTexCoordLoc;
  EXPECT_TRUE(program->VertexAttribPointer(5, 2, coordinates));
  EXPECT_FALSE(program->SetTextures(8, 1));

  const std::string quad = " upright (0.25 0.5 0.75 1)";
  const Script expected = Use("program", kind(), inputs, UniformsOf(*program, kind())) +
                          Draw({"upright", "(0.25 0.5 0.75 1)"}) +
                          Script{"glDrawElements TRIANGLES 2,1,3 UNSIGNED_SHORT" + quad,
                                 "glVertexAttribPointer a_textureCoord 2 FLOAT 0 0",
                                 "glEnableVertexAttribArray a_textureCoord"} +
                          Told(Error("GLProgram", "[SetTextures] nIdx 8 must < 8"));
  // The target is the test's own: to be counted it needs a name.
  ObjectNames names = context() + NamesOf(*program) + NameOfTexture(first.name(), "first") +
                      NameOfTexture(second.name(), "second");
  names[ObjectNow(ObjectKind::Framebuffer, target.framebuffer())] = "target";
  EXPECT_TRUE(Same(expected, recording.lines(names)));
}

TEST_P(ProgramCalls, OfTheEnd) {
  std::unique_ptr<GLProgram> program = one().make();
  ASSERT_TRUE(program->Load());
  const ObjectNames names = context() + NamesOf(*program);
  const Script expected = ProgramDeleted(*program, "program");
  const Recording recording(Checks::SetUp);
  program.reset();
  EXPECT_TRUE(Same(expected, recording.lines(names)));
}

// Whatever its name is, it is deleted.
TEST_P(ProgramCalls, OfAnObjectThatWasNeverLoaded) {
  const Recording recording(Checks::SetUp);
  std::unique_ptr<GLProgram> program = one().make();
  EXPECT_FALSE(program->Use());
  program.reset();
  EXPECT_TRUE(Same(Script{"glIsProgram none"} +
                       Told(Error("GLProgram", "[Use] invalid program id -1")) +
                       Script{"glDeleteProgram none"} +
                       Told(Info("GLProgram", "[~GLProgram] program -1 deleted\n")),
                   recording.lines(context())));
}

INSTANTIATE_TEST_SUITE_P(All, ProgramCalls, testing::Range(size_t{0}, AllPrograms().size()),
                         [](const testing::TestParamInfo<size_t>& row) {
                           return std::string(AllPrograms()[row.param].name);
                         });

class ImageCalls : public InContext, public testing::Test {};

TEST_F(ImageCalls, OfASharedImage) {
  SEGLImage image(1);
  ObjectNames names;
  {
    const Recording recording(Checks::SetUp);
    ASSERT_EQ(1, image.Create(64, 16, 1));
    names = context() + NamesOf(image, "image");
    EXPECT_TRUE(Same(ImageMade("image"), recording.lines(names)));
  }
  const Recording recording(Checks::SetUp);
  EXPECT_NE(nullptr, image.Lock());
  EXPECT_EQ(0, image.Unlock());
  EXPECT_EQ(0x130, image.GetFlag());
  EXPECT_TRUE(Same({}, recording.lines(names)));
  image.Destroy();
  image.Destroy();  // nothing but the texture's unset name is left to delete
  EXPECT_TRUE(
      Same(ImageDestroyed("image") + Script{"glDeleteTextures none"}, recording.lines(names)));
}

TEST_F(ImageCalls, OfAPlainImage) {
  SEGLImage image(0);
  const Recording recording(Checks::SetUp);
  ASSERT_EQ(1, image.Create(20, 10, 5));
  const ObjectNames names = context() + NamesOf(image, "image");
  image.Destroy();
  EXPECT_TRUE(
      Same(PlainTextureMade("image", "RGBA", 20, 10, "REPEAT") + Script{"glDeleteTextures image"},
           recording.lines(names)));
}

}  // namespace
}  // namespace lumora::test
