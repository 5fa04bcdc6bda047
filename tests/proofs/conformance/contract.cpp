// SPDX-License-Identifier: Apache-2.0
#include "proofs/conformance/contract.h"

#include <cstdarg>
#include <cstdio>

#include "proofs/conformance/gl_text.h"

namespace lumora::test {
namespace {

Script EngineLine(char level, const char* format, va_list arguments) {
  char text[512];
  std::vsnprintf(text, sizeof(text), format, arguments);
  return {std::string(1, level) + "/Lumora " + text};
}

Script Parameter(const std::string& name, const std::string& value) {
  return {"glTexParameteri TEXTURE_2D " + name + " " + value};
}

/// One upload.
Script Set(const std::string& function, const std::string& uniform, const std::string& value) {
  return {function + " " + uniform + " " + value};
}

constexpr char kMatrix[] =
    "glUniformMatrix4fv u_mat_yuv2rgb 1 0 1 1 1 0 1.402 -0.714 0 0 0 -0.344 1.772 0 -0.701 0.529 "
    "-0.886 1";

/// The uploads of the capture's warps, each checked; the order is not that of the preview's.
Script CaptureWarp(const Uniforms& u) {
  const std::string label = "SetFaceDistShader - ";
  return Set("glUniform4f", "g_fController", u.controller) + Check(label + "glUniform4f") +
         Set("glUniform1f", "g_fAspectRatio", u.aspect) + Check(label + "glUniform1f") +
         Set("glUniform3f", "g_fvAngleLimiter", u.limiter) + Check(label + "glUniform3f") +
         Set("glUniform2f", "u_scale", u.block_scale) + Check(label + "glUniform2f") +
         Set("glUniform2f", "u_shift", u.block_shift) + Check(label + "glUniform2f") +
         Set("glUniform1f", "g_fEdgeFix", "0") + Check(label + "glUniform1f");
}

Script Whitening(const Uniforms& u) {
  Script script = {"glUniformMatrix3fv g_fEllipseController 1 0"};
  script += Set("glUniform3f", "g_fEffectController", u.effect);
  for (int i = 1; i < 7; ++i) {
    script += Script{"glUniformMatrix3fv g_fEllipseController_" + std::to_string(i) + " 1 0"};
  }
  return script;
}

Script Quadrilateral(const Uniforms& u) {
  Script script;
  for (int i = 0; i < 4; ++i) {
    script += Set("glUniform2f", "g_quad" + std::to_string(i), u.quad[i]) +
              Check("SetRectificationShader - glUniform2f");
  }
  if (u.degree.empty()) return script;
  return script + Set("glUniform1f", "g_degree", u.degree) +
         Check("SetRectificationShader - glUniform1f");
}

/// What a program uploads behind its inputs.
Script Uploads(const std::string& kind, const Uniforms& u) {
  if (kind == "YUV2RGB" || kind == "YUV2HSI") return {kMatrix};
  if (kind == "RGBtoY") return Set("glUniform2fv", "u_shift 4", u.shift);
  if (kind == "RGBtoUV") return Set("glUniform2fv", "u_shift 2", u.shift);
  if (kind == "CheekSlimmer") {
    return Set("glUniform4f", "g_fController", u.controller) +
           Set("glUniform1f", "g_fAspectRatio", u.aspect) +
           Set("glUniform3f", "g_fvAngleLimiter", u.limiter) +
           Set("glUniform1f", "g_fEdgeFix", "0.2");
  }
  if (kind == "CheekSlimmerLarge" || kind == "CheekSlimmerLargeHsi") return CaptureWarp(u);
  if (kind == "FaceWhitening") return Whitening(u);
  if (kind == "FaceWhiteningLarge") {
    return Whitening(u) + Set("glUniform4f", "g_fScaleController", u.tile);
  }
  if (kind == "Rectification") return Quadrilateral(u);
  if (kind == "RadialDistortion") {
    return Set("glUniform4f", "g_kval0", u.lens) + Check("SetRectificationShader - glUniform4f");
  }
  return {};  // RGB2HSI, HSI2YUV
}

/// The check behind each binding of an input; "" for programs without.
std::string BindingLabel(const std::string& kind) {
  if (kind.compare(0, 17, "CheekSlimmerLarge") == 0) return "SetFaceDistShader - glBindTexture";
  if (kind == "Rectification" || kind == "RadialDistortion") {
    return "SetRectificationShader - glBindTexture";
  }
  return "";
}

}  // namespace

Script Check(const std::string& label) {
  return Told(Info("EGLImageTest", "after %s() glError (0x500)\n", label.c_str()));
}

Script EngineInfo(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const Script script = EngineLine('I', format, arguments);
  va_end(arguments);
  return script;
}
Script EngineDebug(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const Script script = EngineLine('D', format, arguments);
  va_end(arguments);
  return script;
}
Script EngineError(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const Script script = EngineLine('E', format, arguments);
  va_end(arguments);
  return script;
}

Script Finish() {
  return {"glFlush", "glFinish"};
}

Uniforms UniformsOf(const GLProgram& program, const std::string& name) {
  Uniforms u;
  if (name == "RGBtoY") u.shift = Numbers(static_cast<const GLProgRGBtoY&>(program).m_fShift, 8);
  if (name == "RGBtoUV") {
    u.shift = Numbers(static_cast<const GLProgRGBtoUV&>(program).m_fShift, 4);
  }
  if (name.compare(0, 12, "CheekSlimmer") == 0) {
    const auto& warp = static_cast<const GLProgWarp&>(program);
    u.controller = Numbers(warp.m_fvController, 4);
    u.aspect = Numbers({warp.m_fAspectRatio});
    u.limiter = Numbers(warp.m_fvAngleLimiter, 3);
    u.block_scale = Numbers(warp.m_fvScale, 2);
    u.block_shift = Numbers(warp.m_fvShift, 2);
  }
  if (name.compare(0, 13, "FaceWhitening") == 0) {
    const auto& white = static_cast<const GLProgWhiteningBase&>(program);
    u.effect = Numbers({white.m_fDiffI, white.m_fDiffS, white.m_fAspectRatio});
  }
  if (name == "FaceWhiteningLarge") {
    u.tile = Numbers(static_cast<const GLProgFaceWhiteningLarge&>(program).m_fScaleController, 4);
  }
  if (name == "Rectification") {
    const auto& rectification = static_cast<const GLProgRectificaton&>(program);
    for (int i = 0; i < 4; ++i) u.quad[i] = Numbers(rectification.m_fvQuad[i], 2);
    if (rectification.m_bShowMask) u.degree = Numbers({rectification.m_fDegree});
  }
  if (name == "RadialDistortion") {
    u.lens = Numbers(static_cast<const GLProgRadialDistortion&>(program).m_fvKval, 4);
  }
  return u;
}

Script Use(const std::string& name, const std::string& kind, const std::vector<std::string>& inputs,
           const Uniforms& uniforms) {
  Script script = {"glIsProgram " + name, "glUseProgram " + name};
  const std::string label = BindingLabel(kind);
  for (size_t i = 0; i < inputs.size(); ++i) {
    const std::string unit = std::to_string(i);
    script += Script{"glActiveTexture TEXTURE" + unit, "glUniform1i s_texture" + unit + " " + unit,
                     "glBindTexture TEXTURE_2D " + inputs[i]};
    if (!label.empty()) script += Check(label);
  }
  return script + Uploads(kind, uniforms);
}

Script Draw(const Quad& quad) {
  return {"glVertexAttribPointer a_vertexCoord 4 FLOAT 0 0",
          "glEnableVertexAttribArray a_vertexCoord",
          "glVertexAttribPointer a_textureCoord 2 FLOAT 0 0",
          "glEnableVertexAttribArray a_textureCoord",
          std::string("glDrawElements TRIANGLES 0,1,2,0,2,3 UNSIGNED_SHORT ") + quad.positions +
              " " + quad.coordinates};
}

Script Drawn(const Pass& pass, const Uniforms& uniforms) {
  Script script = {"glBindFramebuffer FRAMEBUFFER " + pass.target.framebuffer};
  if (pass.target.width > 0) {
    script += Script{"glViewport 0 0 " + std::to_string(pass.target.width) + " " +
                     std::to_string(pass.target.height)};
  }
  if (!pass.filter.empty()) {
    script += Parameter("TEXTURE_MIN_FILTER", pass.filter) + Check("glTexParameteri MIN- Y") +
              Parameter("TEXTURE_MAG_FILTER", pass.filter) + Check("glTexParameteri MAG- Y");
  }
  return script + Use(pass.program, pass.kind, pass.inputs, uniforms) + Draw(pass.quad);
}

Script PackedLuma(const android::GPUBeautyFace& engine, const std::string& source) {
  // Offsets from the middle of a packed texel; laid across they run along t, by the width as well.
  const bool across = engine.m_bRotate;
  std::vector<float> offsets;
  for (const float pixels : {-1.5f, -0.5f, 0.5f, 1.5f}) {
    const float offset = pixels / static_cast<float>(engine.m_nAlignedWidth);
    offsets.insert(offsets.end(), {across ? 0 : offset, across ? offset : 0});
  }
  Uniforms uniforms;
  uniforms.shift = Numbers(offsets.data(), 8);
  return Drawn({"RGBtoY",
                "RGBtoY",
                {source},
                {"luma", engine.m_nAlignedWidth / 4, engine.m_nAlignedHeight},
                "NEAREST",
                Quad{across ? "turned" : "upright"}},
               uniforms);
}

Script PackedChroma(const android::GPUBeautyFace& engine, const std::string& source) {
  const bool across = engine.m_bRotate;
  const float s = across ? 0 : 1 / static_cast<float>(engine.m_nAlignedWidth);
  const float t = across ? 1 / static_cast<float>(engine.m_nAlignedHeight) : 0;
  Uniforms uniforms;
  uniforms.shift = Numbers({-s, -t, s, t});
  return Drawn({"RGBtoUV",
                "RGBtoUV",
                {source},
                {"chroma", engine.m_nAlignedWidth / 4, engine.m_nAlignedHeight / 2},
                "NEAREST",
                Quad{across ? "turned" : "upright"}},
               uniforms);
}

Script Packed(const android::GPUBeautyFace& engine, const std::string& source) {
  return PackedLuma(engine, source) + PackedChroma(engine, source);
}

}  // namespace lumora::test
