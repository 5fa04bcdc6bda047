// SPDX-License-Identifier: Apache-2.0
// Rectified preview frames, whole, against the model.
#include <gtest/gtest.h>

#include <optional>

#include "engine/capture_scene.h"
#include "lumora/platform/settings.h"
#include "lumora/programs/rectification_programs.h"
#include "reference/engine_model.h"
#include "support/compare.h"
#include "support/gl_objects.h"
#include "support/log_capture.h"
#include "support/pictures.h"
#include "support/property_override.h"
#include "support/scoped.h"

namespace lumora::test {
namespace {

constexpr char kTag[] = "Lumora";

/// An engine and its model, rectifying the same frames.
class Scene {
 public:
  Scene(int width, int height, bool show_mask = false)
      : width_(width), height_(height), model_(width, height, OptionsFor(show_mask)) {
    std::optional<ScopedProperty> property;
    if (show_mask) property.emplace(kShowMaskProperty, "1");
    engine_.Init(width, height, width, height, nullptr, false);
    ClearImages(engine_);
  }

  GPUBeautyFace& engine() { return engine_; }
  const Frame& result() const { return result_; }

  testing::AssertionResult rectifies(const Frame& frame, int degree) {
    CallerFrame caller(frame);
    const int returned = engine_.Rectification(caller.luma(), caller.chroma(), degree, 3);
    return compared(returned, caller, model_.rectification(frame, degree));
  }
  testing::AssertionResult corrects(const Frame& frame, int camera,
                                    const reference::RadialCoefficients& k) {
    CallerFrame caller(frame);
    const int returned = engine_.RadialRectification(caller.luma(), caller.chroma(), 3, camera);
    return compared(returned, caller, model_.radial_rectification(frame, k));
  }
  testing::AssertionResult slims(const Frame& frame, const FaceRecord& face) {
    CallerFrame caller(frame);
    const int returned =
        engine_.FaceProcess(caller.luma(), caller.chroma(), 5, face.as<FACE_INFO_t>(), 0);
    return compared(returned, caller, model_.face_process(frame, 5, face));
  }

 private:
  static reference::PreviewModel::Options OptionsFor(bool show_mask) {
    reference::PreviewModel::Options options;
    options.show_mask = show_mask;
    return options;
  }
  testing::AssertionResult compared(int returned, const CallerFrame& caller,
                                    const reference::FrameBounds& expected) {
    result_ = caller.frame(width_, height_);
    if (returned != 1) return testing::AssertionFailure() << "the call returned " << returned;
    if (!caller.intact())
      return testing::AssertionFailure() << "bytes beside the frame were written";
    return WithinFrame(expected, result_);
  }

  int width_, height_;
  GPUBeautyFace engine_;
  reference::PreviewModel model_;
  Frame result_;
};

class Degrees : public testing::TestWithParam<int> {};

// Unlike the other passes, this one samples linearly only when the input was bound last: the first
// frames differ from the later ones.
TEST_P(Degrees, FramesAreMappedAsTheModelMapsThem) {
  Scene scene(160, 120);
  for (int frame = 0; frame < 3; ++frame) {
    EXPECT_TRUE(scene.rectifies(TextureFrame(160, 120), GetParam())) << "frame " << frame;
  }
  Scene padded(176, 96);
  EXPECT_TRUE(padded.rectifies(TextureFrame(176, 96), GetParam()));
}

TEST_P(Degrees, TheMaskVariantShowsADot) {
  Scene scene(160, 120, true);
  for (int frame = 0; frame < 2; ++frame) {
    EXPECT_TRUE(scene.rectifies(TextureFrame(160, 120), GetParam())) << "frame " << frame;
  }
}

INSTANTIATE_TEST_SUITE_P(Rectification, Degrees,
                         testing::Values(0, 1, 2, 3, 10, 40, 500, -1, -2, -3, -10, -40, -500));

TEST(Rectification, NoDegreeGivesTheFrameBack) {
  Scene scene(160, 120);
  const Frame frame = NoiseFrame(160, 120, 1);
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(scene.rectifies(frame, 0));
    EXPECT_TRUE(SameFrame(frame, scene.result(), Compare().within(1))) << i;
  }
}

TEST(Rectification, TheDotIsRedAndMovesWithTheDegree) {
  // Left of the middle, and up for positive settings; Y of red is 76.
  const struct {
    int degree, x, y;
  } rows[] = {{1, 16, 12}, {2, 80, 12}, {-2, 80, 108}, {-1, 16, 108}};
  const Frame frame(160, 120, 200);
  for (const auto& row : rows) {
    Scene scene(160, 120, true);
    ASSERT_TRUE(scene.rectifies(frame, row.degree));
    EXPECT_EQ(255, scene.result().y(row.x, row.y)) << "red is stored as it is, not as luma";
    EXPECT_EQ(0, scene.result().cr(row.x, row.y));
    EXPECT_EQ(200, scene.result().y(row.x, 60));
  }
}

TEST(Rectification, ChangesBetweenEffects) {
  Scene scene(160, 120);
  const Frame frame = TextureFrame(160, 120);
  const FaceRecord face = reference::SlimmingFace(80, 60, 30, 30);
  EXPECT_TRUE(scene.slims(frame, face));
  EXPECT_TRUE(scene.rectifies(frame, 5));
  EXPECT_TRUE(scene.slims(frame, face));
  EXPECT_TRUE(scene.corrects(frame, 0, reference::DefaultRadialCoefficients()));
  EXPECT_TRUE(scene.corrects(frame, 0, reference::DefaultRadialCoefficients()));
  EXPECT_TRUE(scene.rectifies(frame, -5));
}

// The filter goes to whatever texture is bound, before the input is.
TEST(Rectification, SetsLinearFiltersOnTheTextureThatIsBound) {
  Scene scene(160, 120);
  GPUBeautyFace& engine = scene.engine();
  const auto filters = [](const SEGLImage* image) {
    const GLint least = TextureParameter(image->m_hTexture, GL_TEXTURE_MIN_FILTER);
    const GLint most = TextureParameter(image->m_hTexture, GL_TEXTURE_MAG_FILTER);
    EXPECT_EQ(least, most);
    return least;
  };
  EXPECT_EQ(engine.m_pUVUVImage->m_hTexture, BoundTexture(0));
  EXPECT_EQ(GL_NEAREST, filters(engine.m_pUVUVImage));
  EXPECT_EQ(1, engine.DrawRectification());
  EXPECT_EQ(GL_LINEAR, filters(engine.m_pUVUVImage));
  EXPECT_EQ(engine.m_pRGBImage->m_hTexture, BoundTexture(0));
  // Packing makes the input nearest and leaves its own source bound, which is next.
  engine.DrawRGBtoYY(1);
  EXPECT_EQ(GL_NEAREST, filters(engine.m_pRGBImage));
  EXPECT_EQ(GL_LINEAR, filters(engine.m_pWorkImage[0]));
  engine.DrawRGBtoUV(1);
  EXPECT_EQ(GL_NEAREST, filters(engine.m_pWorkImage[0]));
  EXPECT_EQ(1, engine.DrawRadialRectification());
  EXPECT_EQ(GL_LINEAR, filters(engine.m_pWorkImage[0]));
  EXPECT_EQ(GL_NEAREST, filters(engine.m_pRGBImage));
  EXPECT_TRUE(TakeGlErrors().empty());
}

TEST(Rectification, QuadsOfADegree) {
  GPUBeautyFace engine;
  engine.Init(64, 48, 64, 48, nullptr, false);
  const auto& program = static_cast<GLProgRectificaton&>(*engine.m_pProgRectification);
  const struct {
    int degree;
    float shown;
    float corners[4][2];
  } rows[] = {{0, 0, {{0, 0}, {1, 0}, {0, 1}, {1, 1}}},
              {10, 3, {{0.05f, 0.1f}, {0.95f, 0}, {0.05f, 0.9f}, {0.95f, 1}}},
              {2, 2, {{0.01f, 0.02f}, {0.99f, 0}, {0.01f, 0.98f}, {0.99f, 1}}},
              {500, 3, {{2.5f, 5}, {-1.5f, 0}, {2.5f, -4}, {-1.5f, 1}}},
              {-10, -3, {{0.05f, 0}, {0.95f, 0.1f}, {0.05f, 1}, {0.95f, 0.9f}}},
              {-1, -1, {{0.005f, 0}, {0.995f, 0.01f}, {0.005f, 1}, {0.995f, 0.99f}}}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.degree);
    EXPECT_EQ(1, engine.SetRectParameters(row.degree));
    EXPECT_EQ(row.shown, program.m_fDegree);
    for (int i = 0; i < 4; ++i) {
      EXPECT_NEAR(row.corners[i][0], program.m_fvQuad[i][0], 1e-6f) << i;
      EXPECT_NEAR(row.corners[i][1], program.m_fvQuad[i][1], 1e-6f) << i;
    }
  }
  for (const int degree : {INT32_MIN, INT32_MAX}) EXPECT_EQ(1, engine.SetRectParameters(degree));
}

TEST(Rectification, TellsStartAndEnd) {
  Scene scene(160, 120);
  const Frame frame = TextureFrame(160, 120);
  CallerFrame caller(frame);
  LogCapture log;
  scene.engine().Rectification(caller.luma(), caller.chroma(), 1, 0);
  EXPECT_TRUE(LogIs(log, {Info(kTag, "FaceProcess++"), Info(kTag, "FaceProcess--")}));
  scene.engine().RadialRectification(caller.luma(), caller.chroma(), 0, 0);
  EXPECT_TRUE(LogIs(log, {Info(kTag, "FaceProcess  RadialRectification++"),
                          Info(kTag, "FaceProcess  RadialRectification--")}));
}

TEST(Rectification, FailsWithoutASetUp) {
  const Frame frame = NoiseFrame(160, 120, 1);
  CallerFrame caller(frame);
  GPUBeautyFace engine;
  LogCapture log;
  EXPECT_EQ(0, engine.Rectification(caller.luma(), caller.chroma(), 1, 0));
  EXPECT_EQ(0, engine.RadialRectification(caller.luma(), caller.chroma(), 0, 0));
  const LogLine missing = Error(kTag, "[SetSrcImage]g_pSrcTexture is not initiated");
  EXPECT_TRUE(LogIs(log, {Info(kTag, "FaceProcess++"), missing,
                          Info(kTag, "FaceProcess  RadialRectification++"), missing}));
  EXPECT_EQ(0, engine.SetRectParameters(1));
  EXPECT_EQ(0, engine.SetRadialRectParameters(0));
  EXPECT_EQ(0, engine.DrawRectification());
  EXPECT_EQ(0, engine.DrawRadialRectification());

  engine.Init(160, 120, 160, 120, nullptr, false);
  engine.m_bIsInit = false;
  log.take();
  EXPECT_EQ(0, engine.Rectification(caller.luma(), caller.chroma(), 1, 0));
  EXPECT_EQ(0, engine.RadialRectification(caller.luma(), caller.chroma(), 0, 0));
  EXPECT_TRUE(
      LogIs(log, {Info(kTag, "FaceProcess++"), Info(kTag, "!m_bIsInit"),
                  Info(kTag, "FaceProcess  RadialRectification++"), Info(kTag, "!m_bIsInit")}));
  EXPECT_EQ(frame.bytes, caller.bytes());
  engine.m_bIsInit = true;
}

// ---- Radial -------------------------------------------------------------------------------------

class RadialRectification : public testing::Test {
 protected:
  RadialRectification() { platform::SetSystemRoot(root_.path()); }
  ~RadialRectification() override { platform::SetSystemRoot(""); }
  void write(const std::string& path, const std::string& content) {
    WriteFile(root_.path() + path, content);
  }

  TempDirectory root_;
};

TEST_F(RadialRectification, WithoutFilesTheDefaultLensIsCorrected) {
  Scene scene(160, 120);
  for (int frame = 0; frame < 3; ++frame) {
    EXPECT_TRUE(scene.corrects(TextureFrame(160, 120), 0, reference::DefaultRadialCoefficients()))
        << "frame " << frame;
  }
  EXPECT_TRUE(scene.corrects(NoiseFrame(160, 120, 2), 1, reference::DefaultRadialCoefficients()));
}

TEST_F(RadialRectification, EachCameraHasItsOwnLens) {
  write("/sys/android_camera/sensor", "back one");
  write("/sys/android_camera2/sensor", "front two");
  write("/system/etc/one_1", "r_param=1.1 0.05 0 0");
  write("/system/etc/two_1", "r_param=0.9 -0.1 0.02 0.5");
  Scene scene(160, 120);
  const auto floats = [](float a, float b, float c, float d) {
    return reference::RadialCoefficients{static_cast<double>(a), static_cast<double>(b),
                                         static_cast<double>(c), static_cast<double>(d)};
  };
  const reference::RadialCoefficients first = floats(1.1f, 0.05f, 0, 0);
  const reference::RadialCoefficients second = floats(0.9f, -0.1f, 0.02f, 0.5f);
  EXPECT_TRUE(scene.corrects(TextureFrame(160, 120), 0, first));
  EXPECT_TRUE(scene.corrects(TextureFrame(160, 120), 1, second));
  EXPECT_TRUE(scene.corrects(TextureFrame(160, 120), 2, first));
  EXPECT_TRUE(scene.corrects(TextureFrame(160, 120), -1, first));
  // Files are read for every frame.
  write("/system/etc/one_1", "r_param=0.8");
  reference::RadialCoefficients changed = reference::DefaultRadialCoefficients();
  changed[0] = static_cast<double>(0.8f);
  EXPECT_TRUE(scene.corrects(TextureFrame(160, 120), 0, changed));
}

TEST_F(RadialRectification, TheRootMayComeFromTheEnvironment) {
  platform::SetSystemRoot("");
  const ScopedEnvironment root("LUMORA_SYSTEM_ROOT", root_.path());
  write("/system/etc/_1", "r_param 2 3 4 5");
  GPUBeautyFace engine;
  engine.Init(64, 48, 64, 48, nullptr, false);
  EXPECT_EQ(1, engine.SetRadialRectParameters(0));
  const float* k = static_cast<GLProgRadialDistortion&>(*engine.m_pProgRadialDistortion).m_fvKval;
  for (int i = 0; i < 4; ++i) EXPECT_EQ(static_cast<float>(2 + i), k[i]);
}

// Numbers that make no sense draw some picture.
TEST_F(RadialRectification, AnyNumbersAreSafe) {
  write("/sys/android_camera/sensor", "back lens");
  Scene scene(160, 120);
  for (const char* numbers :
       {"nan nan nan nan", "inf -inf inf 1", "1e38 1e38 1e38 1e38", "0 0 0 0"}) {
    write("/system/etc/lens_1", std::string("r_param ") + numbers);
    CallerFrame caller(TextureFrame(160, 120));
    EXPECT_EQ(1, scene.engine().RadialRectification(caller.luma(), caller.chroma(), 0, 0));
    EXPECT_TRUE(caller.intact());
  }
}

}  // namespace
}  // namespace lumora::test
