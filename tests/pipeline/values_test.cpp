// SPDX-License-Identifier: Apache-2.0
// The small values of the public headers: faces in spans, lenses of two kinds, names.
#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "lumora/pipeline/chain.h"
#include "lumora/pipeline/device.h"
#include "lumora/pipeline/face.h"
#include "lumora/pipeline/lens.h"

namespace lumora::test {
namespace {

TEST(FaceSpan, HoldsTheFacesOfWhateverItIsMadeFrom) {
  const std::vector<Face> several(3);
  const std::array<Face, 2> two = {};
  const Face plain[4] = {};
  const auto expect = [](FaceSpan span, const Face* first, size_t count) {
    EXPECT_EQ(span.begin(), first);
    EXPECT_EQ(span.end(), first + count);
    EXPECT_EQ(span.size(), count);
    EXPECT_EQ(span.empty(), count == 0);
    for (size_t i = 0; i < count; ++i) EXPECT_EQ(&span[i], first + i);
  };
  expect(several, several.data(), 3);
  expect(two, two.data(), 2);
  expect(plain, plain, 4);
  expect({plain + 1, 2}, plain + 1, 2);
  expect(two[1], &two[1], 1);
  expect({two[0]}, two.data(), 1);
  expect({}, nullptr, 0);
}

template <typename Faces>
constexpr bool kMayVanish = std::is_constructible_v<FaceSpan, Faces&&>;
template <typename Faces>
constexpr bool kStays = std::is_constructible_v<FaceSpan, const Faces&>;

TEST(FaceSpan, IsNotMadeFromWhatIsAboutToGoAway) {
  EXPECT_TRUE(kStays<Face> && kStays<std::vector<Face>> && (kStays<std::array<Face, 2>>));
  EXPECT_FALSE(kMayVanish<Face> || kMayVanish<const Face>);
  EXPECT_FALSE(kMayVanish<std::vector<Face>> || kMayVanish<const std::vector<Face>>);
  EXPECT_FALSE((kMayVanish<std::array<Face, 2>>));
}

TEST(Lens, IsCoefficientsOrACamera) {
  EXPECT_EQ(std::get<LensCoefficients>(Lens{}).k0, LensCoefficients{}.k0);
  EXPECT_EQ(std::get<LensCoefficients>(Lens(LensCoefficients{1, 2, 3, 4})).k3, 4);
  EXPECT_EQ(std::get<Camera>(Lens(Camera::Second)), Camera::Second);
}

/// The names of all values from `first` to `last`, and of one beyond each.
template <typename Value>
std::string Names(Value first, Value last) {
  std::string names;
  for (int value = static_cast<int>(first) - 1; value <= static_cast<int>(last) + 1; ++value) {
    names += std::string(Name(static_cast<Value>(value))) + ";";
  }
  return names;
}

TEST(Names, OfDevicesAreFoundAgain) {
  EXPECT_EQ(Names(Device::Auto, Device::Cpu), ";auto;gl;cpu;;");
  for (const Device device : {Device::Auto, Device::Gl, Device::Cpu}) {
    EXPECT_EQ(FindDevice(Name(device)), device);
  }
  for (const char* none : {"", "GL", "gpu", "auto ", "cpu0"}) {
    EXPECT_EQ(FindDevice(none), std::nullopt) << none;
  }
}

TEST(Names, AreThoseThatReportsForMachinesTell) {
  EXPECT_EQ(Names(ChainUsed::NoCall, ChainUsed::Convert), ";;none;preview;capture;convert;;");
  EXPECT_EQ(Names(BufferKind::None, BufferKind::HardwareBuffer),
            ";;staged;memobj;dmabuf;hardware buffer;;");
  EXPECT_EQ(Names(DisplaySource::None, DisplaySource::Surfaceless),
            ";none;default display;EGL device;EGL device (software);surfaceless platform;;");
}

}  // namespace
}  // namespace lumora::test
