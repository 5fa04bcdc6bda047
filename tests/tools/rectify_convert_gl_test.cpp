// SPDX-License-Identifier: Apache-2.0
// lumora rectify and lumora convert as users run them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "tests/tools/clips.h"
#include "tests/tools/pictures.h"
#include "tests/tools/process.h"

namespace lumora::test {
namespace {

/// A smooth gray picture: filtering hardly matters, and its colours need no conversion.
cv::Mat Waves(int width, int height) {
  cv::Mat picture(height, width, CV_8U);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      picture.at<uint8_t>(y, x) = static_cast<uint8_t>(
          std::lround(128 + 60 * std::sin(x / 17.0) + 50 * std::cos(y / 13.0)));
    }
  }
  return picture;
}

/// The picture whose pixel at (u, v), shares of the sides, is that of `from` at `place(u, v)`.
template <typename Place>
cv::Mat Mapped(const cv::Mat& from, Place place) {
  cv::Mat places(from.size(), CV_32FC2), mapped;
  for (int y = 0; y < from.rows; ++y) {
    for (int x = 0; x < from.cols; ++x) {
      const cv::Point2d at = place((x + 0.5) / from.cols, (y + 0.5) / from.rows);
      places.at<cv::Vec2f>(y, x) = {static_cast<float>(at.x * from.cols - 0.5),
                                    static_cast<float>(at.y * from.rows - 0.5)};
    }
  }
  cv::remap(from, mapped, places, {}, cv::INTER_LINEAR, cv::BORDER_REPLICATE);
  return mapped;
}

TEST(Rectify, KeystoneMapsTheFrameOntoTheQuadrilateral) {
  const Folder folder;
  const cv::Mat picture = Waves(320, 256);  // multiples of 32: nothing is padded
  const std::string in = folder.Put("in.png", PngOf(picture));
  for (const int degree : {12, -7}) {
    SCOPED_TRACE(degree);
    ASSERT_EQ(
        RunLumora({"rectify", in, "-o", folder / "out.png", "--degree", std::to_string(degree)})
            .exit_code,
        0);
    const double d = std::abs(degree) / 100.0;
    const cv::Mat expected = Mapped(picture, [&](double u, double v) {
      const double inset = d * (degree > 0 ? 1 - u : u);  // of the upper and lower edge
      return cv::Point2d(d / 2 + u * (1 - d), inset + v * (1 - 2 * inset));
    });
    const cv::Mat after = Decode(ReadFile(folder / "out.png"));
    EXPECT_LE(cv::norm(after, expected, cv::NORM_INF), 3);
  }
}

TEST(Rectify, NoDegreeIsACopy) {
  const Folder folder;
  const std::string in = folder.Put("in.png", PngOf(Landscape(101, 77)));
  ASSERT_EQ(RunLumora({"rectify", in, "-o", folder / "out.png", "--degree", "0"}).exit_code, 0);
  EXPECT_EQ(cv::norm(Decode(ReadFile(in)), Decode(ReadFile(folder / "out.png")), cv::NORM_INF), 0);
}

TEST(Rectify, CoefficientsAndTheCamerasFileGiveTheSame) {
  const Folder folder;
  const std::string in = folder.Put("in.jpg", JpegOf(Landscape(320, 256), {}));
  std::filesystem::create_directories(folder / "root/sys/android_camera");
  std::filesystem::create_directories(folder / "root/system/etc");
  folder.Put("root/sys/android_camera/sensor", std::string("sensor acme12\n"));
  folder.Put("root/system/etc/acme12_1", std::string("r_param 1.02 -0.05 0.01 0.02\n"));
  const Environment device = {{{"LUMORA_SYSTEM_ROOT", folder / "root"}}};
  ASSERT_EQ(RunLumora({"rectify", in, "-o", folder / "a.png", "--radial", "1.02,-0.05,0.01,0.02"})
                .exit_code,
            0);
  ASSERT_EQ(RunLumora({"rectify", in, "-o", folder / "b.png", "--camera", "0"}).exit_code, 0);
  ASSERT_EQ(
      RunLumora({"rectify", in, "-o", folder / "c.png", "--camera", "0"}, {}, device).exit_code, 0);
  const cv::Mat given = Decode(ReadFile(folder / "a.png"));
  const cv::Mat usual = Decode(ReadFile(folder / "b.png"));
  const cv::Mat from_file = Decode(ReadFile(folder / "c.png"));
  EXPECT_GT(cv::norm(given, usual, cv::NORM_INF), 4);
  EXPECT_EQ(cv::norm(given, from_file, cv::NORM_INF), 0);
}

TEST(Rectify, ReportAndCompareTellWhatWasDone) {
  const Folder folder;
  const std::string in = folder.Put("in.png", PngOf(Landscape(101, 77)));
  const Result result = RunLumora({"rectify", in, "-o", folder / "out.jpg", "--degree", "10",
                                   "--json", "--compare", folder / "compare.png"});
  ASSERT_EQ(result.exit_code, 0) << result.err;
  const auto report = nlohmann::json::parse(result.out);
  EXPECT_EQ(report.at("width"), 101);
  EXPECT_GT(report.at("timings_ms").at("engine").get<double>(), 0);
  EXPECT_GT(report.at("peak_memory_mib").get<double>(), 1);
  EXPECT_EQ(Decode(ReadFile(folder / "out.jpg")).size(), cv::Size(101, 77));
  EXPECT_GT(Decode(ReadFile(folder / "compare.png")).cols, 202);
}

/// A raw frame of random samples: luma, then pairs of Cr and Cb.
std::string RandomNv21(int width, int height) {
  cv::Mat samples(1, width * height + 2 * ((width + 1) / 2) * ((height + 1) / 2), CV_8U);
  cv::theRNG().state = 11;
  cv::randu(samples, 0, 256);
  return {samples.begin<char>(), samples.end<char>()};
}

std::string TextOf(const std::string& path) {
  const Bytes bytes = ReadFile(path);
  return {bytes.begin(), bytes.end()};
}

double Fraction(double value) {
  return value - std::floor(value);
}

/// Hue, saturation and intensity, 0..255 each, of red, green and blue.
cv::Vec3d HsiOf(const cv::Vec3b& rgb) {
  const double r = rgb[0], g = rgb[1], b = rgb[2];
  const double most = std::max({r, g, b}), least = std::min({r, g, b}), spread = most - least;
  double sixths = 0;
  if (spread > 0) {
    sixths = most == r ? (g - b) / spread : most == g ? 2 + (b - r) / spread : 4 + (r - g) / spread;
  }
  return {Fraction(sixths / 6 + 1) * 255, most > 0 ? spread / most * 255 : 0, most};
}

TEST(Convert, RawFramesBecomeColours) {
  const Folder folder;
  const int width = 98, height = 66;
  const std::string frame = RandomNv21(width, height);
  const std::string in = folder.Put("frame.nv21", frame);
  ASSERT_EQ(RunLumora({"convert", in, "--size", "98x66", "--to", "rgb", "-o", folder / "rgb.png"})
                .exit_code,
            0);
  const cv::Mat picture = Decode(ReadFile(folder / "rgb.png"));
  ASSERT_EQ(picture.size(), cv::Size(width, height));
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const auto sample = [&](int at) {
        return static_cast<uint8_t>(frame[static_cast<size_t>(at)]);
      };
      const int pair = width * height + y / 2 * width + x / 2 * 2;
      const double luma = sample(y * width + x), cr = sample(pair) - 128.0,
                   cb = sample(pair + 1) - 128.0;
      const double expected[] = {luma + 1.772 * cb, luma - 0.344 * cb - 0.714 * cr,
                                 luma + 1.402 * cr};
      const cv::Vec3b pixel = picture.at<cv::Vec3b>(y, x);
      for (int c = 0; c < 3; ++c) {
        // The colours are computed with few bits on some drivers.
        ASSERT_NEAR(pixel[c], std::clamp(expected[c], 0.0, 255.0), 3) << x << " " << y << " " << c;
      }
    }
  }
}

TEST(Convert, HueSaturationAndIntensityBelongToTheColours) {
  const Folder folder;
  const std::string in = folder.Put("in.png", PngOf(Landscape(64, 48)));
  ASSERT_EQ(RunLumora({"convert", in, "--to", "rgb", "-o", folder / "rgb.png"}).exit_code, 0);
  ASSERT_EQ(RunLumora({"convert", in, "--to", "hsi", "-o", folder / "hsi.png"}).exit_code, 0);
  cv::Mat rgb, hsi;
  cv::cvtColor(Decode(ReadFile(folder / "rgb.png")), rgb, cv::COLOR_BGR2RGB);
  cv::cvtColor(Decode(ReadFile(folder / "hsi.png")), hsi, cv::COLOR_BGR2RGB);
  ASSERT_EQ(hsi.size(), cv::Size(64, 48));
  for (int y = 0; y < 48; ++y) {
    for (int x = 0; x < 64; ++x) {
      const cv::Vec3d expected = HsiOf(rgb.at<cv::Vec3b>(y, x));
      const cv::Vec3b found = hsi.at<cv::Vec3b>(y, x);
      const double intensity = expected[2], spread = expected[1] * intensity / 255;
      EXPECT_NEAR(found[2], intensity, 2);
      // A step of a colour is a large step of saturation and hue where there is little light.
      EXPECT_NEAR(found[1], expected[1], 3 + 600 / std::max(1.0, intensity));
      const double turn = std::abs(found[0] - expected[0]);
      EXPECT_LE(std::min(turn, 255 - turn), 3 + 255 / std::max(1.0, spread));
    }
  }
}

TEST(Convert, RawBytesAreThoseOfThePicture) {
  const Folder folder;
  const std::string in = folder.Put("in.nv21", RandomNv21(64, 48));
  const std::vector<std::string> how = {"--size", "64x48", "--to", "rgb", "-o"};
  const auto run = [&](const std::string& out) {
    std::vector<std::string> words = {"convert", in};
    words.insert(words.end(), how.begin(), how.end());
    words.push_back(out);
    return RunLumora(words);
  };
  ASSERT_EQ(run(folder / "a.png").exit_code, 0);
  ASSERT_EQ(run(folder / "a.rgb").exit_code, 0);
  cv::Mat rgb;
  cv::cvtColor(Decode(ReadFile(folder / "a.png")), rgb, cv::COLOR_BGR2RGB);
  const std::string bytes(reinterpret_cast<const char*>(rgb.data), rgb.total() * 3);
  EXPECT_TRUE(TextOf(folder / "a.rgb") == bytes);
  EXPECT_TRUE(run("-").out == bytes);
}

TEST(Convert, FramesGoFromEveryLayoutToEveryOther) {
  const Folder folder;
  const int width = 67, height = 45, columns = 34, rows = 23;
  const std::string nv21 = RandomNv21(width, height);
  const size_t luma = width * height;
  std::string nv12 = nv21, i420 = nv21;
  for (size_t i = 0; i < columns * rows; ++i) {
    const char cr = nv21[luma + 2 * i], cb = nv21[luma + 2 * i + 1];
    nv12[luma + 2 * i] = cb;
    nv12[luma + 2 * i + 1] = cr;
    i420[luma + i] = cb;
    i420[luma + columns * rows + i] = cr;
  }
  const std::vector<std::pair<std::string, std::string>> frames = {
      {"nv21", nv21}, {"nv12", nv12}, {"i420", i420}};
  for (const auto& [from, input] : frames) {
    for (const auto& [to, expected] : frames) {
      SCOPED_TRACE(from + " to " + to);
      const Result result = RunLumora(
          {"convert", "-", "--format", from, "--size", "67x45", "--to", to, "-o", "-"}, input);
      ASSERT_EQ(result.exit_code, 0) << result.err;
      EXPECT_TRUE(result.out == expected);
    }
  }
}

TEST(Convert, APictureBecomesAFrame) {
  const Folder folder;
  const cv::Mat picture = Landscape(64, 48);
  const std::string in = folder.Put("in.png", PngOf(picture));
  ASSERT_EQ(RunLumora({"convert", in, "--to", "i420", "-o", folder / "out.i420"}).exit_code, 0);
  const std::string frame = TextOf(folder / "out.i420"), expected = PlanesOf(picture);
  ASSERT_EQ(frame.size(), expected.size());
  for (size_t i = 0; i < 64 * 48; ++i) {
    ASSERT_NEAR(static_cast<uint8_t>(frame[i]), static_cast<uint8_t>(expected[i]), 1) << i;
  }
}

TEST(Convert, AFrameOfAPictureHasThePicturesOwnSize) {
  const Folder folder;
  const cv::Mat picture = Landscape(67, 45);
  const std::string in = folder.Put("in.png", PngOf(picture)), out = folder / "out.YUV";
  ASSERT_EQ(RunLumora({"convert", in, "--to", "i420", "-o", out}).exit_code, 0);
  EXPECT_EQ(ReadFile(out).size(), 67u * 45 + 2 * 34 * 23);
  // ... and is read as a frame of that size and layout again.
  const std::string back = folder / "back.png";
  ASSERT_EQ(RunLumora({"convert", out, "--size", "67x45", "--to", "rgb", "-o", back}).exit_code, 0);
  const cv::Mat after = Decode(ReadFile(back));
  ASSERT_EQ(after.size(), picture.size());
  // Chroma is that of four pixels, here of a gentle slope with a sawtooth on one channel.
  EXPECT_LT(cv::norm(picture, after, cv::NORM_L1) / static_cast<double>(3 * after.total()), 4);
}

TEST(Convert, WhatIsSaidOfALayoutCountsMoreThanTheEnding) {
  const Folder folder;
  const std::string frame = RandomNv21(64, 48);
  const auto rgb = [&](const std::string& name, const std::string& format) {
    return RunLumora({"convert", folder.Put(name, frame), "--size", "64x48", "--format", format,
                      "--to", "rgb", "-o", "-"})
        .out;
  };
  const std::string as_nv12 = rgb("a.nv21", "nv12");
  EXPECT_EQ(as_nv12.size(), 64u * 48 * 3);
  EXPECT_EQ(as_nv12, rgb("a.raw", "nv12"));
  EXPECT_NE(as_nv12, rgb("a.nv12", "nv21"));
}

}  // namespace
}  // namespace lumora::test
