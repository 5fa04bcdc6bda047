// SPDX-License-Identifier: Apache-2.0
// Every call of the colour converter, made to fail.
#include <gtest/gtest.h>

#include <algorithm>

#include "lumora/convert/gpu_color_converter.h"
#include "proofs/faults/fault_layer.h"
#include "proofs/faults/fault_test.h"
#include "support/caller_memory.h"

namespace lumora::test {
namespace {

using android::GPUColorConverter;

constexpr int kWidth = 128;
constexpr int kHeight = 32;
constexpr size_t kImageBytes = size_t{kWidth} * kHeight * 4;

constexpr char kTag[] = "GPUColorConvert";
constexpr char kHelpers[] = "EGLImageTest";

// What a caller sees of one conversion.
struct Converted {
  int result;
  Bytes rgb;
  Bytes hsi;
};
bool operator==(const Converted& a, const Converted& b) {
  return a.result == b.result && a.rgb == b.rgb && a.hsi == b.hsi;
}

Converted Convert(GPUColorConverter& converter) {
  CallerFrame frame(kWidth, kHeight, NoisePlanes(kWidth, kHeight, 1));
  Converted converted{converter.ConvertYUV(frame.luma()), {}, {}};
  EXPECT_TRUE(frame.intact());
  const auto copy = [](const unsigned char* image) {
    return image != nullptr ? Bytes(image, image + kImageBytes) : Bytes();
  };
  converted.rgb = copy(converter.GetRGB_Image());
  converted.hsi = copy(converter.GetHSI_Image());
  return converted;
}

std::vector<LogLine> InitErrors(GPUColorConverter& converter) {
  LogCapture log;
  EXPECT_EQ(1, converter.Init(kWidth, kHeight, nullptr));
  EXPECT_TRUE(converter.m_bIsInit);
  return log.lines(6);
}

// The lookups of both programs report under the first one's names; the first that is missing ends
// them.
std::vector<LogLine> MissingLocation(const char* label) {
  return {Error(kHelpers, "[LocIsValid] invalid %s == -1", label)};
}
const char* const kAttributes[] = {"m_nYUV2RGBVerCoordLoc", "m_nYUV2RGBTexCoordLoc"};
const char* const kUniforms[] = {"m_nYUV2RGBTextureSlot", "m_nYUV2RGBMatrixSlot",
                                 "m_nYUV2RGBTextureSlot"};

// A program that cannot be made. Its attributes are looked up nevertheless, at program 0.
std::vector<LogLine> NoProgram(std::vector<LogLine> reason) {
  reason.push_back(Error(kTag, "[InitShaderProgram]m_hYUV2RGBProgram: Could not create program."));
  reason.push_back(Error(kHelpers, "[LocIsValid] invalid m_nYUV2RGBVerCoordLoc == -1"));
  return reason;
}

// The ERROR lines of an Init. Nothing when images are concerned and there is another way; then
// everything has to work.
std::vector<LogLine> ExpectedErrors(const Fault& fault, const std::vector<LogLine>& told) {
  switch (fault.call) {
    case Call::CreateShader:
    case Call::CreateProgram:
      return NoProgram({});
    case Call::CompileShader:
      return NoProgram({Error(kHelpers, "Could not compile shader %d:\nmade to fail\n",
                              fault.number % 2 == 1 ? GL_VERTEX_SHADER : GL_FRAGMENT_SHADER)});
    case Call::LinkProgram:
      return NoProgram({Error(kHelpers, "Could not link program:\nmade to fail\n")});
    case Call::FindAttribute:
      return MissingLocation(kAttributes[(fault.number - 1) % 2]);
    case Call::FindUniform:
      return MissingLocation(kUniforms[fault.number - 1]);
    case Call::NewObject:
      return {Error(kTag, "[InitTexture] can't new image")};
    default:
      break;
  }
  const std::vector<LogLine> no_framebuffer = {Error(kTag, "[InitTexture] can't make framebuffer")};
  if (fault.call == Call::GenFramebuffer && told == no_framebuffer) return told;
  // An image that is drawn to is told by its framebuffer's check; shared memory has one before it.
  constexpr GLenum kIncomplete[] = {GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT,
                                    GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT,
                                    GL_FRAMEBUFFER_UNSUPPORTED};
  for (const GLenum status : kIncomplete) {
    const std::vector<LogLine> line = {
        Error(kHelpers, "[SetColorAttachment] ERROR, FBO not complete, status %u\n", status)};
    if (told == line) return line;
  }
  return {};
}

class ConverterFaults : public testing::Test {
 protected:
  void SetUp() override {
    InitErrors(converter_);  // finds out how memory can be shared
    converter_.DeInit();
    {
      const FaultScope scope;
      InitErrors(converter_);
      counts_ = scope.counts();
    }
    good_ = Convert(converter_);
    ASSERT_EQ(1, good_.result);
    converter_.DeInit();
    live_ = LiveGlNames();
  }

  void Inject(const Fault& fault) {
    SCOPED_TRACE(testing::Message() << fault);
    std::vector<LogLine> info;
    std::vector<LogLine> errors;
    {
      const FaultScope scope(fault);
      LogCapture log;
      EXPECT_EQ(1, converter_.Init(kWidth, kHeight, nullptr));
      EXPECT_EQ(1, scope.failed());
      errors = log.lines(6);
      info = log.lines();
    }
    EXPECT_TRUE(LogIs(errors, ExpectedErrors(fault, errors)));
    {
      LogCapture log;
      const Converted converted = Convert(converter_);
      EXPECT_TRUE(converted.result == 0 || converted.result == 1);
      // GL errors and failed EGL images are told below ERROR.
      const bool told = !errors.empty() || !log.lines(6).empty() ||
                        std::any_of(info.begin(), info.end(), [](const LogLine& line) {
                          return line.text.find("glError") != std::string::npos ||
                                 line.text.find("failed") != std::string::npos;
                        });
      EXPECT_TRUE(told || converted == good_);
    }
    EXPECT_EQ(1, converter_.DeInit());
    EXPECT_EQ(live_, LiveGlNames());
    TakeGlErrors();
    EXPECT_TRUE(LogIs(InitErrors(converter_), {}));
    EXPECT_TRUE(Convert(converter_) == good_);
    EXPECT_EQ(1, converter_.DeInit());
    EXPECT_EQ(static_cast<GLenum>(GL_NO_ERROR), glGetError());
    EXPECT_EQ(live_, LiveGlNames());
  }

  GPUColorConverter converter_;
  CallCounts counts_{};
  Converted good_{};
  LiveNames live_{};
};

TEST_F(ConverterFaults, OfInitAreToldAndMadeGood) {
  const std::vector<Fault> faults = FaultsOf(counts_);
  EXPECT_GT(faults.size(), 40u);
  for (const Fault& fault : faults) Inject(fault);
  TellInjected(faults.size());
}

TEST_F(ConverterFaults, ConversionMakesNothing) {
  converter_.Init(kWidth, kHeight, nullptr);
  const FaultScope scope;
  EXPECT_TRUE(Convert(converter_) == good_);
  EXPECT_EQ(1, converter_.DeInit());
  EXPECT_TRUE(FaultsOf(scope.counts()).empty());
}

}  // namespace
}  // namespace lumora::test
