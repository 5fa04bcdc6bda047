// SPDX-License-Identifier: Apache-2.0
// The colour converter: its life, its log, and its two images.
#include "lumora/convert/gpu_color_converter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <ostream>
#include <thread>

#include "engine/engine_images.h"
#include "reference/bounds.h"
#include "reference/colour_bounds.h"
#include "reference/quad.h"
#include "support/caller_memory.h"
#include "support/compare.h"
#include "support/egl_faults.h"
#include "support/gl_objects.h"
#include "support/log_capture.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

using android::GPUColorConverter;
using reference::Filter;
using reference::ImageBounds;
using reference::TexelBounds;
using reference::Vec2;
using reference::Wrap;

constexpr char kTag[] = "GPUColorConvert";

int Rows32(int width) {
  return (width + 31) / 32 * 32;
}
int ExpansionRow(int width) {
  return (width / 4 + 31) / 32 * 32 * 4;
}

/// The input image of a frame: expanded with rows of their own length into the image's memory,
/// which has other rows. Texels that no pixel reaches are not compared.
Image InputOf(const Frame& frame) {
  const int row = Rows32(frame.width);
  Image image(row, frame.height);
  for (int y = 0; y < frame.height; ++y) {
    for (int x = 0; x < frame.width; ++x) {
      const int64_t at = int64_t{y} * ExpansionRow(frame.width) + x;
      if (at / row >= frame.height) continue;
      uint8_t* texel = image.pixel(static_cast<int>(at % row), static_cast<int>(at / row));
      texel[0] = frame.y(x, y);
      texel[1] = frame.cr(x, y);
      texel[2] = frame.cb(x, y);
      texel[3] = 255;
    }
  }
  return image;
}

/// What a pass draws into an image of the same size: the frame's columns, from the whole rows.
template <typename Shader>
ImageBounds Drawn(const Image& source, Wrap wrap, int width, const Image& before, Shader shader) {
  ImageBounds result(before);
  const ImageBounds exact(source);
  // Where pixels lie on pixels the filter has nothing to mix.
  const double slack = source.width == width ? 0.0 : 1.0 / 128;
  reference::ForEachFragment(
      {}, width, source.height, source.width, source.height, [&](int x, int y, Vec2 place) {
        TexelBounds texel = reference::SampleBounds(exact, wrap, Filter::Linear, place, slack);
        texel = shader(texel);
        result.low.set(x, y, texel.low);
        result.high.set(x, y, texel.high);
      });
  return result;
}

Image CopyOf(const unsigned char* texels, int width, int height) {
  Image image(width, height);
  std::memcpy(image.bytes.data(), texels, image.bytes.size());
  return image;
}

/// Smooth and far from grey, so that hue and saturation are well defined.
Frame ColourFrame(int width, int height) {
  Frame frame = TextureFrame(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      frame.y(x, y) = static_cast<uint8_t>(60 + (x + y) % 128);
      frame.cr(x, y) = static_cast<uint8_t>(x < width / 2 ? 160 + y % 16 : 90 - y % 16);
      frame.cb(x, y) = static_cast<uint8_t>(y < height / 2 ? 95 - x / 4 % 16 : 170 + x / 4 % 16);
    }
  }
  return frame;
}

void ExpectConverted(GPUColorConverter& converter, const Frame& frame) {
  const int row = Rows32(frame.width);
  for (SEGLImage* image :
       {converter.m_pInputImage, converter.m_pOutputImage[0], converter.m_pOutputImage[1]}) {
    Image zeros(row, frame.height);
    SetPixels(*image, zeros);
  }
  CallerFrame caller(frame);
  ASSERT_EQ(1, converter.ConvertYUV(caller.luma()));
  EXPECT_TRUE(caller.intact());
  EXPECT_EQ(frame.bytes, caller.bytes());

  const Image input = InputOf(frame);
  const Image actual_input = PixelsOf(*converter.m_pInputImage);
  EXPECT_TRUE(SameImage(input, actual_input, Compare().named("input").only([&](int x, int y) {
    return input.pixel(x, y)[3] == 255;
  })));
  const Image zeros(row, frame.height);
  const Image rgb = CopyOf(converter.GetRGB_Image(), row, frame.height);
  const ImageBounds expected_rgb =
      Drawn(actual_input, Wrap::MirroredRepeat, frame.width, zeros, [](TexelBounds yuv) {
        TexelBounds result = YuvToRgbBounds(yuv);
        result.low.a = yuv.low.a;
        result.high.a = yuv.high.a;
        return result;
      });
  EXPECT_TRUE(WithinImage(expected_rgb, rgb, Compare().within(1).named("RGB")));
  const Image hsi = CopyOf(converter.GetHSI_Image(), row, frame.height);
  const ImageBounds expected_hsi =
      Drawn(rgb, Wrap::ClampToEdge, frame.width, zeros,
            [](const TexelBounds& texel) { return RgbToHsiBounds(texel, 1.0); });
  EXPECT_TRUE(WithinImage(expected_hsi, hsi, Compare().within(1).named("HSI")));
  for (int y = 0; y < frame.height; ++y) {
    for (int x = 0; x < frame.width; ++x) ASSERT_EQ(255, hsi.pixel(x, y)[3]) << x << ", " << y;
  }
}

struct Size {
  int width, height;
};
void PrintTo(const Size& size, std::ostream* out) {
  *out << size.width << " x " << size.height;
}

class ConverterSizes : public testing::TestWithParam<Size> {};

TEST_P(ConverterSizes, ImagesAreThoseOfTheModel) {
  const auto [width, height] = GetParam();
  GPUColorConverter converter;
  int stride = 0;
  ASSERT_EQ(1, converter.Init(width, height, &stride));
  EXPECT_EQ(Rows32(width), stride);
  EXPECT_EQ(ExpansionRow(width), converter.m_nYYYYWidth);
  ExpectConverted(converter, ColourFrame(width, height));
  ExpectConverted(converter, GradientFrame(width, height));
}

INSTANTIATE_TEST_SUITE_P(Sizes, ConverterSizes,
                         testing::Values(Size{640, 480}, Size{128, 96}, Size{720, 480},
                                         Size{96, 64}, Size{176, 144}, Size{32, 48}, Size{16, 16},
                                         Size{1280, 32}),
                         [](const testing::TestParamInfo<Size>& row) {
                           return std::to_string(row.param.width) + "x" +
                                  std::to_string(row.param.height);
                         });

// By hand: white, black, grey and three strong colours, each in a block of its own.
TEST(Converter, ColoursWorkedOutByHand) {
  GPUColorConverter converter;
  converter.Init(128, 32, nullptr);
  Frame frame(128, 32);
  const struct {
    int luma, cr, cb;
    int r, g, b;
    int h, s, i;
  } colours[] = {// Neutral chroma is 127.5, between two bytes: greys are a little off.
                 {255, 128, 128, 255, 255, 255, 0, 0, 255},    {0, 128, 128, 1, 0, 1, 212, 255, 1},
                 {100, 178, 128, 171, 64, 101, 241, 159, 171},  // 60 (64 - 101) / 107 degrees
                 {100, 128, 178, 101, 82, 189, 178, 144, 189},  // 240 + 60 (101 - 82) / 107
                 {100, 78, 78, 31, 152, 12, 80, 235, 152},      // 120 + 60 (12 - 31) / 140
                 {76, 255, 85, 255, 0, 1, 0, 255, 255}};
  for (int y = 0; y < 32; ++y) {
    for (int x = 0; x < 6 * 16; ++x) {
      const auto& colour = colours[x / 16];
      frame.y(x, y) = static_cast<uint8_t>(colour.luma);
      frame.cr(x, y) = static_cast<uint8_t>(colour.cr);
      frame.cb(x, y) = static_cast<uint8_t>(colour.cb);
    }
  }
  CallerFrame caller(frame);
  ASSERT_EQ(1, converter.ConvertYUV(caller.luma()));
  const unsigned char* rgb = converter.GetRGB_Image() + (16 * 128 + 8) * 4;
  const unsigned char* hsi = converter.GetHSI_Image() + (16 * 128 + 8) * 4;
  for (int i = 0; i < 6; ++i, rgb += 64, hsi += 64) {
    SCOPED_TRACE(i);
    EXPECT_NEAR(colours[i].r, rgb[0], 1);
    EXPECT_NEAR(colours[i].g, rgb[1], 1);
    EXPECT_NEAR(colours[i].b, rgb[2], 1);
    EXPECT_EQ(255, rgb[3]);
    if (i >= 2 && i <= 4) {
      EXPECT_NEAR(colours[i].h, hsi[0], 2);
      EXPECT_NEAR(colours[i].s, hsi[1], 2);
    }
    EXPECT_NEAR(colours[i].i, hsi[2], 1);
    EXPECT_EQ(255, hsi[3]);
  }
}

TEST(Converter, ConstructionLeavesEverythingUnset) {
  LogCapture log;
  auto converter = std::make_unique<GPUColorConverter>();
  EXPECT_TRUE(LogIs(log, {Info(kTag, "GPUColorConverter()+"),
                          Debug(kTag, "[GPUColorConverter] m_eglDisplay successfully"),
                          Debug(kTag, "[GPUColorConverter] eglChooseConfig successfully"),
                          Debug(kTag, "[GPUColorConverter] eglCreateContext successfully"),
                          Debug(kTag, "[GPUColorConverter] eglCreatePbufferSurface successfully"),
                          Debug(kTag, "[GPUColorConverter] eglMakeCurrent successfully"),
                          Info(kTag, "GPUColorConverter()-")}));
  EXPECT_TRUE(converter->m_bEGLReady);
  EXPECT_TRUE(converter->m_bCreated);
  EXPECT_FALSE(converter->m_bIsInit);
  for (const int size :
       {converter->m_nSrcWidth, converter->m_nSrcHeight, converter->m_nProcWidth,
        converter->m_nProcHeight, converter->m_nYYYYWidth, converter->m_nYYYYHeight,
        converter->m_nUVUVWidth, converter->m_nUVUVHeight, converter->m_nAlignedWidth,
        converter->m_nAlignedHeight}) {
    EXPECT_EQ(-1, size);
  }
  EXPECT_EQ(nullptr, converter->m_pInputImage);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(0u, converter->m_hFrameBuffer[i]);
    EXPECT_EQ(nullptr, converter->m_pOutputImage[i]);
  }
  EXPECT_EQ(nullptr, converter->GetRGB_Image());
  EXPECT_EQ(nullptr, converter->GetHSI_Image());
  log.take();
  converter.reset();
  EXPECT_TRUE(LogIs(
      log, {Info(kTag, "~GPUColorConverter()+"), Info(kTag, "[~GPUColorConverter] eglMakeCurrent"),
            Info(kTag, "[~GPUColorConverter] eglDestroySurface"),
            Info(kTag, "[~GPUColorConverter] eglDestroyContext"),
            Info(kTag, "[~GPUColorConverter] eglTerminate"), Info(kTag, "~GPUColorConverter()-")}));
}

TEST(Converter, InitFillsTheMembersAndTellsTheSize) {
  GPUColorConverter converter;
  LogCapture log;
  int stride = 0;
  ASSERT_EQ(1, converter.Init(720, 46, &stride));
  EXPECT_TRUE(
      LogIs(log.lines_of(kTag), {Debug(kTag, "[CAMIN] GPUColorConverter 2012/04/17 Init+"),
                                 Debug(kTag, "(nSrcImageWidth, nSrcImageHeight) = (720, 46)"),
                                 Debug(kTag, "[CAMIN] GPUColorConverter 2012/04/17 Init-")}));
  EXPECT_EQ(0u, log.lines(6).size());
  EXPECT_EQ(736, stride);
  EXPECT_EQ(720, converter.m_nSrcWidth);
  EXPECT_EQ(46, converter.m_nSrcHeight);
  EXPECT_EQ(720, converter.m_nProcWidth);
  EXPECT_EQ(46, converter.m_nProcHeight);
  EXPECT_EQ(768, converter.m_nYYYYWidth);
  EXPECT_EQ(46, converter.m_nYYYYHeight);
  EXPECT_EQ(768, converter.m_nUVUVWidth);
  EXPECT_EQ(-1, converter.m_nUVUVHeight);
  EXPECT_EQ(720, converter.m_nAlignedWidth);
  EXPECT_EQ(46, converter.m_nAlignedHeight);
  EXPECT_TRUE(converter.m_bIsInit);
  for (SEGLImage* image :
       {converter.m_pInputImage, converter.m_pOutputImage[0], converter.m_pOutputImage[1]}) {
    ASSERT_NE(nullptr, image);
    EXPECT_EQ(736u, image->m_spBuffer->width());
    EXPECT_EQ(46u, image->m_spBuffer->height());
  }
  EXPECT_EQ(GL_MIRRORED_REPEAT,
            TextureParameter(converter.m_pInputImage->m_hTexture, GL_TEXTURE_WRAP_S));
  EXPECT_EQ(GL_MIRRORED_REPEAT,
            TextureParameter(converter.m_pInputImage->m_hTexture, GL_TEXTURE_WRAP_T));
  for (int i = 0; i < 2; ++i) {
    const GLuint texture = converter.m_pOutputImage[i]->m_hTexture;
    EXPECT_EQ(GL_CLAMP_TO_EDGE, TextureParameter(texture, GL_TEXTURE_WRAP_S));
    EXPECT_EQ(GL_LINEAR, TextureParameter(texture, GL_TEXTURE_MIN_FILTER));
    EXPECT_EQ(GL_LINEAR, TextureParameter(texture, GL_TEXTURE_MAG_FILTER));
    EXPECT_EQ(GL_TRUE, glIsFramebuffer(converter.m_hFrameBuffer[i]));
  }
  EXPECT_EQ(GL_TRUE, glIsProgram(converter.m_hYUV2RGBProgram));
  EXPECT_EQ(GL_TRUE, glIsProgram(converter.m_hRGB2HSIProgram));
  EXPECT_TRUE(TakeGlErrors().empty());
}

TEST(Converter, InitAgainReleasesTheFirstSetUp) {
  GPUColorConverter converter;
  converter.Init(128, 64, nullptr);
  const GLuint second_program = converter.m_hRGB2HSIProgram;
  LogCapture log;
  ASSERT_EQ(1, converter.Init(256, 32, nullptr));
  EXPECT_TRUE(
      LogIs(log.lines_of(kTag), {Debug(kTag, "[CAMIN] GPUColorConverter 2012/04/17 Init+"),
                                 Debug(kTag, "(nSrcImageWidth, nSrcImageHeight) = (256, 32)"),
                                 Debug(kTag, "[CAMIN] GPUColorConverter 2012/04/17 DeInit+"),
                                 Debug(kTag, "[CAMIN] GPUColorConverter 2012/04/17 DeInit-"),
                                 Debug(kTag, "[CAMIN] GPUColorConverter 2012/04/17 Init-")}));
  EXPECT_EQ(GL_TRUE, glIsProgram(second_program)) << "only the first program is deleted";
  EXPECT_NE(second_program, converter.m_hRGB2HSIProgram);
  ExpectConverted(converter, ColourFrame(256, 32));
  converter.Init(640, 480, nullptr);
  ExpectConverted(converter, ColourFrame(640, 480));
}

TEST(Converter, DeInitReleasesImagesAndTheFirstProgram) {
  GPUColorConverter converter;
  converter.Init(128, 64, nullptr);
  const GLuint texture = converter.m_pOutputImage[1]->m_hTexture;
  LogCapture log;
  EXPECT_EQ(1, converter.DeInit());
  EXPECT_TRUE(
      LogIs(log.lines_of(kTag), {Debug(kTag, "[CAMIN] GPUColorConverter 2012/04/17 DeInit+"),
                                 Debug(kTag, "[CAMIN] GPUColorConverter 2012/04/17 DeInit-")}));
  EXPECT_FALSE(converter.m_bIsInit);
  EXPECT_EQ(GL_FALSE, glIsTexture(texture));
  EXPECT_EQ(GL_FALSE, glIsProgram(converter.m_hYUV2RGBProgram));
  EXPECT_EQ(GL_TRUE, glIsProgram(converter.m_hRGB2HSIProgram));
  EXPECT_EQ(GL_FALSE, glIsFramebuffer(converter.m_hFrameBuffer[0]));
  EXPECT_EQ(GL_FALSE, glIsFramebuffer(converter.m_hFrameBuffer[1]));
  EXPECT_EQ(nullptr, converter.m_pInputImage);
  EXPECT_EQ(nullptr, converter.GetRGB_Image());
  EXPECT_EQ(1, converter.DeInit()) << "a second time";
  ASSERT_EQ(1, converter.Init(128, 64, nullptr));
  ExpectConverted(converter, ColourFrame(128, 64));
}

TEST(Converter, BeforeInitNothingIsConverted) {
  GPUColorConverter converter;
  Frame frame(128, 64);
  LogCapture log;
  EXPECT_EQ(0, converter.ConvertYUV(frame.luma()));
  EXPECT_TRUE(LogIs(log, {Error(kTag, "[SetSrcImage]g_pEGLRGB is not initiated")}));
  converter.Init(128, 64, nullptr);
  EXPECT_EQ(0, converter.ConvertYUV(nullptr));
  converter.DeInit();
  EXPECT_EQ(0, converter.ConvertYUV(frame.luma()));
}

TEST(Converter, CleansBuffersThatItKnows) {
  GPUColorConverter converter;
  converter.Init(128, 64, nullptr);
  LogCapture log;
  EXPECT_EQ(1, converter.clean_buffer(converter.GetRGB_Image(), 0, 0, -1, 128 * 64 * 4));
  EXPECT_TRUE(LogIs(log.lines_of(kTag), {}));
  int other = 0;
  EXPECT_EQ(0, converter.clean_buffer(&other, 0, 0, -1, 4));
  EXPECT_TRUE(LogIs(log.lines_of(kTag), {Debug(kTag, "[clean_buffer] clean buffer error")}));
}

// ---- Beside other engines -----------------------------------------------------------------------

Bytes Converted(const Frame& frame) {
  GPUColorConverter converter;
  converter.Init(frame.width, frame.height, nullptr);
  CallerFrame caller(frame);
  EXPECT_EQ(1, converter.ConvertYUV(caller.luma()));
  const size_t size = static_cast<size_t>(Rows32(frame.width) * frame.height) * 4;
  const unsigned char* hsi = converter.GetHSI_Image();
  return Bytes(hsi, hsi + size);
}

TEST(ConverterBesideEngines, EachOnItsThreadKeepsItsResults) {
  const Frame frames[2] = {ColourFrame(128, 96), ColourFrame(256, 64)};
  const Bytes alone[2] = {Converted(frames[0]), Converted(frames[1])};
  const Frame noise = NoiseFrame(160, 120, 4);
  bool converters_right[2] = {true, true};
  bool engines_right[2] = {true, true};
  std::thread threads[4];
  for (int i = 0; i < 2; ++i) {
    threads[i] = std::thread([&, i] {
      for (int n = 0; n < 4; ++n) converters_right[i] &= Converted(frames[i]) == alone[i];
    });
    threads[2 + i] = std::thread([&, i] {
      GPUBeautyFace engine;
      engine.Init(160, 120, 160, 120, nullptr, false);
      for (int n = 0; n < 30; ++n) {
        CallerFrame caller(noise);
        engine.FaceProcessMultiface(caller.luma(), caller.chroma(), 0, nullptr, 0, 0);
        engines_right[i] &= caller.bytes() == noise.bytes;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (int i = 0; i < 2; ++i) {
    EXPECT_TRUE(converters_right[i]) << i;
    EXPECT_TRUE(engines_right[i]) << i;
  }
}

TEST(ConverterBesideEngines, AnEndingConverterLeavesTheDisplayToOthers) {
  auto converter = std::make_unique<GPUColorConverter>();
  converter->Init(128, 64, nullptr);
  std::thread([&] {
    GPUColorConverter other;
    other.Init(64, 64, nullptr);
  }).join();
  ExpectConverted(*converter, ColourFrame(128, 64));
}

// ---- Contexts that cannot be made ---------------------------------------------------------------

struct Failure {
  const char* name;
  EglStep step;
  int passing_calls;
  std::vector<const char*> done;
};
void PrintTo(const Failure& failure, std::ostream* out) {
  *out << failure.name;
}

const Failure kFailures[] = {
    {"NoDisplay", EglStep::FindDisplay, 0, {}},
    {"Initialize", EglStep::Initialize, 1, {"m_eglDisplay"}},
    {"ChooseConfig", EglStep::ChooseConfig, 1, {"m_eglDisplay"}},
    {"CreateContext", EglStep::CreateContext, 0, {"m_eglDisplay", "eglChooseConfig"}},
    {"CreatePbuffer",
     EglStep::CreatePbuffer,
     0,
     {"m_eglDisplay", "eglChooseConfig", "eglCreateContext"}},
    {"MakeCurrent",
     EglStep::MakeCurrent,
     0,
     {"m_eglDisplay", "eglChooseConfig", "eglCreateContext", "eglCreatePbufferSurface"}}};

class ConverterEglFailures : public testing::TestWithParam<Failure> {};

TEST_P(ConverterEglFailures, LeaveAnObjectThatCanOnlyBeDestroyed) {
  LogCapture log;
  std::unique_ptr<GPUColorConverter> converter;
  {
    const EglFault fault(GetParam().step, GetParam().passing_calls);
    converter = std::make_unique<GPUColorConverter>();
    EXPECT_GT(fault.failed(), 0);
  }
  EXPECT_FALSE(converter->m_bEGLReady);
  EXPECT_TRUE(converter->m_bCreated);
  std::vector<LogLine> construction = {Info(kTag, "GPUColorConverter()+")};
  for (const char* step : GetParam().done) {
    construction.push_back(Debug(kTag, "[GPUColorConverter] %s successfully", step));
  }
  EXPECT_TRUE(LogIs(log, construction));
  converter.reset();
  EXPECT_TRUE(LogIs(log, {Info(kTag, "~GPUColorConverter()+")}));
  GPUColorConverter next;
  EXPECT_TRUE(next.m_bEGLReady);
}

INSTANTIATE_TEST_SUITE_P(Steps, ConverterEglFailures, testing::ValuesIn(kFailures),
                         [](const testing::TestParamInfo<Failure>& row) { return row.param.name; });

}  // namespace
}  // namespace lumora::test
