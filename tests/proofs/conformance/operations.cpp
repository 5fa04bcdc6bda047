// SPDX-License-Identifier: Apache-2.0
#include "proofs/conformance/operations.h"

#include "proofs/conformance/gl_text.h"

namespace lumora::test {

void ExpectTranscript(const Operation& operation, GPUBeautyFace& engine, unsigned char* luma,
                      unsigned char* chroma) {
  SCOPED_TRACE(operation.name);
  const Recording recording(Checks::Passes);
  EXPECT_EQ(operation.result, operation.run(engine, luma, chroma));
  EXPECT_TRUE(Same(operation.expected(engine), recording.lines(NamesOf(engine))));
}

Pass WholePass(const GPUBeautyFace& engine, const std::string& program, const std::string& source,
               const std::string& target) {
  return {program, program, {source}, {target, engine.m_nAlignedWidth, engine.m_nAlignedHeight}};
}

Script SlimmingMeasured(const GPUBeautyFace& engine, const reference::FaceRecord& face, int level,
                        bool capture, reference::WarpMembers* warp) {
  const int width = capture ? engine.m_nFullWidth : engine.m_nSrcWidth;
  const int height = capture ? engine.m_nFullHeight : engine.m_nSrcHeight;
  reference::WarpRequest request = reference::RequestOf(face, level, width, height, capture);
  request.block_mode = capture && engine.m_bColorCvtMode;
  reference::SetParameters(request, warp);
  warp->aspect_ratio = static_cast<float>(height) / static_cast<float>(width);
  const float quotient = static_cast<float>(request.chin_dist) / static_cast<float>(request.dist);
  return EngineInfo("dist = %d, chin_dist = %d, chin_dist / dist = %f", request.dist,
                    request.chin_dist, static_cast<double>(quotient)) +
         EngineInfo("dist_level = %.2f, dist_level_ratio = %.2f",
                    static_cast<double>(reference::WarpStrength(request)),
                    static_cast<double>(request.ratio)) +
         EngineInfo(
             "loc_x = %d, loc_y = %d, dist = %d, roll =%d, chin_dist = %d, Beauty_Level = %d, "
             "shapetype = %d",
             request.loc_x, request.loc_y, request.dist, request.roll, request.chin_dist, level,
             request.shape_type);
}

Uniforms UniformsOf(const reference::WarpMembers& warp) {
  Uniforms uniforms;
  uniforms.controller = Numbers(warp.controller, 4);
  uniforms.aspect = Numbers({warp.aspect_ratio});
  uniforms.limiter = Numbers(warp.angle_limiter, 3);
  return uniforms;
}

Script WhiteningMeasured(int effect) {
  Script script = EngineDebug("GPU Face Whitening: fDiffS: 0.000000, fDiffI: 0.000000");
  for (int ellipse = 0; ellipse < 7; ++ellipse) {
    script += EngineInfo("scaleR = %s", ellipse == 0 && effect == 15 ? "1.10" : "1.00");
  }
  return script + EngineDebug("GPU Face Whitening Type : %d", effect) +
         EngineDebug("GPU Face Whitening Paramters : fDiffS: 0.000000, fDiffI: 0.000000");
}

Uniforms NothingShifted(const GPUBeautyFace& engine) {
  Uniforms uniforms;
  uniforms.effect = Numbers(
      {0, 0, static_cast<float>(engine.m_nFullHeight) / static_cast<float>(engine.m_nFullWidth)});
  return uniforms;
}

}  // namespace lumora::test
