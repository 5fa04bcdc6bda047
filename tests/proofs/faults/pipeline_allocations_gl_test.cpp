// SPDX-License-Identifier: Apache-2.0
// Memory that runs out under the pipeline, at every request of every operation: what comes back is
// the result or a sentence, nothing hangs and nothing is thrown, and the next call works.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "lumora/pipeline/converter.h"
#include "lumora/pipeline/face_tracker.h"
#include "lumora/pipeline/pipeline.h"
#include "pipeline/frames/frame_memory.h"
#include "proofs/faults/allocation_faults.h"
#include "support/scoped.h"

namespace lumora::test {
namespace {

constexpr int kFrameHeight = 64;

// The device that everything is tried on: gl, or that of LUMORA_TEST_DEVICE.
Device TestedDevice() {
  const char* const name = std::getenv("LUMORA_TEST_DEVICE");
  return name == nullptr ? Device::Gl : FindDevice(name).value();
}

// Directories whose names are longer than a text without memory of its own.
class Surroundings {
 public:
  Surroundings()
      : cache_("LUMORA_CACHE_DIR", directory_.file("cache/with/parents")),
        root_("LUMORA_SYSTEM_ROOT", directory_.file("a/system/of/its/own")) {
    WriteFile(directory_.file("a/system/of/its/own/sys/android_camera/sensor"), "SOC an_imager\n");
    WriteFile(directory_.file("a/system/of/its/own/system/etc/an_imager_1"),
              "r_param,1.01 -0.02 0.005 0.03");
  }

 private:
  TempDirectory directory_;
  ScopedEnvironment cache_;
  ScopedEnvironment root_;
};

// Everything that calls may write, for frames of two sizes: a frame unlike the one before makes the
// engine set itself up anew.
struct Frames {
  int width;
  FrameMemory in, out;
  std::vector<uint8_t> images;
  Report report;

  explicit Frames(int width_of_frames)
      : width(width_of_frames),
        in(PixelFormat::NV21, width, kFrameHeight),
        out(PixelFormat::I420, width, kFrameHeight),
        images(ImageBytes() * 2, 0x5A) {
    in.Fill(NoiseSamples(width, kFrameHeight));
  }

  ImageView Image(size_t number) {
    return {images.data() + number * ImageBytes(), width, kFrameHeight, 4, width * 4};
  }

  bool operator==(const Frames& other) const {
    return out.Everything() == other.out.Everything() && images == other.images &&
           in.Everything() == other.in.Everything();
  }

 private:
  size_t ImageBytes() const { return static_cast<size_t>(width * kFrameHeight * 4); }
};

struct Makers {
  std::unique_ptr<Pipeline> pipeline;
  std::unique_ptr<Converter> converter;
};

struct Operation {
  const char* name;
  Status (*run)(const Makers& makers, Frames& frames);
};

const std::vector<Face>& Faces() {
  static const std::vector<Face> faces = {FaceFromEyes({30, 24}, {46, 24}),
                                          FaceFromEyes({60, 30}, {74, 30})};
  return faces;
}

template <int slim, int whiten, Chain chain>
Status Process(const Makers& makers, Frames& f) {
  return makers.pipeline->Process(
      {f.in.const_view(), f.out.view(), Faces(), Look{slim, whiten, whiten}, chain}, &f.report);
}

// To a place in the same memory, which takes a copy in between.
Status Shift(const Makers& makers, Frames& f) {
  ConstFrameView from = f.in.const_view();
  FrameView to = f.in.view();
  from.height -= 2;
  to.height -= 2;
  from.planes[0] += 2 * from.strides[0];
  from.planes[1] += from.strides[1];
  return makers.pipeline->Process({from, to, {}, Look{}}, &f.report);
}

// Between them they come by everything that the engine and the pipeline do.
const Operation kOperations[] = {
    {"Preview", Process<80, 70, Chain::Preview>},
    {"SlimCapture", Process<80, 0, Chain::Capture>},
    {"WhitenCapture", Process<0, 70, Chain::Capture>},
    {"NothingToDo", Process<0, 0, Chain::Auto>},
    {"NothingToDoInPlace", Shift},
    {"Keystone",
     [](const Makers& m, Frames& f) {
       return m.pipeline->Rectify(f.in.const_view(), f.out.view(), 10, &f.report);
     }},
    {"Lens",
     [](const Makers& m, Frames& f) {
       return m.pipeline->RectifyRadial(f.in.const_view(), f.out.view(), Camera::First, &f.report);
     }},
    {"Convert",
     [](const Makers& m, Frames& f) {
       return m.converter->Convert(f.in.const_view(), f.Image(0), f.Image(1), &f.report);
     }},
};

// Arguments of which nothing can be made: what comes back is a sentence in any case.
const Operation kRefusals[] = {
    {"OutOfScale", Process<101, 0, Chain::Auto>},
    {"OtherSize",
     [](const Makers& m, Frames& f) {
       FrameView out = f.out.view();
       out.width -= 2;
       return m.pipeline->Rectify(f.in.const_view(), out, 10, &f.report);
     }},
    {"OutOfRange",
     [](const Makers& m, Frames& f) {
       return m.pipeline->Rectify(f.in.const_view(), f.out.view(), 101, &f.report);
     }},
    {"OtherImage",
     [](const Makers& m, Frames& f) {
       ImageView image = f.Image(0);
       image.channels = 5;
       return m.converter->Convert(f.in.const_view(), image, {}, &f.report);
     }},
};

template <typename Owner>
std::unique_ptr<Owner> Make() {
  Status status;
  std::unique_ptr<Owner> made = Owner::Create({TestedDevice()}, &status);
  EXPECT_TRUE(status.ok()) << status.message;
  return made;
}

class OperationTest {
 public:
  explicit OperationTest(const Operation& operation) : operation_(operation) {
    for (const int width : kWidths) expected_.push_back(Good(width));  // programs come to the cache
  }

  // Every request of a frame of another size than the one before, or of the same.
  void RefuseEveryRequest(bool anew) {
    SCOPED_TRACE(anew ? "another size" : "the same size");
    Good(kWidths[0]);
    size_t at = anew ? 1 : 0;
    Frames counted(kWidths[at]);
    const Requests all = WithRefusal({}, [&] { Run(counted); });
    testing::Test::RecordProperty(anew ? "requests_of_set_up" : "requests", all.made);
    if (all.made == tried_) return;  // it is set up anew in any case
    tried_ = all.made;
    ForEachRefusal(all.made, [&](const Refusal& refusal) {
      if (anew) at = 1 - at;
      Refuse(refusal, expected_[at]);
    });
  }

 private:
  static constexpr int kWidths[] = {96, 128};

  Status Run(Frames& frames) { return operation_.run(makers_, frames); }

  Frames Good(int width) {
    Frames frames(width);
    const Status status = Run(frames);
    if (expected_.empty()) code_ = status.code;
    EXPECT_EQ(status.code, code_) << status.message;
    return frames;
  }

  void Refuse(const Refusal& refusal, const Frames& expected) {
    Frames frames(expected.width);
    Status status;
    const Requests requests = WithRefusal(refusal, [&] { status = Run(frames); });
    EXPECT_FALSE(requests.thrown);
    EXPECT_GE(requests.refused, 1);
    EXPECT_EQ(status.ok(), status.message.empty());
    EXPECT_TRUE(frames == (status.ok() ? expected : Frames(expected.width)));
    if (!status.ok()) {
      EXPECT_EQ(frames.report.chain, ChainUsed::NoCall);
      EXPECT_TRUE(frames.report.blocks.empty() && frames.report.tones.empty());
    }
    EXPECT_TRUE(Good(expected.width) == expected);
  }

  const Operation& operation_;
  const Surroundings surroundings_;
  const Makers makers_ = {Make<Pipeline>(), Make<Converter>()};
  StatusCode code_ = StatusCode::Ok;  // where memory is not short
  std::vector<Frames> expected_;
  int tried_ = -1;  // requests in the former round
};

class PipelineAllocations : public testing::TestWithParam<Operation> {};

TEST_P(PipelineAllocations, GiveTheResultOrASentence) {
  OperationTest test(GetParam());
  test.RefuseEveryRequest(true);
  test.RefuseEveryRequest(false);
}

std::string NameOf(const testing::TestParamInfo<Operation>& row) {
  return row.param.name;
}
INSTANTIATE_TEST_SUITE_P(Operations, PipelineAllocations, testing::ValuesIn(kOperations), NameOf);
INSTANTIATE_TEST_SUITE_P(Refusals, PipelineAllocations, testing::ValuesIn(kRefusals), NameOf);

template <typename Owner>
class CreationAllocations : public testing::Test {};
using Owners = testing::Types<Pipeline, Converter>;
TYPED_TEST_SUITE(CreationAllocations, Owners);

TYPED_TEST(CreationAllocations, GiveAnObjectOrASentence) {
  const Surroundings surroundings;
  Make<TypeParam>();
  std::unique_ptr<TypeParam> made;
  Status status;
  const auto create = [&] { made = TypeParam::Create({TestedDevice()}, &status); };
  const Requests all = WithRefusal({}, create);
  EXPECT_GE(all.made, 3);
  ForEachRefusal(all.made, [&](const Refusal& refusal) {
    made.reset();
    const Requests requests = WithRefusal(refusal, create);
    EXPECT_FALSE(requests.thrown);
    EXPECT_GE(requests.refused, 1);
    EXPECT_EQ(made != nullptr, status.ok());
    EXPECT_EQ(status.ok(), status.message.empty());
    EXPECT_FALSE(
        WithRefusal(refusal, [&] { TypeParam::Create({TestedDevice()}, nullptr); }).thrown);
    EXPECT_NE(nullptr, Make<TypeParam>());
  });
  // An end asks for nothing.
  create();
  EXPECT_EQ(0, WithRefusal({}, [&] { made.reset(); }).made);
}

TEST(DeviceAllocations, TellAllOrNothing) {
  const Surroundings surroundings;
  const auto pipeline = Make<Pipeline>();
  const DeviceInfo expected = pipeline->Device();
  ASSERT_GT(expected.cache_directory.size(), 15u);
  DeviceInfo info;
  const auto ask = [&] { info = pipeline->Device(); };
  const Requests all = WithRefusal({}, ask);
  EXPECT_GE(all.made, 4);
  ForEachRefusal(all.made, [&](const Refusal& refusal) {
    const Requests requests = WithRefusal(refusal, ask);
    EXPECT_FALSE(requests.thrown);
    EXPECT_TRUE(info.renderer.empty() || info.renderer == expected.renderer);
    EXPECT_TRUE(info.cache_directory.empty() || info.cache_directory == expected.cache_directory);
    ask();
    EXPECT_EQ(info.renderer, expected.renderer);
    EXPECT_EQ(info.cache_directory, expected.cache_directory);
    EXPECT_EQ(info.max_texture_size, expected.max_texture_size);
  });
}

bool SameFaces(const std::vector<Face>& a, const std::vector<Face>& b) {
  return a.size() == b.size() &&
         (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(Face)) == 0);
}

// A tracker without memory tells no faces and is as it was.
TEST(TrackerAllocations, TellTheFacesOrNone) {
  const std::vector<Face> moved = {FaceFromEyes({31, 25}, {47, 25}),
                                   FaceFromEyes({61, 30}, {75, 30}),
                                   FaceFromEyes({20, 50}, {26, 50})};
  for (const bool detected : {true, false}) {
    const auto step = [&](FaceTracker& tracker) {
      return detected ? tracker.Detected(moved) : tracker.Skipped();
    };
    FaceTracker start;
    start.Detected(Faces());
    FaceTracker model = start;
    const std::vector<Face> expected = step(model);
    FaceTracker counted = start;
    const Requests all = WithRefusal({}, [&] { step(counted); });
    EXPECT_GE(all.made, 1);
    ForEachRefusal(all.made, [&](const Refusal& refusal) {
      FaceTracker tracker = start;
      std::vector<Face> faces;
      EXPECT_FALSE(WithRefusal(refusal, [&] { faces = step(tracker); }).thrown);
      EXPECT_TRUE(faces.empty());
      EXPECT_TRUE(SameFaces(expected, step(tracker)));
    });
  }
}

TEST(PlainFunctions, AskForNothing) {
  const Face face = Faces()[0];
  PointF points68[68] = {};
  PointF points468[468] = {};
  const Requests requests = WithRefusal({}, [&] {
    FaceFromEyes({30, 24}, {46, 24});
    FaceFromBox({1, 2, 30, 30});
    FaceFromIbug68(points68);
    FaceFromMesh468(points468);
    SlimmingCircle(face, 96, 64);
    SlimmingWarp(face, 50, 96, 64);
    WhiteningEllipses(face);
    Whitens(Look{});
    FindPreset("studio");
  });
  EXPECT_EQ(0, requests.made);
  EXPECT_FALSE(WithRefusal({1, Shortage::Lasting}, [] { Presets(); }).thrown);
  EXPECT_EQ(3u, Presets().size());
}

}  // namespace
}  // namespace lumora::test
