// SPDX-License-Identifier: Apache-2.0
// Whitened captures: what each operation prints and draws, face by face and block by block.
#include <gtest/gtest.h>

#include "proofs/conformance/capture_engine.h"
#include "proofs/conformance/gl_text.h"
#include "support/faces.h"

namespace lumora::test {
namespace {

using Engine = GPUBeautyFace;

struct Place {
  int x, y;
};

int Row(const Engine& engine) {
  return (engine.m_nFullWidth + 31) / 32 * 32;
}

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

}  // namespace
}  // namespace lumora::test
