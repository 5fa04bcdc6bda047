// SPDX-License-Identifier: Apache-2.0
#include "proofs/conformance/preview_operations.h"

#include "proofs/conformance/gl_text.h"
#include "support/faces.h"

namespace lumora::test {
namespace {

using Engine = GPUBeautyFace;
using Plane = unsigned char*;
using reference::SlimmingFace;

// ---- Single passes ------------------------------------------------------------------------------

Script ColourPass(const Engine& e, const char* program, const char* source, const char* target) {
  return Drawn(WholePass(e, program, source, target), {});
}

Operation PackingLuma(int source, const char* image) {
  return {"DrawRGBtoYY " + std::to_string(source),
          [source](Engine& e, Plane, Plane) { return e.DrawRGBtoYY(source); },
          [image](const Engine& e) { return PackedLuma(e, image); }};
}
Operation PackingChroma(int source, const char* image) {
  return {"DrawRGBtoUV " + std::to_string(source),
          [source](Engine& e, Plane, Plane) { return e.DrawRGBtoUV(source); },
          [image](const Engine& e) { return PackedChroma(e, image); }};
}

Operation Warp(int index, const char* source, const char* target) {
  return {"DrawFaceDist " + std::to_string(index),
          [index](Engine& e, Plane, Plane) { return e.DrawFaceDist(index); },
          [source, target](const Engine& e) {
            return Drawn(WholePass(e, "CheekSlimmer", source, target),
                         UniformsOf(*e.m_pProgCheekSlimmer, "CheekSlimmer"));
          }};
}

Operation White(int index, const char* source, const char* target) {
  return {"DrawFaceWhite " + std::to_string(index),
          [index](Engine& e, Plane, Plane) { return e.DrawFaceWhite(index); },
          [source, target](const Engine& e) {
            return Drawn(WholePass(e, "FaceWhitening", source, target),
                         UniformsOf(*e.m_pProgFaceWhitening, "FaceWhitening"));
          }};
}

// ---- Whole operations ---------------------------------------------------------------------------

const std::vector<FaceRecord> kFaces = {SlimmingFace(30, 20, 12, 10, 15, 0.75f),
                                        FaceRecord(),  // no face: keeps the warp before it
                                        SlimmingFace(40, 30, 9, 14, -30)};

// A record without a face is drawn with the warp of the one before.
Operation OneFace(int face, int warping) {
  return {"FaceProcess, face " + std::to_string(face),
          [face](Engine& e, Plane y, Plane uv) {
            return e.FaceProcess(y, uv, 5, kFaces[static_cast<size_t>(face)].as<FACE_INFO_t>(), 0);
          },
          [face, warping](const Engine& e) {
            reference::WarpMembers warp;
            SlimmingMeasured(e, kFaces[static_cast<size_t>(warping)], 5, false, &warp);
            const Script measured =
                SlimmingMeasured(e, kFaces[static_cast<size_t>(face)], 5, false, &warp);
            return EngineInfo("FaceProcess++") + measured +
                   Drawn(WholePass(e, "CheekSlimmer", "input", "work0"), UniformsOf(warp)) +
                   Packed(e, "work0") + Finish() + EngineInfo("FaceProcess--");
          }};
}

// The result of an even number of faces is read from work image 1, of none from the input image.
Operation SeveralFaces(int count) {
  return {"FaceProcessMultiface, " + std::to_string(count) + " faces",
          [count](Engine& e, Plane y, Plane uv) {
            std::vector<FACE_INFO_t> records = RecordsFrom(kFaces);
            return e.FaceProcessMultiface(y, uv, 5, records.data(), count, 0);
          },
          [count](const Engine& e) {
            reference::WarpMembers warp;
            Script script = EngineInfo("FaceProcess+");
            const char* const sources[] = {"input", "work0", "work1"};
            const char* const targets[] = {"work0", "work1", "work0"};
            for (int i = 0; i < count; ++i) {
              script += SlimmingMeasured(e, kFaces[static_cast<size_t>(i)], 5, false, &warp);
              script +=
                  Drawn(WholePass(e, "CheekSlimmer", sources[i], targets[i]), UniformsOf(warp));
            }
            return script + Packed(e, count == 0 ? "input" : targets[count - 1]) + Finish() +
                   EngineInfo("FaceProcess-");
          }};
}

Operation Whitening(int count, int effect) {
  return {"DoFaceWhitening, " + std::to_string(count) + " faces, effect " + std::to_string(effect),
          [count, effect](Engine& e, Plane, Plane) {
            std::vector<FACE_INFO_t> faces(3, PortraitFace(32, 22, 12).as<FACE_INFO_t>());
            return e.DoFaceWhitening(faces.data(), count, 0, 40,
                                     static_cast<BEAUTYSHOT_EFFECT_t>(effect));
          },
          [count, effect](const Engine& e) {
            Script script = EngineInfo("DoFaceWhitening+");
            const char* const images[] = {"work1", "work2", "work1", "work2"};
            for (int i = 0; i < count; ++i) {
              script +=
                  WhiteningMeasured(effect) +
                  Drawn(WholePass(e, "FaceWhitening", images[i], images[i + 1]), NothingShifted(e));
            }
            const int results[] = {3, 2, 1, 2};
            EXPECT_EQ(results[count], e.m_nResultIdx);
            return script + Finish() + EngineInfo("DoFaceWhitening-");
          }};
}

Operation BackToYuv(int result, const char* source) {
  return {std::string("ConvertHSItoYUV from ") + source,
          [result](Engine& e, Plane, Plane) {
            e.m_nResultIdx = result;
            return e.ConvertHSItoYUV();
          },
          [source](const Engine& e) {
            return EngineInfo("ConvertYUV+") + ColourPass(e, "HSI2YUV", source, "input") +
                   Finish() + EngineInfo("ConvertYUV-");
          }};
}

Operation Rectifying(int degree) {
  return {"Rectification " + std::to_string(degree),
          [degree](Engine& e, Plane y, Plane uv) { return e.Rectification(y, uv, degree, 0); },
          [degree](const Engine& e) {
            const float d = static_cast<float>(degree) / 100.0f;
            const float h = d / 2;
            Uniforms quad;
            if (degree >= 0) {
              quad.quad[0] = Numbers({d - h, d});
              quad.quad[1] = Numbers({1 - h, 0});
              quad.quad[2] = Numbers({d - h, 1 - d});
              quad.quad[3] = Numbers({1 - h, 1});
            } else {
              quad.quad[0] = Numbers({-h, 0});
              quad.quad[1] = Numbers({1 + d - h, -d});
              quad.quad[2] = Numbers({-h, 1});
              quad.quad[3] = Numbers({1 + d - h, 1 + d});
            }
            Pass pass = WholePass(e, "Rectification", "input", "work0");
            pass.filter = "LINEAR";
            return EngineInfo("FaceProcess++") + Drawn(pass, quad) + Packed(e, "work0") + Finish() +
                   EngineInfo("FaceProcess--");
          }};
}

Script RadialPass(const Engine& e) {
  Uniforms lens;
  lens.lens = "1.0045 -0.0214 0.0057 0.0325";
  Pass pass = WholePass(e, "RadialDistortion", "input", "work0");
  pass.filter = "LINEAR";
  pass.quad.coordinates = "(0.0107 0.0107 0.9893 0.9893)";
  return Drawn(pass, lens);
}

Script Nothing(const Engine&) {
  return {};
}

}  // namespace

std::vector<Operation> PreviewOperations() {
  return {
      {"LoadPreviewFrameBuffer",
       [](Engine& e, Plane y, Plane) { return e.LoadPreviewFrameBuffer(y); }, Nothing},
      {"MemcpyYUV", [](Engine& e, Plane y, Plane uv) { return e.MemcpyYUV(y, uv); }, Nothing},
      {"SetCropVertexCoord",
       [](Engine& e, Plane, Plane) {
         float corner[2];
         return e.SetCropVertexCoord(0, 1, corner);
       },
       Nothing},
      {"SetRectParameters", [](Engine& e, Plane, Plane) { return e.SetRectParameters(7); },
       Nothing},
      {"SetRadialRectParameters",
       [](Engine& e, Plane, Plane) { return e.SetRadialRectParameters(1); }, Nothing},
      {"clean_buffer of a stranger",
       [](Engine& e, Plane y, Plane) { return e.clean_buffer(y, 0, 0, -1, 4); },
       [](const Engine&) { return EngineDebug("[clean_buffer] clean buffer error"); }, 0},
      {"clear_cache of a stranger",
       [](Engine& e, Plane y, Plane) { return e.clear_cache(y, -1, 8, 2); },
       [](const Engine&) { return EngineDebug("[clean_buffer] clean buffer error"); }},
      PackingLuma(-1, "input"),
      PackingLuma(1, "work0"),
      PackingLuma(2, "work1"),
      PackingLuma(3, "work0"),
      PackingChroma(-1, "input"),
      PackingChroma(1, "work0"),
      PackingChroma(2, "work1"),
      PackingChroma(3, "work0"),
      {"CopyMemYUVfromSrcTexture",
       [](Engine& e, Plane y, Plane uv) { return e.CopyMemYUVfromSrcTexture(y, uv); },
       [](const Engine& e) { return Packed(e, "input") + Finish(); }},
      {"SetParameters",
       [](Engine& e, Plane, Plane) {
         return e.SetParameters(30, 20, 12, 15, 10, 5, 0, false, 0.75f);
       },
       [](const Engine& e) {
         reference::WarpMembers warp;
         Script lines = SlimmingMeasured(e, kFaces[0], 5, false, &warp);
         lines.erase(lines.begin());  // the record's own line
         return lines;
       }},
      {"SetCheekSlimmerParameters",
       [](Engine& e, Plane, Plane) {
         return e.SetCheekSlimmerParameters(kFaces[2].as<FACE_INFO_t>(), 3, false);
       },
       [](const Engine& e) {
         reference::WarpMembers warp;
         return SlimmingMeasured(e, kFaces[2], 3, false, &warp);
       }},
      Warp(0, "input", "work0"),
      Warp(1, "work0", "work1"),
      Warp(2, "work1", "work0"),
      OneFace(0, 0),
      OneFace(1, 0),
      OneFace(2, 2),
      OneFace(1, 2),
      SeveralFaces(0),
      SeveralFaces(1),
      SeveralFaces(2),
      SeveralFaces(3),
      {"SetFaceWhiteningParameters",
       [](Engine& e, Plane y, Plane) {
         return e.SetFaceWhiteningParameters(PortraitFace(32, 22, 12).as<FACE_INFO_t>(), 0, 0,
                                             BEAUTYSHOT_EFFECT_MASK, 0, true, y);
       },
       [](const Engine&) { return WhiteningMeasured(15); }},
      {"GetEllipseTransformMatrix",
       [](Engine& e, Plane, Plane) {
         float matrix[9];
         return e.GetEllipseTransformMatrix({0, 0, 0}, {9, 0, 0}, {4, 0, 0}, {4, 9, 0}, matrix, 64,
                                            48, 10, 2.25f);
       },
       [](const Engine&) { return EngineInfo("scaleR = 2.25"); }},
      {"GetGPU_HSI of a frame",
       [](Engine& e, Plane y, Plane) {
         int h, s, i;
         return e.GetGPU_HSI(y, 3, 4, 64, 48, h, s, i, 0);
       },
       Nothing},
      {"GetGPU_HSI of the image",
       [](Engine& e, Plane, Plane) {
         int h, s, i;
         return e.GetGPU_HSI(nullptr, 3, 4, 64, 48, h, s, i, 0);
       },
       Nothing},
      White(0, "work1", "work2"),
      White(1, "work2", "work1"),
      White(2, "work1", "work2"),
      Whitening(0, 3),
      Whitening(1, 3),
      Whitening(2, 4),
      Whitening(3, 15),
      {"DrawRectification", [](Engine& e, Plane, Plane) { return e.DrawRectification(); },
       [](const Engine& e) {
         Pass pass = WholePass(e, "Rectification", "input", "work0");
         pass.filter = "LINEAR";
         return Drawn(pass, UniformsOf(*e.m_pProgRectification, "Rectification"));
       }},
      Rectifying(0),
      Rectifying(12),
      Rectifying(-7),
      {"DrawRadialRectification",
       [](Engine& e, Plane, Plane) { return e.DrawRadialRectification(); }, RadialPass},
      {"RadialRectification",
       [](Engine& e, Plane y, Plane uv) { return e.RadialRectification(y, uv, 0, 1); },
       [](const Engine& e) {
         return EngineInfo("FaceProcess  RadialRectification++") + RadialPass(e) +
                Packed(e, "work0") + Finish() + EngineInfo("FaceProcess  RadialRectification--");
       }},
  };
}

std::vector<Operation> ColourOperations() {
  return {
      {"DrawColorConvertYUV2RGB",
       [](Engine& e, Plane, Plane) { return e.DrawColorConvertYUV2RGB(); },
       [](const Engine& e) { return ColourPass(e, "YUV2RGB", "input", "work0"); }},
      {"DrawColorConvertRGB2HSI",
       [](Engine& e, Plane, Plane) { return e.DrawColorConvertRGB2HSI(); },
       [](const Engine& e) { return ColourPass(e, "RGB2HSI", "work0", "work1"); }},
      {"ConvertYUV", [](Engine& e, Plane, Plane) { return e.ConvertYUV(); },
       [](const Engine& e) {
         return EngineInfo("ConvertYUV+") + ColourPass(e, "YUV2RGB", "input", "work0") +
                ColourPass(e, "RGB2HSI", "work0", "work1") + Finish() + EngineInfo("ConvertYUV-");
       }},
      BackToYuv(2, "work2"),
      BackToYuv(1, "work1"),
      BackToYuv(3, "input"),
      {"DrawColorConvertHSI2YUV",
       [](Engine& e, Plane, Plane) {
         e.m_nResultIdx = 0;
         return e.DrawColorConvertHSI2YUV();
       },
       [](const Engine& e) { return ColourPass(e, "HSI2YUV", "work0", "input"); }},
  };
}

}  // namespace lumora::test
