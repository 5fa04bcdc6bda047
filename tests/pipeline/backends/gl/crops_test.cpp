// SPDX-License-Identifier: Apache-2.0
// Where crops lie, and which faces lie in them.
#include "pipeline/backends/gl/crops.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <set>
#include <utility>
#include <vector>

#include "lumora/geometry/rounding.h"
#include "lumora/geometry/whitening.h"
#include "pipeline/faces/landmark_record.h"
#include "pipeline/faces/random_faces.h"
#include "pipeline/plan/skin_mask.h"

namespace lumora::test {
namespace {

bool IsWithin(const PixelRectangle& part, const PixelRectangle& whole) {
  return part.x >= whole.x && part.y >= whole.y && part.x + part.width <= whole.x + whole.width &&
         part.y + part.height <= whole.y + whole.height;
}

std::vector<Crop> CropsOf(const std::vector<Face>& faces, int width, int height) {
  std::vector<PixelRectangle> reaches;
  for (const Face& face : faces) reaches.push_back(WhiteningReach(LandmarkRecord(face)));
  std::vector<Crop> crops(3);  // of the frame before
  LayCrops(reaches, width, height, &crops);
  return crops;
}

TEST(CropSide, IsAtMostAnEighthLongerAndOneOfFew) {
  std::set<int> sides;
  for (int length = 1; length <= 4096; ++length) {
    const int side = CropSide(length);
    ASSERT_EQ(side % 32, 0) << length;
    ASSERT_GE(side, length);
    ASSERT_LE(side - length, std::max(31, length / 8)) << length;
    sides.insert(side);
  }
  EXPECT_LE(sides.size(), 48U);
}

TEST(WhiteningReach, HoldsTheMaskAndThePlacesThatAreMeasured) {
  RandomFaces random(41);
  int seen = 0;
  for (int i = 0; i < 2000; ++i) {
    const int width = random.WholeBetween(2, 60) * 32, height = random.WholeBetween(2, 40) * 32;
    const Face face = random.In(width, height);
    const FACE_INFO_t record = LandmarkRecord(face);
    const PixelRectangle reach = WhiteningReach(record);
    const Ellipse outer = WhiteningEllipses(face)[kFaceEllipse];
    if (outer.half_along == 0) continue;
    const SkinMask mask(face, outer, 120, width, height);
    const PixelRectangle& bounds = mask.bounds();
    const PixelRectangle even = {reach.x & ~1, reach.y & ~1, reach.width + 2, reach.height + 2};
    if (bounds.width > 0 && bounds.height > 0) {
      ASSERT_TRUE(IsWithin(bounds, even)) << "of face " << i;
      ++seen;
    }
    ForEachSample(MeasureFace(record), width, height, [&](int x, int y) {
      ASSERT_TRUE(IsWithin({x, y, 1, 1}, reach)) << x << ", " << y << " of face " << i;
    });
  }
  EXPECT_GT(seen, 500);
}

TEST(LayCrops, CoversWhatEveryFaceReachesOfTheFrame) {
  RandomFaces random(42);
  for (int i = 0; i < 3000; ++i) {
    const int width = random.WholeBetween(1, 64) * 32, height = random.WholeBetween(1, 40) * 32;
    std::vector<Face> faces(static_cast<size_t>(random.WholeBetween(1, 6)));
    for (Face& face : faces) face = random.In(width, height);
    const std::vector<Crop> crops = CropsOf(faces, width, height);
    for (const Crop& crop : crops) {
      ASSERT_TRUE(IsWithin(crop.area, {0, 0, width, height})) << i;
      ASSERT_FALSE(IsEmpty(crop.area));
      ASSERT_EQ(crop.area.x % 2 + crop.area.y % 2, 0) << i;
      ASSERT_EQ(crop.area.width % 32 + crop.area.height % 32, 0) << i;
    }
    for (const Face& face : faces) {
      const PixelRectangle reach = WhiteningReach(LandmarkRecord(face));
      const auto holds = [&reach](const Crop& crop) { return crop.Holds(reach); };
      ASSERT_EQ(std::count_if(crops.begin(), crops.end(), holds), 1) << i;
      const Crop& crop = *std::find_if(crops.begin(), crops.end(), holds);
      const PixelRectangle part = CutToImage(reach, width, height);
      if (!IsEmpty(part)) {
        ASSERT_TRUE(IsWithin(part, crop.area)) << i;
      }
      // Below 0 in the crop only where it is below 0 in the frame, and then by as much.
      ASSERT_TRUE(reach.x < 0 ? crop.area.x == 0 : crop.area.x <= reach.x) << i;
      ASSERT_TRUE(reach.y < 0 ? crop.area.y == 0 : crop.area.y <= reach.y) << i;
    }
  }
}

TEST(LayCrops, HasTheSameSizesWhereverAFaceIs) {
  std::set<std::pair<int, int>> sizes;
  for (int step = 0; step < 400; ++step) {
    const float angle = static_cast<float>(step) * 0.17f;
    const PointF middle = {640 + 700 * std::cos(angle), 368 + 400 * std::sin(angle * 0.7f)};
    const float half = 50 + 0.3f * std::sin(static_cast<float>(step));  // it trembles
    const std::vector<Crop> crops = CropsOf(
        {FaceFromEyes({middle.x - half, middle.y}, {middle.x + half, middle.y})}, 1280, 736);
    ASSERT_EQ(crops.size(), 1U);
    sizes.insert({crops[0].area.width, crops[0].area.height});
  }
  EXPECT_LE(sizes.size(), 4U);
}

TEST(LayCrops, LaysOneAroundFacesThatAreCloseAndOneEachAroundOthers) {
  const auto face = [](float x, float y) { return FaceFromEyes({x - 20, y}, {x + 20, y}); };
  EXPECT_EQ(CropsOf({face(100, 100), face(1000, 600)}, 1280, 736).size(), 2U);
  EXPECT_EQ(CropsOf({face(300, 300), face(330, 310)}, 1280, 736).size(), 1U);
  // The last one joins two that are apart.
  const std::vector<Face> row = {face(200, 300), face(420, 300), face(310, 300)};
  EXPECT_EQ(CropsOf(row, 1280, 736).size(), 1U);
  EXPECT_EQ(CropsOf({}, 1280, 736).size(), 0U);
}

TEST(SeenFrom, MovesWhatWhiteningMeasuresAndNothingElse) {
  RandomFaces random(44);
  for (int i = 0; i < 3000; ++i) {
    const int width = random.WholeBetween(8, 64) * 32, height = random.WholeBetween(8, 40) * 32;
    const Face face = random.In(width, height);
    const FACE_INFO_t record = LandmarkRecord(face);
    const Crop crop = CropsOf({face}, width, height)[0];
    const FaceGeometry whole = MeasureFace(record), part = MeasureFace(SeenFrom(crop, record));
    ASSERT_EQ(part.centre_x + crop.area.x, whole.centre_x) << i;
    ASSERT_EQ(part.centre_y + crop.area.y, whole.centre_y) << i;
    ASSERT_EQ(part.sample_radius, whole.sample_radius) << i;
    ASSERT_EQ(part.sample_step, whole.sample_step) << i;
    const EllipseShape outer = ShapeOf(FaceEllipses(record, whole, 1)[0]);
    const EllipseShape seen = ShapeOf(FaceEllipses(SeenFrom(crop, record), part, 1)[0]);
    ASSERT_EQ(seen.centre_x + crop.area.x, outer.centre_x) << i;
    ASSERT_EQ(seen.centre_y + crop.area.y, outer.centre_y) << i;
    ASSERT_EQ(seen.direction, outer.direction) << i;
    ASSERT_EQ(seen.half_first, outer.half_first) << i;
    ASSERT_EQ(seen.half_second, outer.half_second) << i;
  }
}

}  // namespace
}  // namespace lumora::test
