// SPDX-License-Identifier: Apache-2.0
// Slimmed captures: what each operation prints and draws, face by face and block by block.
#include <gtest/gtest.h>

#include <memory>

#include "proofs/conformance/capture_engine.h"
#include "proofs/conformance/gl_text.h"
#include "support/faces.h"

namespace lumora::test {
namespace {

using Engine = GPUBeautyFace;
using reference::SlimmingFace;

struct Block {
  int x, y, width, height;
};

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
