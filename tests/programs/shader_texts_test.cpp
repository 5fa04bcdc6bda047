// SPDX-License-Identifier: Apache-2.0
// The shader texts that the build composes, against whole texts. Blanks and line ends carry no
// meaning; everything else does, the order of operations included.
#include <gtest/gtest.h>

#include <cctype>
#include <string>

#include "lumora/programs/shader_texts.h"

namespace lumora::test {
namespace {

std::string WithoutBlanks(const std::string& text) {
  std::string kept;
  for (const char c : text) {
    if (std::isspace(static_cast<unsigned char>(c)) == 0) kept += c;
  }
  return kept;
}

testing::AssertionResult SameText(const std::string& expected, const std::string& actual) {
  const std::string a = WithoutBlanks(expected);
  const std::string b = WithoutBlanks(actual);
  if (a == b) return testing::AssertionSuccess();
  size_t at = 0;
  while (at < a.size() && at < b.size() && a[at] == b[at]) ++at;
  const size_t from = at < 30 ? 0 : at - 30;
  return testing::AssertionFailure() << "expected ..." << a.substr(from, 90) << "...\n  actual ..."
                                     << b.substr(from, 90) << "...";
}

// Texts that several programs have in common.
const std::string kToHsi = R"(
  max_c = max( RGB.r, max(RGB.g, RGB.b));
  min_c = min(RGB.r, min(RGB.g, RGB.b));
  HSI.xy = vec2(0.0);
  HSI.z = max_c;
  delta = max_c - min_c;
  if (delta != 0.0) {
    HSI.y = delta / HSI.z;
    delRGB = (HSI.zzz - RGB)/vec3(delta);
    if( RGB.x == HSI.z) HSI.x = delRGB.z - delRGB.y;
    else if(RGB.y == HSI.z) HSI.x = 2.0 + delRGB.x - delRGB.z;
    else HSI.x = 4.0 + delRGB.y - delRGB.x;
    HSI.x /= 6.0;
    HSI.x = HSI.x + (1.0 - step(0.0,  HSI.x));
  }
  gl_FragColor = vec4(HSI.xyz, 0.0);
})";

const std::string kToYuv = R"(
  RGB.r = abs(HSI.r * 6.0 - 3.0) - 1.0;
  RGB.g = 2.0 - abs(HSI.r * 6.0 - 2.0);
  RGB.b= 2.0 - abs(HSI.r * 6.0 - 4.0);
  RGB = clamp(RGB, 0.0, 1.0);
  TmpColor = vec4(((RGB - 1.0) * HSI.g + 1.0) * HSI.b, 1.0);
  YUV.r = dot(vec4(0.299, 0.587, 0.114, 0.0),TmpColor);
  YUV.b = dot(vec4(-0.168727,-0.33126147,0.5, 0.5),TmpColor);
  YUV.g = dot(vec4(0.5,-0.4186829,-0.0813089, 0.5),TmpColor);
  gl_FragColor = vec4(YUV,1.0);
})";

const std::string kWarpUniforms = R"(
uniform vec4 g_fController;
uniform float g_fAspectRatio;
uniform vec3 g_fvAngleLimiter;
uniform float g_fEdgeFix;
varying vec2 v_texCoord;)";

const std::string kWarpLocals = R"(
void main() {
  vec2 sftCoord, twistCoord, sftCoord2, heartCoord;
  float dist, scaledLength, dist2, ratio, closeCoord;)";

const std::string kWarp = R"(
  dist = length( sftCoord*vec2(1.0,g_fAspectRatio) );
  twistCoord =  sftCoord * vec2( 1.0 + g_fController.z * dist);
  scaledLength = g_fvAngleLimiter.y*g_fController.w;
  vec2 secCenter = scaledLength*vec2(cos(g_fvAngleLimiter.x),sin(g_fvAngleLimiter.x) );
  sftCoord2 = sftCoord - secCenter;
  dist2 = length(sftCoord2*vec2(1.0,g_fAspectRatio))/g_fvAngleLimiter.z;
  ratio = clamp( (dist/g_fController.w)/clamp(dist2/scaledLength,0.0,1.0) ,0.0,1.0);
  closeCoord =  min(min( min(v_texCoord.x,1.0-v_texCoord.x), v_texCoord.y),1.0-v_texCoord.y );
  ratio= clamp(ratio*(2.0-pow(closeCoord,g_fEdgeFix)) ,0.0,1.0);
  heartCoord = mix(twistCoord , sftCoord, ratio ) +  g_fController.xy;)";

const std::string kTwoSamplers = R"(
precision highp float;
uniform sampler2D s_texture0;
uniform sampler2D s_texture1;)";
const std::string kBlockUniforms = "uniform vec2 u_shift; uniform vec2 u_scale;";
const std::string kBlockShift = "sftCoord = (v_texCoord*u_scale - u_shift);";

const std::string kSlimmer = R"(
precision highp float;
uniform sampler2D s_texture0;)" +
                             kWarpUniforms + kWarpLocals + R"(
  sftCoord = (v_texCoord - g_fController.xy) ;)" +
                             kWarp +
                             R"(
  gl_FragColor = texture2D(s_texture0, heartCoord);
})";

const std::string kSlimmerLarge = kTwoSamplers + kWarpUniforms + kBlockUniforms + kWarpLocals +
                                  "vec4 cY, cCrCb;" + kBlockShift + kWarp + R"(
  cY = texture2D( s_texture0, heartCoord);
  cCrCb = texture2D(s_texture1, heartCoord);
  gl_FragColor =	vec4(cY.r,cCrCb.r,cCrCb.a,1.0);
})";

const std::string kSlimmerLargeHsi = kTwoSamplers + kWarpUniforms + kBlockUniforms + kWarpLocals +
                                     "vec4 HSI, TmpColor; vec3 RGB, YUV;" + kBlockShift + kWarp +
                                     "HSI = texture2D( s_texture0, heartCoord);" + kToYuv;

const std::string kRectification = R"(
precision highp float;
uniform sampler2D s_texture0;
uniform vec2 g_quad0;
uniform vec2 g_quad1;
uniform vec2 g_quad2;
uniform vec2 g_quad3;
varying vec2 v_texCoord;
void main() {
  vec2 sampleCoordH1, sampleCoordH2, sampleCoord;
  sampleCoordH1 = mix(g_quad0,g_quad2, v_texCoord.yy);
  sampleCoordH2 = mix(g_quad1,g_quad3, v_texCoord.yy);
  sampleCoord =	mix(sampleCoordH1,sampleCoordH2, v_texCoord.xx);
  gl_FragColor = texture2D( s_texture0, sampleCoord);
})";

const std::string kEllipses = R"(
uniform mat3 g_fEllipseController;
uniform vec3 g_fEffectController;
uniform mat3 g_fEllipseController_1;
uniform mat3 g_fEllipseController_2;
uniform mat3 g_fEllipseController_3;
uniform mat3 g_fEllipseController_4;
uniform mat3 g_fEllipseController_5;
uniform mat3 g_fEllipseController_6;
varying vec2 v_texCoord;)";

const std::string kWhiten = R"(
  dist_pixel = length((g_fEllipseController*vec3(ScaledCoord, 1.0)).xy);
  sub_dist_eye.x = length((g_fEllipseController_2*vec3(ScaledCoord, 1.0)).xy);
  sub_dist_eye.y = length((g_fEllipseController_3*vec3(ScaledCoord, 1.0)).xy);
  sub_dist_eye.z = length((g_fEllipseController_5*vec3(ScaledCoord, 1.0)).xy);
  sub_dist_eye.w = length((g_fEllipseController_6*vec3(ScaledCoord, 1.0)).xy);
  sub_dist_pixel.x = min(sub_dist_eye.x, sub_dist_eye.y);
  sub_dist_pixel.y = step(1.0, sub_dist_pixel.x)*min(sub_dist_eye.z, sub_dist_eye.w);
  is_small_ellipse = step(1.0, sub_dist_pixel.x)*step(1.0, sub_dist_pixel.y);
  sub_dist_pixel.z = is_small_ellipse*length((g_fEllipseController_1*vec3(ScaledCoord, 1.0)).xy);
  sub_dist_pixel.w = length((g_fEllipseController_4*vec3(ScaledCoord, 1.0)).xy);
  ellipse_chooser = vec4(1.0) - step(1.0, sub_dist_pixel);
  TmpColor = HSI_color;
  ratio =  clamp(dist_pixel, 0.0, 1.0);
  if(ratio<1.0){
    TmpColor.g =HSI_color.g + g_fEffectController.y;
    TmpColor.b = (-log((1.0/HSI_color.b) -1.0) / 0.85) + g_fEffectController.x;
    TmpColor.b = 1.0/(1.0+exp(-0.85*TmpColor.b));
    HSI_color = mix(TmpColor, HSI_color, ratio );
    HSI_color.a =  1.0 -dot(vec4(0.2, 0.3, 0.4, 0.6), ellipse_chooser);
  })";

TEST(VertexShaders, PassTheQuadOn) {
  EXPECT_TRUE(SameText(R"(
attribute vec4 a_vertexCoord;
attribute vec2 a_textureCoord;
varying vec2 v_textureCoord;
void main() {
  gl_Position = a_vertexCoord;
  v_textureCoord = a_textureCoord;
  return;
})",
                       shaders::kPassThroughVert));
  EXPECT_TRUE(SameText(R"(
attribute vec4 a_vertexCoord;
attribute vec2 a_textureCoord;
varying vec2 v_texCoord;
void main() {
  gl_Position = a_vertexCoord;
  v_texCoord = a_textureCoord;
})",
                       shaders::kPassThroughEffectsVert));
}

TEST(ColourShaders, YuvToRgb) {
  EXPECT_TRUE(SameText(R"(
precision mediump float;
uniform sampler2D s_texture0;
uniform mat4 u_mat_yuv2rgb;
varying vec2 v_textureCoord;
void main() { gl_FragColor = u_mat_yuv2rgb * texture2D(s_texture0, v_textureCoord); })",
                       shaders::kYuvToRgbFrag));
}

TEST(ColourShaders, RgbToHsi) {
  EXPECT_TRUE(SameText(R"(
precision mediump float;
uniform sampler2D s_texture0;
varying vec2 v_textureCoord;
void main() {
  vec3 RGB, HSI, delRGB;
  float max_c, min_c, delta;
  RGB = texture2D(s_texture0, v_textureCoord).rgb;)" +
                           kToHsi,
                       shaders::kRgbToHsiFrag));
}

TEST(ColourShaders, YuvToHsi) {
  EXPECT_TRUE(SameText(R"(
precision mediump float;
uniform sampler2D s_texture0;
uniform mat4 u_mat_yuv2rgb;
varying vec2 v_textureCoord;
void main() {
  vec3 RGB, HSI, delRGB;
  float max_c, min_c, delta;
  RGB = (u_mat_yuv2rgb *  texture2D(s_texture0, v_textureCoord)).rgb;)" +
                           kToHsi,
                       shaders::kYuvToHsiFrag));
}

TEST(ColourShaders, HsiToYuv) {
  EXPECT_TRUE(SameText(R"(
precision mediump float;
uniform sampler2D s_texture0;
varying vec2 v_textureCoord;
void main() {
  vec4 HSI, TmpColor;
  vec3 RGB, YUV;
  HSI = texture2D(s_texture0, v_textureCoord);)" +
                           kToYuv,
                       shaders::kHsiToYuvFrag));
}

TEST(PackingShaders, Luma) {
  EXPECT_TRUE(SameText(R"(
precision mediump float;
uniform sampler2D s_texture0;
uniform vec2 u_shift[4];
varying vec2 v_textureCoord;
void main() {
  float Y1, Y2, Y3, Y4;
  Y1 = texture2D(s_texture0, v_textureCoord + u_shift[0]).r;
  Y2 = texture2D(s_texture0, v_textureCoord + u_shift[1]).r;
  Y3 = texture2D(s_texture0, v_textureCoord + u_shift[2]).r;
  Y4 = texture2D(s_texture0, v_textureCoord + u_shift[3]).r;
  gl_FragColor = vec4 (Y1,Y2,Y3,Y4);
})",
                       shaders::kRgbToYFrag));
}

TEST(PackingShaders, Chroma) {
  EXPECT_TRUE(SameText(R"(
precision mediump float;
uniform sampler2D s_texture0;
uniform vec2 u_shift[2];
varying vec2 v_textureCoord;
void main() {
  vec4 color1, color2;
  float u1, u2, v1, v2;
  color1 = texture2D( s_texture0, v_textureCoord + u_shift[0]);
  color2 = texture2D( s_texture0, v_textureCoord + u_shift[1]);
  color1.a = 1.0;
  color2.a = 1.0;
  u1 = color1.g;
  u2 = color2.g;
  v1 = color1.b;
  v2 = color2.b;
  gl_FragColor = vec4 (u1,v1,u2,v2);
})",
                       shaders::kRgbToUvFrag));
}

TEST(SlimmerShaders, WarpTheirInput) {
  EXPECT_TRUE(SameText(kSlimmer, shaders::kCheekSlimmerFrag));
  EXPECT_TRUE(SameText(kSlimmerLarge, shaders::kCheekSlimmerLargeFrag));
  EXPECT_TRUE(SameText(kSlimmerLargeHsi, shaders::kCheekSlimmerLargeHsiFrag));
}

// A text without its last closing brace, and then `end` and the brace.
std::string EndingWith(const std::string& text, const std::string& end) {
  return text.substr(0, text.rfind('}')) + end + "}";
}

TEST(SlimmerShaders, MarkTheRimInOneLastStatement) {
  const std::string mark = "if(ratio>0.95 && ratio<1.0) gl_FragColor = vec4(1.0, 0.0, 0.0, 1.0);";
  EXPECT_TRUE(SameText(EndingWith(kSlimmer, mark), shaders::kCheekSlimmerOutlineFrag));
  EXPECT_TRUE(SameText(EndingWith(kSlimmerLarge, mark), shaders::kCheekSlimmerLargeOutlineFrag));
  EXPECT_TRUE(
      SameText(EndingWith(kSlimmerLargeHsi, mark), shaders::kCheekSlimmerLargeHsiOutlineFrag));
}

TEST(WhiteningShaders, WholeFrame) {
  EXPECT_TRUE(SameText(R"(
precision highp float;
uniform sampler2D s_texture0;)" +
                           kEllipses + R"(
void main() {
  vec4 HSI_color, TmpColor, sub_dist_pixel, ellipse_chooser,  sub_dist_eye;
  vec2 ScaledCoord;
  float dist_pixel, ratio, is_small_ellipse;
  HSI_color = texture2D(s_texture0, v_texCoord);
  ScaledCoord = v_texCoord;)" +
                           kWhiten + R"(
  gl_FragColor = HSI_color;
})",
                       shaders::kFaceWhiteningFrag));
}

TEST(WhiteningShaders, Tile) {
  EXPECT_TRUE(SameText(kTwoSamplers + "uniform vec4 g_fScaleController;" + kEllipses + R"(
void main() {
  vec4 HSI_color, TmpColor, sub_dist_pixel, ellipse_chooser,  sub_dist_eye, HSI_color_prev;
  vec2 ScaledCoord;
  float dist_pixel, ratio, is_small_ellipse, max_prev_HSI;
  HSI_color = texture2D(s_texture0, v_texCoord);
  HSI_color_prev =  texture2D(s_texture1, v_texCoord);
  ScaledCoord = g_fScaleController.zw + g_fScaleController.xy * v_texCoord;)" +
                           kWhiten +
                           R"(
  if(HSI_color_prev.a != 0.0) HSI_color = HSI_color_prev;
  gl_FragColor = HSI_color;
})",
                       shaders::kFaceWhiteningLargeFrag));
}

TEST(RectificationShaders, MixTheCorners) {
  EXPECT_TRUE(SameText(kRectification, shaders::kRectificationFrag));
}

TEST(RectificationShaders, DrawTheDotInTheirLastStatements) {
  std::string text = kRectification;
  text.insert(text.find("void main"), "uniform float\tg_degree;\n");
  EXPECT_TRUE(SameText(EndingWith(text, R"(
  vec2 debugcenterCoord;
  float dist_center;
  debugcenterCoord = vec2( 0.5 - (2.0 - abs(g_degree))*0.4 ,  0.5 - 0.4*sign(g_degree) );
  dist_center = distance(v_texCoord, debugcenterCoord);
  if(dist_center < 0.03) gl_FragColor = vec4(1.0, 0.0, 0.0, 1.0);)"),
                       shaders::kRectificationOutlineFrag));
}

TEST(RectificationShaders, BendByThePolynomial) {
  EXPECT_TRUE(SameText(R"(
precision highp float;
uniform sampler2D s_texture0;
uniform vec4 g_kval0;
varying vec2 v_texCoord;
void main() {
  vec2 cen_coord, old_coord, ref_coord;
  float scale, r;
  cen_coord = vec2(0.5);
  scale = sqrt(cen_coord.x * cen_coord.x + cen_coord.y * cen_coord.y);
  old_coord = ((cen_coord - v_texCoord) / vec2(scale));
  r = old_coord.x*old_coord.x+old_coord.y*old_coord.y;
  ref_coord = old_coord * vec2(g_kval0.x + (g_kval0.y + (g_kval0.z + g_kval0.w * r) * r) * r);
  ref_coord = (cen_coord - ref_coord * vec2(scale));
  gl_FragColor = texture2D( s_texture0, ref_coord);
})",
                       shaders::kRadialDistortionFrag));
}

}  // namespace
}  // namespace lumora::test
