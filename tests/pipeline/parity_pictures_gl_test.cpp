// SPDX-License-Identifier: Apache-2.0
// Both backends make one picture of drawn portraits and of a photograph.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "pipeline/parity.h"
#include "tools/lumora/modules/drawing/portraits/portrait.h"

namespace lumora::test {
namespace {

/// The samples of a picture in BGR; chroma is the mean of its four pixels.
Samples SamplesOf(const cv::Mat& bgr) {
  cv::Mat yuv, planes[3];
  cv::cvtColor(bgr, yuv, cv::COLOR_BGR2YCrCb);
  cv::split(yuv, planes);
  for (int i = 1; i < 3; ++i) {
    cv::resize(planes[i], planes[i], {(bgr.cols + 1) / 2, (bgr.rows + 1) / 2}, 0, 0,
               cv::INTER_AREA);
  }
  const auto bytes = [](const cv::Mat& plane) {
    return std::vector<uint8_t>(plane.begin<uint8_t>(), plane.end<uint8_t>());
  };
  return {bytes(planes[0]), bytes(planes[2]), bytes(planes[1])};
}

struct Picture {
  cv::Mat bgr;
  std::vector<Face> faces;
};

class PictureParityTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { backends_ = std::make_unique<BothBackends>(); }
  static void TearDownTestSuite() { backends_.reset(); }
  void SetUp() override {
    ASSERT_NE(backends_->gl(), nullptr);
    ASSERT_NE(backends_->cpu(), nullptr);
  }

  /// One look after the other, gentle and strong, in both chains. The mean is that of all pictures:
  /// a drawn face has wide areas of one colour, which the renderer rounds all one way.
  static void ExpectOnePicture(const std::vector<Picture>& pictures) {
    for (const Chain chain : {Chain::Preview, Chain::Capture}) {
      for (const Look& look : {Look{25, 0, 0}, Look{100, 0, 0}, Look{0, 30, 0}, Look{0, 100, 60}}) {
        ParityTally tally;
        for (const auto& [bgr, faces] : pictures) {
          const ParityRequest request = {bgr.cols, bgr.rows, faces, look, chain};
          backends_->ExpectOnePicture(request, SamplesOf(bgr), &tally);
        }
        SCOPED_TRACE(Describe({pictures[0].bgr.cols, pictures[0].bgr.rows, {}, look, chain}));
        EXPECT_GT(tally.changed, 1000);
        EXPECT_LE(tally.mean(), kMeanLuma);
        // The faces lie apart.
        EXPECT_LE(tally.largest_luma, look.slim > 0 ? kSlimmingLuma : kWhiteningLuma);
        // Where chroma is neither moved nor all but pure, the renderer's choice of a pixel hardly
        // matters.
        if (look.slim == 0 && look.saturate == 0) {
          EXPECT_LE(tally.largest_chroma, kWhiteningChroma);
        }
      }
    }
  }

  inline static std::unique_ptr<BothBackends> backends_;
};

TEST_F(PictureParityTest, OfEveryPortrait) {
  std::vector<Picture> pictures;
  for (int person = 0; person < tools::PortraitCount(); ++person) {
    const tools::Portrait portrait = tools::DrawPortrait(person, person % 2 == 0 ? 384 : 333);
    pictures.push_back({portrait.picture, {portrait.face}});
  }
  ExpectOnePicture(pictures);
}

TEST_F(PictureParityTest, OfAGroup) {
  const tools::Group group = tools::DrawGroup({801, 601});
  ExpectOnePicture({{group.picture, group.faces}});
}

TEST_F(PictureParityTest, OfAPhotograph) {
  if (!std::filesystem::exists(LUMORA_TEST_PHOTO)) GTEST_SKIP() << "the photograph is not here";
  const cv::Mat photo = cv::imread(LUMORA_TEST_PHOTO);
  for (const double scale : {1.0, 2.1}) {
    cv::Mat picture;
    cv::resize(photo, picture, {}, scale, scale, cv::INTER_CUBIC);
    const auto at = [scale](double x, double y) {
      return PointF{static_cast<float>(x * scale), static_cast<float>(y * scale)};
    };
    ExpectOnePicture({{picture, {FaceFromEyes(at(203, 101), at(245, 103))}}});
  }
}

}  // namespace
}  // namespace lumora::test
