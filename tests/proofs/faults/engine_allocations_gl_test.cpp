// SPDX-License-Identifier: Apache-2.0
// Memory that runs out under engines, the converter and images, at every request of whole sessions:
// nothing is thrown, nothing hangs, and what is made next works.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "lumora/convert/gpu_color_converter.h"
#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/gl/segl_image.h"
#include "lumora/platform/settings.h"
#include "lumora/programs/colour_programs.h"
#include "proofs/faults/allocation_faults.h"
#include "support/caller_memory.h"
#include "support/faces.h"
#include "support/scoped.h"

namespace lumora::test {
namespace {

using android::GPUBeautyFace;
using android::GPUColorConverter;

constexpr int kWidth = 128;
constexpr int kHeight = 64;

// What a session works on, and what it leaves there.
struct Table {
  CallerFrame frame{kWidth, kHeight, NoisePlanes(kWidth, kHeight, 1)};
  FACE_INFO_t faces[2] = {Face(40, 24), Face(80, 30)};
  std::vector<unsigned char> texels = std::vector<unsigned char>(kWidth * kHeight * 4, 0);

  static FACE_INFO_t Face(int x, int y) {
    FaceRecord record = PortraitFace(x, y, 16);
    record.set(FaceRecord::kDistValid, 1);
    return record.as<FACE_INFO_t>();
  }
};

struct Session {
  const char* name;
  void (*run)(Table& table);
};

void Preview(Table& t) {
  GPUBeautyFace engine;
  engine.Init(kWidth, kHeight, kWidth, kHeight, nullptr, true);
  if (engine.LoadPreviewFrameBuffer(t.frame.luma()) != 0) {
    engine.ConvertYUV();
    engine.DoFaceWhitening(t.faces, 2, 60, 40, BEAUTYSHOT_EFFECT_BOTH);
    engine.ConvertHSItoYUV();
    engine.CopyMemYUVfromSrcTexture(t.frame.luma(), t.frame.chroma());
  }
  engine.FaceProcessMultiface(t.frame.luma(), t.frame.chroma(), 5, t.faces, 2, 0);
  engine.RadialRectification(t.frame.luma(), t.frame.chroma(), 0, 0);
}

void Blocks(Table& t) {
  GPUBeautyFace engine;
  engine.InitCapture(nullptr, nullptr, kWidth, kHeight, nullptr, true);
  engine.DoFaceWhiteningLarge(t.frame.luma(), t.frame.chroma(), t.faces, 2, 60, 40,
                              BEAUTYSHOT_EFFECT_BOTH);
  engine.CopyMemYUVfromSrcTextureLarge(t.frame.luma(), t.frame.chroma(), 0, 2);
  engine.DeInitCapture();
}

void Planes(Table& t) {
  GPUBeautyFace engine;
  engine.InitCapture(t.frame.luma(), t.frame.chroma(), kWidth, kHeight, nullptr, false);
  engine.FaceProcessLarge(t.frame.luma(), t.frame.chroma(), kWidth, kHeight, 0, t.faces, 2, 5);
  engine.DeInitCapture();
}

void Convert(Table& t) {
  GPUColorConverter converter;
  if (!converter.m_bEGLReady) return;  // of use for destruction alone
  converter.Init(kWidth, kHeight, nullptr);
  converter.ConvertYUV(t.frame.luma());
  const unsigned char* const rgb = converter.GetRGB_Image();
  if (rgb != nullptr) std::memcpy(t.texels.data(), rgb, t.texels.size());
}

void Image(Table& t) {
  GPUBeautyFace engine;  // for its context
  SEGLImage image(1);
  image.Create(kWidth, kHeight, 1);
  if (unsigned char* const pixels = image.Lock()) {
    std::memcpy(pixels, t.frame.luma(), kWidth);
    image.Unlock();
    std::memcpy(t.texels.data(), image.Lock(), t.texels.size());
  }
  image.GetFlag();
  image.Destroy();
}

const Session kSessions[] = {{"Preview", Preview},
                             {"Blocks", Blocks},
                             {"Planes", Planes},
                             {"Convert", Convert},
                             {"Image", Image}};

class EngineAllocations : public testing::TestWithParam<Session> {
 protected:
  // Names longer than a text without memory of its own.
  EngineAllocations()
      : cache_("LUMORA_CACHE_DIR", directory_.file("cache/with/parents")),
        property_("LUMORA_PROP_FILE", directory_.file("properties")) {
    WriteFile(directory_.file("properties"),
              "persist.debug.camera.showmask=a long value of nobody\n");
  }

  const TempDirectory directory_;
  const ScopedEnvironment cache_;
  const ScopedEnvironment property_;
};

TEST_P(EngineAllocations, AreMissedInSilence) {
  const auto result = [](const Table& table) {
    Bytes all = table.frame.bytes();
    all.insert(all.end(), table.texels.begin(), table.texels.end());
    return all;
  };
  Table expected;
  const Requests cold = WithRefusal({}, [&] { GetParam().run(expected); });
  Table warm;
  const Requests all = WithRefusal({}, [&] { GetParam().run(warm); });
  EXPECT_EQ(result(expected), result(warm));
  EXPECT_GE(cold.made, all.made);
  EXPECT_GE(all.made, 4);
  testing::Test::RecordProperty("requests", all.made);

  ForEachRefusal(all.made, [&](const Refusal& refusal) {
    Table table;
    EXPECT_FALSE(WithRefusal(refusal, [&] { GetParam().run(table); }).thrown);
    EXPECT_TRUE(table.frame.intact());
    EXPECT_EQ(EGL_NO_CONTEXT, eglGetCurrentContext());
    // What one session might spoil for others stays spoilt.
    if (refusal.number % 8 != 1 && refusal.number != all.made) return;
    Table next;
    GetParam().run(next);
    EXPECT_TRUE(result(expected) == result(next));
  });
}

INSTANTIATE_TEST_SUITE_P(Sessions, EngineAllocations, testing::ValuesIn(kSessions),
                         [](const testing::TestParamInfo<Session>& row) { return row.param.name; });

TEST(SettingsAllocations, LeaveSettingsAsTheyWereOrEmpty) {
  using namespace lumora::platform;
  const ScopedEnvironment property("LUMORA_PROP_a_name_of_some_length", "a value of some length");
  const TempDirectory directory;
  const std::string chosen = directory.file("a/directory");
  const std::string another = directory.file("another/directory/than/that");
  char value[kPropertyValueMax] = {};
  const struct {
    std::function<void()> call;
  } calls[] = {{[&] { SetCacheDirectory(chosen); }},
               {[&] { SetSystemRoot(chosen); }},
               {[] { CacheDirectory(); }},
               {[] { SystemRoot(); }},
               {[] { MakeCacheDirectory(); }},
               {[&] { __system_property_get("a.name.of.some.length", value); }}};
  for (const auto& [call] : calls) {
    SetCacheDirectory(another);
    SetSystemRoot(another);
    const Requests all = WithRefusal({}, call);
    EXPECT_GE(all.made, 1);
    SetCacheDirectory(another);
    SetSystemRoot(another);
    ForEachRefusal(all.made, [&, &made = call](const Refusal& refusal) {
      EXPECT_FALSE(WithRefusal(refusal, made).thrown);
      EXPECT_EQ(CacheDirectory(), another);
      EXPECT_EQ(SystemRoot(), another);
    });
  }
  SetCacheDirectory("");
  SetSystemRoot("");
}

// Which a program that was compiled is written to; the directory has to be made first.
TEST_F(EngineAllocations, OfAColdCacheAreMissedInSilence) {
  const GPUBeautyFace engine;  // for its context
  GLProgRGBtoY program;
  ASSERT_TRUE(program.Load());
  const std::string cold = directory_.file("a/cold/one");
  const ScopedEnvironment cache("LUMORA_CACHE_DIR", cold);
  std::string path = cold + "/program.bin";
  const auto save = [&] { program.SaveBinary(path.data()); };
  const Requests all = WithRefusal({}, save);
  EXPECT_GE(all.made, 2);
  ForEachRefusal(all.made, [&](const Refusal& refusal) {
    std::filesystem::remove_all(directory_.file("a"));
    EXPECT_FALSE(WithRefusal(refusal, save).thrown);
    EXPECT_TRUE(program.SaveBinary(path.data()));
    EXPECT_TRUE(program.LoadBinary(path.data()));
  });
}

}  // namespace
}  // namespace lumora::test
