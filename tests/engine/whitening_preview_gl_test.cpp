// SPDX-License-Identifier: Apache-2.0
// Whitened preview frames: the colour-convert chain, pass by pass and end to end.
//
// Each pass is checked against the model's answer to the picture that the pass before it really
// left, so that roundings do not add up. For that the images' filters are made nearest: linear
// filtering may be off by one in 8 bits even where pixels lie on pixels.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "engine/capture_scene.h"
#include "lumora/programs/face_whitening_programs.h"
#include "reference/colour_bounds.h"
#include "reference/whitening_bounds.h"
#include "support/compare.h"
#include "support/guarded_buffer.h"
#include "support/log_capture.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

using reference::ImageBounds;
using reference::TexelBounds;
using reference::Vec2;

constexpr char kTag[] = "Lumora";

/// Smooth and coloured: faces are neither grey nor too dark to be whitened.
Frame WarmFrame(int width, int height) {
  Frame frame = TextureFrame(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      frame.y(x, y) = static_cast<uint8_t>(70 + frame.y(x, y) / 3);
      frame.cr(x, y) = static_cast<uint8_t>(146 + (x + 2 * y) % 20);
      frame.cb(x, y) = static_cast<uint8_t>(96 + (2 * x + y) % 20);
    }
  }
  return frame;
}

/// A pass that gives every pixel a colour that depends on the pixel and its place alone.
ImageBounds Pass(const Image& source, int width,
                 const std::function<TexelBounds(const reference::Texel&, Vec2)>& shader) {
  ImageBounds result(source);
  for (int y = 0; y < source.height; ++y) {
    for (int x = 0; x < width; ++x) {
      const TexelBounds texel =
          shader(source.at(x, y), {(x + 0.5) / source.width, (y + 0.5) / source.height});
      result.low.set(x, y, texel.low);
      result.high.set(x, y, texel.high);
    }
  }
  return result;
}

struct Levels {
  int intensity = 40;
  int saturation = 25;
  int32_t effect = reference::kIntensityAndSaturation;
};

/// An engine in colour-convert mode. Its rows are as long as its images', so that every pass takes
/// pixels where they are.
class Chain {
 public:
  Chain(int width, int height, reference::Filter filter = reference::Filter::Nearest)
      : width_(width), height_(height) {
    engine_.Init(width, height, width, height, &stride_, true);
    ClearImages(engine_);
    if (filter == reference::Filter::Linear) return;
    for (const SEGLImage* image : {engine_.m_pWorkImage[0], engine_.m_pWorkImage[1],
                                   engine_.m_pWorkImage[2], engine_.m_pRGBImage}) {
      glBindTexture(GL_TEXTURE_2D, image->m_hTexture);
      glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
      glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    }
  }

  GPUBeautyFace& engine() { return engine_; }
  Image image(int index) {
    return PixelsOf(index == 3 ? *engine_.m_pRGBImage : *engine_.m_pWorkImage[index]);
  }

  void load(const Frame& frame) {
    CallerFrame caller(frame);
    ASSERT_EQ(1, engine_.LoadPreviewFrameBuffer(caller.luma()));
    ASSERT_EQ(1, engine_.ConvertYUV());
    EXPECT_EQ(frame.bytes, caller.bytes());
  }

  int whiten(const std::vector<FaceRecord>& faces, const Levels& levels) {
    std::vector<FACE_INFO_t> records = RecordsFrom(faces);
    return engine_.DoFaceWhitening(records.data(), static_cast<int>(records.size()),
                                   levels.intensity, levels.saturation,
                                   static_cast<BEAUTYSHOT_EFFECT_t>(levels.effect));
  }

  Bytes packed() {
    CallerPlanes planes(width_, height_);
    EXPECT_EQ(1, engine_.CopyMemYUVfromSrcTexture(planes.luma(), planes.chroma()));
    EXPECT_TRUE(planes.intact());
    return planes.bytes();
  }

  int width_, height_;
  int stride_ = 0;

 private:
  GPUBeautyFace engine_;
};

void ExpectColourPasses(Chain& chain, const Frame& frame) {
  const Image yuv = chain.image(3);
  const Image rgb = chain.image(0);
  EXPECT_TRUE(WithinImage(Pass(yuv, chain.width_,
                               [](const reference::Texel& texel, Vec2) {
                                 return YuvToRgbBounds(TexelBounds::Exactly(texel));
                               }),
                          rgb, Compare().named("RGB")));
  EXPECT_TRUE(WithinImage(Pass(rgb, chain.width_,
                               [](const reference::Texel& texel, Vec2) {
                                 return RgbToHsiBounds(TexelBounds::Exactly(texel), 0.0);
                               }),
                          chain.image(1), Compare().named("HSI")));
  for (int y = 0; y < frame.height; y += 7) {
    for (int x = 0; x < frame.width; x += 5) ASSERT_EQ(frame.y(x, y), yuv.pixel(x, y)[0]);
  }
}

/// What a face's pass makes of `source`, when the face is measured on `measured`.
ImageBounds Whitened(const Image& source, const Image& measured, const FaceRecord& face,
                     const Levels& levels, int width) {
  const auto sample = [&](int x, int y) {
    return reference::SampleHsi(measured.bytes.data(), x, y, measured.width);
  };
  const reference::WhiteningParameters parameters = reference::MeasureFace(
      face, levels.intensity, levels.saturation, levels.effect, width, source.height, sample);
  return Pass(source, width, [&](const reference::Texel& texel, Vec2 place) {
    return WhitenBounds(TexelBounds::Exactly(texel), place, parameters.uniforms);
  });
}

/// Whitens the faces one by one: the pass of the last one is checked for every length of the list.
void ExpectWhitened(int width, int height, const std::vector<FaceRecord>& faces,
                    const Levels& levels) {
  Chain chain(width, height);
  const Frame frame = WarmFrame(width, height);
  Image before;    // what the last face's pass reads
  Image measured;  // work image 1 at that time
  for (size_t count = 0; count <= faces.size(); ++count) {
    SCOPED_TRACE(testing::Message() << count << " faces");
    chain.load(frame);
    ExpectColourPasses(chain, frame);
    const Image untouched = chain.image(1);
    const std::vector<FaceRecord> some(faces.begin(),
                                       faces.begin() + static_cast<std::ptrdiff_t>(count));
    ASSERT_EQ(1, chain.whiten(some, levels));
    ASSERT_EQ(count == 0 ? 3 : count % 2 == 1 ? 2 : 1, chain.engine().m_nResultIdx);
    const Image result = chain.image(count == 0 ? 1 : chain.engine().m_nResultIdx);
    if (count == 0) {
      EXPECT_TRUE(SameImage(untouched, result)) << "nothing was drawn";
    } else {
      // Odd passes read work image 1, which faces are measured on; even ones leave it alone.
      if (count == 1) measured = before = untouched;
      ASSERT_TRUE(WithinImage(Whitened(before, measured, some.back(), levels, width), result,
                              Compare().named("whitened")));
    }
    if (count % 2 == 0) measured = result;
    before = result;
    if (count == 0) continue;

    // Back to YUV and to the caller.
    ASSERT_EQ(1, chain.engine().ConvertHSItoYUV());
    const Image yuv = chain.image(3);
    const ImageBounds expected = Pass(result, width, [](const reference::Texel& texel, Vec2) {
      return reference::HsiToYuvBounds(texel);
    });
    EXPECT_TRUE(WithinImage(expected, yuv, Compare().named("YUV")));
    const Bytes noise = NoisePlanes(width, height, 1);
    reference::PlaneBounds planes(width, height, noise);
    planes.put({0, 0, width, height}, ImageBounds(yuv));
    EXPECT_TRUE(WithinPlanes(planes, chain.packed()));
  }
}

TEST(WhiteningPreview, FacesOneAfterTheOther) {
  ExpectWhitened(
      320, 240,
      {PortraitFace(100, 110, 50, 5), PortraitFace(220, 120, 45, -20), PortraitFace(160, 130, 40)},
      {});
}

TEST(WhiteningPreview, VgaFrames) {
  ExpectWhitened(640, 480, {PortraitFace(300, 220, 120, 12)}, {});
}

TEST(WhiteningPreview, FacesAtTheEdges) {
  ExpectWhitened(160, 120, {PortraitFace(2, 60, 30), PortraitFace(158, 118, 30)}, {});
  ExpectWhitened(160, 120, {PortraitFace(80, -5, 30), PortraitFace(-500, 60, 30)}, {});
}

TEST(WhiteningPreview, EffectsAndLevels) {
  const std::vector<FaceRecord> faces = {PortraitFace(80, 55, 30, 30)};
  for (const int effect : {3, 4, 8, 15, 0, 7, -1}) {
    SCOPED_TRACE(effect);
    ExpectWhitened(160, 120, faces, {60, 40, effect});
  }
  for (const Levels& levels : {Levels{0, 0, 8}, {255, 255, 8}, {-60, -60, 8}}) {
    ExpectWhitened(160, 120, faces, levels);
  }
}

TEST(WhiteningPreview, TinyFacesHaveNoOuterEllipse) {
  ExpectWhitened(160, 120, {PortraitFace(80, 55, 2)}, {});
}

// What the mask holds at the places of the features; written down by hand.
TEST(WhiteningPreview, TheMaskTellsTheFeatures) {
  Chain chain(320, 240);
  chain.load(WarmFrame(320, 240));
  ASSERT_EQ(1, chain.whiten({PortraitFace(160, 120, 100)}, {0, 0, 15}));
  const Image result = chain.image(2);
  const auto mask = [&result](int x, int y) { return int{result.pixel(x, y)[3]}; };
  EXPECT_EQ(0, mask(5, 5)) << "outside";
  EXPECT_EQ(255, mask(160, 30)) << "forehead";
  EXPECT_NEAR(25.5, mask(118, 90), 0.5)
      << "an eye counts for its pair and the centre: 1 - 0.2 - 0.3 - 0.4";
  EXPECT_NEAR(25.5, mask(202, 90), 0.5) << "the other eye";
  EXPECT_NEAR(76.5, mask(115, 60), 0.5) << "a brow counts for the centre: 1 - 0.3 - 0.4";
  EXPECT_NEAR(76.5, mask(205, 60), 0.5) << "the other brow";
  EXPECT_EQ(153, mask(160, 130)) << "nose: 1 - 0.4";
  EXPECT_EQ(102, mask(160, 192)) << "mouth: 1 - 0.6";
  const Image hsi = chain.image(1);
  const auto colours = [](const Image& image) {
    Image without = image;
    for (size_t i = 3; i < without.bytes.size(); i += 4) without.bytes[i] = 0;
    return without;
  };
  EXPECT_TRUE(SameImage(colours(hsi), colours(result), Compare().within(1))) << "no shift";
}

// As applications have it: the engine's own filters. One step of the five passes may come out as up
// to three when saturated colours go there and back.
TEST(WhiteningPreview, LinearFiltersMakeNoVisibleDifference) {
  const Frame frame = WarmFrame(320, 240);
  const std::vector<FaceRecord> faces = {PortraitFace(100, 110, 50, 5),
                                         PortraitFace(220, 120, 45, -20)};
  Bytes results[2];
  for (const reference::Filter filter : {reference::Filter::Nearest, reference::Filter::Linear}) {
    Chain chain(320, 240, filter);
    for (int repeat = 0; repeat < 2; ++repeat) {
      chain.load(frame);
      ASSERT_EQ(1, chain.whiten(faces, {}));
      ASSERT_EQ(1, chain.engine().ConvertHSItoYUV());
      results[filter == reference::Filter::Linear] = chain.packed();
    }
  }
  EXPECT_TRUE(
      SameFrame(FrameOf(results[0], 320, 240), FrameOf(results[1], 320, 240), Compare().within(3)));
}

TEST(WhiteningPreview, AWhitenedFaceIsBrighter) {
  Chain chain(320, 240);
  const Frame frame = WarmFrame(320, 240);
  chain.load(frame);
  ASSERT_EQ(1, chain.whiten({PortraitFace(160, 120, 80)}, {60, 0, 3}));
  ASSERT_EQ(1, chain.engine().ConvertHSItoYUV());
  const Bytes result = chain.packed();
  EXPECT_GT(result[120 * 320 + 160], frame.y(160, 120) + 30);
  EXPECT_NEAR(frame.y(5, 5), result[5 * 320 + 5], 1);
}

// ---- Measuring ----------------------------------------------------------------------------------

TEST(WhiteningMeasures, AreKeptForTheCaller) {
  Chain chain(320, 240);
  chain.load(WarmFrame(320, 240));
  const FaceRecord face = PortraitFace(150, 110, 60);
  auto& program = static_cast<GLProgWhiteningBase&>(*chain.engine().m_pProgFaceWhitening);
  const auto sample = [hsi = chain.image(1)](int x, int y) {
    return reference::SampleHsi(hsi.bytes.data(), x, y, hsi.width);
  };
  const auto expected = reference::MeasureFace(face, 50, 30, 8, 320, 240, sample);
  ASSERT_EQ(1, chain.engine().SetFaceWhiteningParameters(
                   face.as<FACE_INFO_t>(), 50, 30, BEAUTYSHOT_EFFECT_BOTH, 7, false, nullptr));
  EXPECT_EQ(expected.radius, chain.engine().m_nFaceWhiteRadius);
  EXPECT_EQ(60, chain.engine().m_nFaceWhiteHalfWidth);
  EXPECT_EQ(expected.half_height, chain.engine().m_nFaceWhiteHalfHeight);
  EXPECT_EQ(150, chain.engine().m_nFaceWhiteCenterX);
  EXPECT_EQ(expected.centre.y, chain.engine().m_nFaceWhiteCenterY);
  EXPECT_EQ(0.75f, program.m_fAspectRatio);
  EXPECT_GT(program.m_fDiffI, 0.1f);
  EXPECT_NEAR(expected.uniforms.intensity_shift, double{program.m_fDiffI}, 1e-6);
  EXPECT_EQ(30.0f / 255.0f, program.m_fDiffS);
}

// A frame in memory and the HSI picture on the GPU may both be measured.
TEST(WhiteningMeasures, OfAFrameInMemory) {
  Chain chain(320, 240);
  chain.load(Frame(320, 240, 10));
  const Frame frame = WarmFrame(320, 240);
  CallerFrame caller(frame);
  const FaceRecord face = PortraitFace(315, 238, 60);
  const auto sample = [&](int x, int y) {
    return reference::SampleYuv(frame.bytes.data(), x, y, 320, 240);
  };
  const auto expected = reference::MeasureFace(face, 50, 30, 3, 320, 240, sample);
  auto& program = static_cast<GLProgWhiteningBase&>(*chain.engine().m_pProgFaceWhitening);
  ASSERT_EQ(
      1, chain.engine().SetFaceWhiteningParameters(
             face.as<FACE_INFO_t>(), 50, 30, BEAUTYSHOT_EFFECT_INTENSITY, 0, true, caller.luma()));
  EXPECT_GT(program.m_fDiffI, 0.1f);
  EXPECT_NEAR(expected.uniforms.intensity_shift, double{program.m_fDiffI}, 1e-6);
  EXPECT_EQ(0.0f, program.m_fDiffS);
}

// A frame of odd sides has no chroma for its last column and row: they take no part, and nothing
// behind the frame is read.
TEST(WhiteningMeasures, OfAFrameInMemoryOfOddSides) {
  const auto lift = [](int width, int height) {
    Chain chain(width, height);
    const size_t luma = LumaSize(width, height);
    GuardedBuffer frame(luma + static_cast<size_t>(width) * static_cast<size_t>(height / 2));
    std::fill_n(frame.data(), luma, uint8_t{120});
    for (int row = 0; row < height / 2; ++row) {
      for (int column = 0; column < width; ++column) {
        frame.data()[luma + static_cast<size_t>(row * width + column)] =
            column % 2 == 0 ? 150 : 105;
      }
    }
    frame.protect_from_writing();
    const FaceRecord face = PortraitFace(310, 225, 20);  // its square reaches the corner
    EXPECT_EQ(1,
              chain.engine().SetFaceWhiteningParameters(
                  face.as<FACE_INFO_t>(), 50, 30, BEAUTYSHOT_EFFECT_BOTH, 0, true, frame.data()));
    const auto& program = static_cast<GLProgWhiteningBase&>(*chain.engine().m_pProgFaceWhitening);
    return program.m_fDiffI;
  };
  EXPECT_GT(lift(320, 240), 0.1f);
  EXPECT_EQ(lift(321, 241), lift(320, 240));
  EXPECT_EQ(lift(321, 240), lift(320, 240));
}

// Effect and outer ellipse: of the same face, 1.1 times the half axes in the mask variant.
TEST(WhiteningMeasures, EffectsChooseTheShifts) {
  Chain chain(320, 240);
  chain.load(WarmFrame(320, 240));
  auto& program = static_cast<GLProgWhiteningBase&>(*chain.engine().m_pProgFaceWhitening);
  float plain = 0;
  const struct {
    int effect;
    bool intensity, saturation;
    float scale;
  } rows[] = {{3, true, false, 1.0f},   {4, false, true, 1.0f},  {8, true, true, 1.0f},
              {15, false, false, 1.1f}, {0, false, false, 1.0f}, {5, false, false, 1.0f},
              {-1, false, false, 1.0f}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.effect);
    chain.engine().SetFaceWhiteningParameters(PortraitFace(150, 110, 60).as<FACE_INFO_t>(), 50, 30,
                                              static_cast<BEAUTYSHOT_EFFECT_t>(row.effect), 0,
                                              false, nullptr);
    if (row.effect == 3) plain = program.m_fEllipseController[0][0];
    EXPECT_EQ(row.intensity, program.m_fDiffI > 0.0f);
    EXPECT_EQ(row.saturation ? 30.0f / 255.0f : 0.0f, program.m_fDiffS);
    EXPECT_FLOAT_EQ(plain / row.scale, program.m_fEllipseController[0][0]);
  }
}

TEST(WhiteningMeasures, SinglePixels) {
  Chain chain(320, 240);
  const Frame frame = WarmFrame(320, 240);
  chain.load(frame);
  const Image hsi = chain.image(1);
  Image other = hsi;
  other.fill(255, 3, 4, 5);
  SetPixels(*chain.engine().m_pWorkImage[2], other);
  SetPixels(*chain.engine().m_pWorkImage[0], other);
  int h = -1, s = -1, i = -1;
  EXPECT_EQ(1, chain.engine().GetGPU_HSI(nullptr, 31, 17, 320, 240, h, s, i, 0));
  const reference::HsiSample expected = reference::SampleHsi(hsi.bytes.data(), 31, 17, 320);
  EXPECT_EQ(expected.hue, h);
  EXPECT_EQ(expected.saturation, s);
  EXPECT_EQ(expected.intensity, i);
  for (const int image : {1, -1, 3}) {  // the remainder keeps its sign: image 2, 0, 2
    h = s = i = -1;
    EXPECT_EQ(1, chain.engine().GetGPU_HSI(nullptr, 31, 17, 320, 240, h, s, i, image));
    EXPECT_EQ(358, h);
    EXPECT_EQ(3, s);
    EXPECT_EQ(4, i);
  }
  CallerFrame caller(frame);
  EXPECT_EQ(1, chain.engine().GetGPU_HSI(caller.luma(), 31, 17, 320, 240, h, s, i, 0));
  EXPECT_EQ(reference::SampleYuv(frame.bytes.data(), 31, 17, 320, 240).saturation, s);
}

TEST(WhiteningMeasures, WithoutAnImageNothingIsSampled) {
  GPUBeautyFace engine;
  int h = 11, s = 22, i = 33;
  EXPECT_EQ(1, engine.GetGPU_HSI(nullptr, 0, 0, 320, 240, h, s, i, 0));
  EXPECT_EQ(11, h);
  EXPECT_EQ(22, s);
  EXPECT_EQ(33, i);
}

TEST(WhiteningMeasures, OneEllipse) {
  GPUBeautyFace engine;
  float matrix[9];
  LogCapture log;
  EXPECT_EQ(1, engine.GetEllipseTransformMatrix({100, 200, 0}, {300, 200, 0}, {200, 150, 0},
                                                {200, 250, 0}, matrix, 400, 300, 10, 1.5f));
  EXPECT_TRUE(LogIs(log, {Info(kTag, "scaleR = 1.50")}));
  EXPECT_FLOAT_EQ(2.5f, matrix[0]);
  EXPECT_FLOAT_EQ(1.0f, matrix[8]);
  EXPECT_FLOAT_EQ(engine.InvertEC(150), 0.41961758f);  // -ln(0.7) / 0.85
  EXPECT_EQ(engine.InvertEC(0), engine.InvertEC(1));
}

// ---- Transcripts and failures -------------------------------------------------------------------

TEST(WhiteningPreviewTranscript, TellsEachFace) {
  Chain chain(160, 120);
  chain.load(Frame(160, 120, 200, 100, 100));
  const FaceRecord face = PortraitFace(80, 55, 30);
  const auto sample = [hsi = chain.image(1)](int x, int y) {
    return reference::SampleHsi(hsi.bytes.data(), x, y, hsi.width);
  };
  const auto measured = reference::MeasureFace(face, 10, 30, 3, 160, 120, sample);
  LogCapture log;
  ASSERT_EQ(1, chain.whiten({face}, {10, 30, 3}));
  std::vector<LogLine> expected = {Info(kTag, "DoFaceWhitening+"),
                                   Debug(kTag, "GPU Face Whitening: fDiffS: 30.000000, fDiffI: %f",
                                         measured.uniforms.intensity_shift)};
  expected.insert(expected.end(), 7, Info(kTag, "scaleR = 1.00"));
  expected.push_back(Debug(kTag, "GPU Face Whitening Type : 3"));
  expected.push_back(Debug(kTag, "GPU Face Whitening Paramters : fDiffS: 0.000000, fDiffI: %f",
                           measured.uniforms.intensity_shift));
  expected.push_back(Info(kTag, "DoFaceWhitening-"));
  EXPECT_TRUE(LogIs(log.lines_of(kTag), expected));
}

TEST(WhiteningPreviewTranscript, OnlyTheMaskEnlargesTheOuterEllipse) {
  Chain chain(160, 120);
  chain.load(WarmFrame(160, 120));
  LogCapture log;
  ASSERT_EQ(1, chain.whiten({PortraitFace(80, 55, 30)}, {10, 30, 15}));
  EXPECT_EQ(1, log.count(Info(kTag, "scaleR = 1.10")));
  EXPECT_EQ(6, log.count(Info(kTag, "scaleR = 1.00")));
}

TEST(WhiteningPreviewTranscript, WithoutImagesTheCallFails) {
  GPUBeautyFace engine;
  FACE_INFO_t record{};
  LogCapture log;
  EXPECT_EQ(0, engine.DoFaceWhitening(&record, 1, 10, 10, BEAUTYSHOT_EFFECT_BOTH));
  EXPECT_TRUE(LogIs(log, {Info(kTag, "DoFaceWhitening+"),
                          Error(kTag, "[SetSrcImage]g_pEGLRGB is not initiated")}));
  EXPECT_EQ(0, engine.SetFaceWhiteningParameters(record, 10, 10, BEAUTYSHOT_EFFECT_BOTH, 0, false,
                                                 nullptr));
  EXPECT_EQ(0, engine.DrawFaceWhite(0));
  EXPECT_EQ(0, engine.DrawFaceWhiteLarge(true));
  EXPECT_EQ(0, engine.DrawFaceWhiteLarge(false));
}

// Outside colour-convert mode the chain's programs do not exist, but the images do.
TEST(WhiteningPreviewTranscript, OutsideColourConvertModeNothingCrashes) {
  GPUBeautyFace engine;
  engine.Init(160, 120, 160, 120, nullptr, false);
  FACE_INFO_t record = PortraitFace(80, 55, 30).as<FACE_INFO_t>();
  EXPECT_EQ(1, engine.DoFaceWhitening(&record, 1, 10, 10, BEAUTYSHOT_EFFECT_BOTH));
  EXPECT_EQ(0, engine.ConvertHSItoYUV());
  EXPECT_EQ(0, engine.ConvertYUV());
}

}  // namespace
}  // namespace lumora::test
