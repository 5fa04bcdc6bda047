// Capture operations: what each prints and draws, face by face and block by block.
#include <gtest/gtest.h>

#include <memory>

#include "conformance/gl_text.h"
#include "conformance/operations.h"
#include "effects/faces.h"
#include "engine/caller_memory.h"

namespace lumora::test {
namespace {

using Engine = GPUBeautyFace;
using reference::SlimmingFace;

struct Place {
  int x, y;
};
struct Block {
  int x, y, width, height;
};
struct Rect {
  int x, y, width, height;
};

/// An engine after InitCapture, released at the end.
class CaptureEngine {
 public:
  CaptureEngine(int width, int height, bool block_mode)
      : frame_(reference::Frame(width, height, 150, 128, 128)) {
    engine_.InitCapture(frame_.luma(), frame_.chroma(), width, height, nullptr, block_mode);
  }
  ~CaptureEngine() { engine_.DeInitCapture(); }
  CaptureEngine(const CaptureEngine&) = delete;
  CaptureEngine& operator=(const CaptureEngine&) = delete;

  Engine& engine() { return engine_; }
  void expect(const Operation& operation) {
    ExpectTranscript(operation, engine_, frame_.luma(), frame_.chroma());
    EXPECT_TRUE(frame_.intact());
  }

 private:
  Engine engine_;
  CallerFrame frame_;
};

float Ratio(int a, int b) {
  return static_cast<float>(a) / static_cast<float>(b);
}
int Row(const Engine& engine) {
  return (engine.m_nFullWidth + 31) / 32 * 32;
}

// ---- Whitening ----------------------------------------------------------------------------------

/// Does not set the viewport.
Script WhitePass(bool previous, const Uniforms& uniforms) {
  Pass pass;
  pass.program = "FaceWhitening";
  pass.kind = "FaceWhiteningLarge";
  pass.inputs = {"work0", previous ? "input" : "work0"};
  pass.target.framebuffer = "work2";
  return Drawn(pass, uniforms);
}

/// A block whose origin is where it was whitened at, after the widening of narrow ones.
Script WhitenedBlock(const Engine& e, const Place& at, bool previous) {
  Uniforms uniforms = NothingShifted(e);
  uniforms.tile = Numbers({Ratio(e.m_nSrcWidth, Row(e)), Ratio(e.m_nSrcHeight, e.m_nFullHeight),
                           Ratio(at.x, Row(e)), Ratio(at.y, e.m_nFullHeight)});
  Script script = Drawn(WholePass(e, "YUV2HSI", "input", "work0"), {});
  if (previous) script += Finish();
  script += Script{"glViewport 0 0 " + std::to_string(e.m_nAlignedWidth) + " " +
                   std::to_string(e.m_nAlignedHeight)};
  return script + WhitePass(previous, uniforms) + Finish();
}

/// One face of a whitened capture.
struct WhiteFace {
  FaceRecord record;
  Rect rect;
  std::vector<Place> blocks;
  bool previous;  ///< an earlier face has been there, at every block
};

struct WhiteCapture {
  const char* name;
  int width, height;
  std::vector<WhiteFace> faces;
  /// How the blocks come back: the whole block, or the rectangle of the store.
  std::vector<std::string> coordinates;
};
void PrintTo(const WhiteCapture& capture, std::ostream* out) {
  *out << capture.name;
}

// Rectangles and blocks are worked out by hand. A portrait of half width 150 at (x, y) has its
// middle at (x, y + 14), one of 50 at (x, y + 4), one of 10 at (x, y). Stores of 1400 columns have
// rows of 1408.
const std::vector<WhiteCapture>& Captures() {
  static const std::vector<WhiteCapture> captures = {
      {"Whole",
       320,
       240,
       {{PortraitFace(160, 110, 50), {-160, -126, 640, 480}, {{0, 0}}, false}},
       {"(0 0 1 1)"}},
      {"TwoOverlappingFaces",
       1400,
       900,
       {{PortraitFace(700, 450, 150),
         {316, 80, 768, 768},
         {{316, 80}, {700, 80}, {316, 464}, {700, 464}},
         false},
        // 1100 is 300 columns from the edge: the block is widened to 320 and moved.
        {PortraitFace(1100, 450, 150),
         {716, 80, 768, 768},
         {{716, 80}, {1080, 80}, {716, 464}, {1080, 464}},
         true}},
       {"(0.2244 0.0889 0.4972 0.5156)", "(0.4972 0.0889 0.7699 0.5156)",
        "(0.2244 0.5156 0.4972 0.9422)", "(0.4972 0.5156 0.7699 0.9422)",
        "(0.5085 0.0889 0.7812 0.5156)", "(0.7812 0.0889 1.054 0.5156)",
        "(0.5085 0.5156 0.7812 0.9422)", "(0.7812 0.5156 1.054 0.9422)"}},
      {"FaceOutside",
       1400,
       900,
       {{PortraitFace(-900, 450, 150), {-1284, 80, 768, 768}, {}, false}},
       {}},
      {"LargeStore",
       4100,
       40,
       {{PortraitFace(2000, 20, 10), {1616, -364, 768, 768}, {{1616, 0}, {2000, 0}}, false}},
       {"(0 0 1 1)", "(0 0 1 1)"}},
      {"NoFace", 320, 240, {}, {}}};
  return captures;
}

class WhiteningCaptures : public testing::TestWithParam<WhiteCapture> {};

TEST_P(WhiteningCaptures, PrintAndDrawFaceByFace) {
  const WhiteCapture& capture = GetParam();
  CaptureEngine scene(capture.width, capture.height, true);
  std::vector<FACE_INFO_t> records;
  for (const WhiteFace& face : capture.faces) records.push_back(face.record.as<FACE_INFO_t>());
  const int count = static_cast<int>(records.size());
  scene.expect({"DoFaceWhiteningLarge",
                [&](Engine& e, unsigned char* luma, unsigned char* chroma) {
                  return e.DoFaceWhiteningLarge(luma, chroma, records.data(), count, 0, 40,
                                                BEAUTYSHOT_EFFECT_BOTH);
                },
                [&](const Engine& e) {
                  Script script = EngineInfo("DoFaceWhitening+");
                  for (size_t i = 0; i < capture.faces.size(); ++i) {
                    const auto& [record, rect, blocks, previous] = capture.faces[i];
                    script +=
                        EngineInfo("Face Pass %d", static_cast<int>(i)) + WhiteningMeasured(8) +
                        EngineDebug(
                            "[LumoraLarge Face Whitening]: Process_Rect: X: %d, Y: %d, Width: %d, "
                            "Height: %d",
                            rect.x, rect.y, rect.width, rect.height) +
                        EngineDebug("[LumoraLarge]process block");
                    for (const Place& block : blocks) script += WhitenedBlock(e, block, previous);
                  }
                  return script + EngineInfo("DoFaceWhitening-");
                }});
  EXPECT_EQ(1, scene.engine().m_nResultIdx);
  if (count == 0) return;

  scene.expect({"CopyMemYUVfromSrcTextureLarge",
                [&](Engine& e, unsigned char* luma, unsigned char* chroma) {
                  return e.CopyMemYUVfromSrcTextureLarge(luma, chroma, 0, count);
                },
                [&](const Engine& e) {
                  Script script;
                  size_t next = 0;
                  for (const WhiteFace& face : capture.faces) {
                    script += EngineDebug("[CopyMemYUVfromSrcTextureLarge]process block");
                    for (size_t i = 0; i < face.blocks.size(); ++i) {
                      Pass pass =
                          WholePass(e, "HSI2YUV", e.m_bLargeCapture ? "work2" : "work1", "input");
                      pass.quad.coordinates = capture.coordinates[next++];
                      script += Drawn(pass, {}) + Packed(e, "input") + Finish();
                    }
                  }
                  return script;
                }});
  EXPECT_EQ(capture.width > 4096 ? 2 : 1, scene.engine().m_nResultIdx);
}

INSTANTIATE_TEST_SUITE_P(Captures, WhiteningCaptures, testing::ValuesIn(Captures()),
                         [](const testing::TestParamInfo<WhiteCapture>& row) {
                           return row.param.name;
                         });

TEST(CaptureBlocks, ComeBackFromRectanglesOfAnySize) {
  CaptureEngine scene(1400, 900, true);
  const struct {
    Rect rect;
    std::vector<std::string> coordinates;  // no block: a rectangle that is too small
  } rows[] = {
      {{0, 0, 44, 400}, {}},  // a twentieth of the height is 45
      {{0, 0, 400, 44}, {}},
      {{0, 0, 45, 45}, {"(0 0 0.2727 0.4267)"}},
      {{-5, -7, 100, 100}, {"(0 0 0.2727 0.4267)"}},
      {{11, 13, 100, 100}, {"(0.0085 0.0156 0.2812 0.4422)"}},  // odd starts are raised
      {{1300, 850, 384, 384}, {"(0.9233 0.9444 1.196 1.3711)"}},
      {{600, 300, 385, 100}, {"(0.4261 0.3333 0.6989 0.76)", "(0.6989 0.3333 0.9716 0.76)"}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << row.rect.x << ", " << row.rect.y);
    scene.engine().m_rcFaceProcess[0] = {row.rect.x, row.rect.y, row.rect.width, row.rect.height,
                                         0};
    scene.expect({"CopyMemYUVfromSrcTextureLarge",
                  [](Engine& e, unsigned char* luma, unsigned char* chroma) {
                    return e.CopyMemYUVfromSrcTextureLarge(luma, chroma, 0, 1);
                  },
                  [&](const Engine& e) {
                    if (row.coordinates.empty()) return Script{};
                    Script script = EngineDebug("[CopyMemYUVfromSrcTextureLarge]process block");
                    for (const std::string& coordinates : row.coordinates) {
                      Pass pass = WholePass(e, "HSI2YUV", "work1", "input");
                      pass.quad.coordinates = coordinates;
                      script += Drawn(pass, {}) + Packed(e, "input") + Finish();
                    }
                    return script;
                  }});
  }
}

TEST(CaptureBlocks, AreDrawnOneByOne) {
  CaptureEngine scene(320, 240, true);
  scene.expect(
      {"DrawColorConvertYUV2HSI",
       [](Engine& e, unsigned char*, unsigned char*) { return e.DrawColorConvertYUV2HSI(); },
       [](const Engine& e) { return Drawn(WholePass(e, "YUV2HSI", "input", "work0"), {}); }});
  for (const bool previous : {false, true}) {
    scene.expect({"DrawFaceWhiteLarge",
                  [previous](Engine& e, unsigned char*, unsigned char*) {
                    return e.DrawFaceWhiteLarge(previous);
                  },
                  [previous](const Engine& e) {
                    return WhitePass(previous,
                                     UniformsOf(*e.m_pProgFaceWhitening, "FaceWhiteningLarge"));
                  }});
  }
  scene.expect({"BlockCopyYUV",
                [](Engine& e, unsigned char* luma, unsigned char* chroma) {
                  return e.BlockCopyYUV(luma, chroma, 320, 0, 0, 0, 320, 240);
                },
                [](const Engine&) { return Script{}; }});
  scene.expect({"BlockCopyYUV without luma",
                [](Engine& e, unsigned char*, unsigned char*) {
                  return e.BlockCopyYUV(nullptr, reinterpret_cast<unsigned char*>(uintptr_t{77}),
                                        320, 0, 0, 0, 320, 240);
                },
                [](const Engine&) {
                  return EngineError("[BlockCopyYUV] pDstYStart (0) or pDstUVStart (77) is NULL\n");
                },
                0});
}

// ---- Slimming -----------------------------------------------------------------------------------

/// A block of the warp, by the capture's shape.
Script SlimmedBlock(const Engine& e, const Block& block, int run,
                    const reference::WarpMembers& warp) {
  Uniforms uniforms = UniformsOf(warp);
  uniforms.block_scale =
      Numbers({Ratio(e.m_nSrcWidth, e.m_nFullWidth), Ratio(e.m_nSrcHeight, e.m_nFullHeight)});
  uniforms.block_shift = Numbers({warp.controller[0] - Ratio(block.x, e.m_nFullWidth),
                                  warp.controller[1] - Ratio(block.y, e.m_nFullHeight)});
  Pass pass = WholePass(e, "CheekSlimmer", "", "work0");
  pass.kind = e.m_bColorCvtMode ? "CheekSlimmerLargeHsi" : "CheekSlimmerLarge";
  pass.inputs = e.m_bColorCvtMode ? std::vector<std::string>{"work1"}
                                  : std::vector<std::string>{"Y-plane", "CbCr-plane"};
  return EngineDebug("[LumoraLarge Cheek Slimmer]:current run %d", run) +
         EngineDebug("[LumoraLarge Cheek Slimmer Output: %d %d size=%d %d", block.x, block.y,
                     block.width, block.height) +
         Drawn(pass, uniforms) + Packed(e, "work0") + Finish();
}

struct SlimFace {
  FaceRecord record;
  Rect rect;
  std::vector<Block> blocks;
};

void ExpectSlimmed(CaptureEngine* scene, const std::vector<SlimFace>& faces) {
  std::vector<FACE_INFO_t> records;
  for (const SlimFace& face : faces) records.push_back(face.record.as<FACE_INFO_t>());
  scene->expect(
      {"FaceProcessLarge",
       [&](Engine& e, unsigned char* luma, unsigned char* chroma) {
         return e.FaceProcessLarge(luma, chroma, e.m_nFullWidth, e.m_nFullHeight, 0, records.data(),
                                   static_cast<int>(records.size()), 6);
       },
       [&](const Engine& e) {
         reference::WarpMembers warp;
         Script script;
         for (const auto& [record, rect, blocks] : faces) {
           script += SlimmingMeasured(e, record, 6, true, &warp);
           if (e.m_bColorCvtMode && blocks.empty()) continue;  // too small
           script +=
               EngineDebug(
                   "[LumoraLarge CheekSlimmer %s]: Process_Rect: X: %d, Y: %d, Width: %d, "
                   "Height: %d",
                   e.m_bColorCvtMode ? "HSI" : "YUV", rect.x, rect.y, rect.width, rect.height) +
               EngineDebug("[LumoraLarge]process block");
           int run = 0;
           for (const Block& block : blocks) script += SlimmedBlock(e, block, run++, warp);
         }
         return script;
       }});
}

TEST(SlimmingCaptures, OfPlanesWalkWholeBlocksAroundEachFace) {
  CaptureEngine scene(1400, 900, false);
  ExpectSlimmed(
      &scene,
      {{SlimmingFace(701, 401, 100, 80),
        {317, 17, 768, 768},
        {{318, 18, 384, 384}, {702, 18, 384, 384}, {318, 402, 384, 384}, {702, 402, 384, 384}}},
       // Columns go on to the padded width, rows end with the frame.
       {SlimmingFace(1390, 880, 100, 80),
        {1006, 496, 768, 768},
        {{1006, 496, 384, 384}, {1390, 496, 10, 384}, {1006, 880, 384, 20}, {1390, 880, 10, 20}}},
       // Without valid distances the warp stays; the blocks come all the same.
       {FaceRecord(SlimmingFace(40, 30, 90, 300)).set(FaceRecord::kDistValid, 0),
        {-344, -354, 768, 768},
        {{0, 0, 384, 384}, {384, 0, 384, 384}, {0, 384, 384, 384}, {384, 384, 384, 384}}}});
}

TEST(SlimmingCaptures, ThatFitAreOneBlock) {
  CaptureEngine scene(320, 240, false);
  ExpectSlimmed(&scene,
                {{SlimmingFace(160, 110, 60, 90, 45), {-160, -130, 640, 480}, {{0, 0, 320, 240}}}});
}

TEST(SlimmingCaptures, OfAStoreWalkTheRectanglesOfWhitening) {
  CaptureEngine scene(1400, 900, true);
  Engine& engine = scene.engine();
  auto program = std::make_unique<GLProgCheekSlimmerLarge_HSI>();
  ASSERT_TRUE(program->Load());
  engine.m_pProgCheekSlimmer = program.release();
  engine.m_rcFaceProcess[0] = {501, 301, 400, 384, 0};
  engine.m_rcFaceProcess[1] = {100, 100, 44, 400, 0};
  engine.m_rcFaceProcess[2] = {-20, 700, 60, 500, 0};
  ExpectSlimmed(&scene,
                {{SlimmingFace(700, 500, 200, 180),
                  {501, 301, 400, 384},
                  {{502, 302, 384, 384}, {886, 302, 384, 384}}},
                 {SlimmingFace(120, 300, 200, 180), {}, {}},
                 {SlimmingFace(10, 800, 90, 70), {-20, 700, 60, 500}, {{0, 700, 384, 200}}}});
}

TEST(SlimmingCaptures, HaveNoBlocksToBringBackOutsideBlockMode) {
  CaptureEngine scene(320, 240, false);
  scene.expect({"CopyMemYUVfromSrcTextureLarge",
                [](Engine& e, unsigned char* luma, unsigned char* chroma) {
                  return e.CopyMemYUVfromSrcTextureLarge(luma, chroma, 0, 1);
                },
                [](const Engine&) { return Script{}; }, 0});
}

}  // namespace
}  // namespace lumora::test
