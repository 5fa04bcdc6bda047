// SPDX-License-Identifier: Apache-2.0
#include "engine/setup_transcript.h"

#include <GLES2/gl2ext.h>

#include <algorithm>
#include <cstring>

#include "support/scoped.h"

namespace lumora::test {
namespace {

constexpr char kImages[] = "EGLImageTest";
constexpr char kPrograms[] = "GLProgram";

int Id(const ProgramLoad& load) {
  return static_cast<int>(load.program->m_hProgram);
}

Lines CompileLines(const ProgramLoad& load, const std::string& directory, bool binaries) {
  const std::string path = directory + "/" + load.cache_file;
  Lines lines;
  if (binaries) {
    lines.push_back(
        Error(kPrograms, "[LoadBinary] can't open binary shader file %s", path.c_str()));
  }
  lines.push_back(Debug(kNoTag, "[Load] load program binary fail, switch to normal compile mode"));
  lines.push_back(Debug(kNoTag,
                        "[Load] load shader success, cache the binary in file system for further "
                        "usages"));
  if (!binaries) return lines;
  const std::string file = ReadFile(path).value_or("");
  uint32_t format = 0;
  std::memcpy(&format, file.data(), std::min(file.size(), sizeof(format)));
  lines.push_back(
      Info(kPrograms, "[SaveBinary] binary length %d bytes", static_cast<int>(file.size()) - 4));
  lines.push_back(
      Info(kPrograms, "[SaveBinary] proram id %d, binary format is 0x%X", Id(load), format));
  return lines;
}

Lines LocationLines(const ProgramLoad& load) {
  Lines lines;
  if (load.announces_use) lines.push_back(Info(kNoTag, "[Load] use program"));
  lines.push_back(Info(kNoTag, "[Load] get locations"));
  lines.push_back(Info(kNoTag, "[Load] program id %d", Id(load)));
  lines.push_back(Info(kNoTag, "[Load] SAMPLER_INPUT_TEX %d", load.program->m_nSamplerLoc[0]));
  return lines;
}

}  // namespace

bool DriverHasBinaries() {
  const auto* extensions = reinterpret_cast<const char*>(glGetString(GL_EXTENSIONS));
  GLint formats = 0;
  if (std::strstr(extensions, "GL_OES_get_program_binary") == nullptr) return false;
  glGetIntegerv(GL_NUM_PROGRAM_BINARY_FORMATS_OES, &formats);
  return formats > 0;
}

std::vector<ProgramLoad> PreviewLoads(const android::GPUBeautyFace& engine) {
  const bool mask = engine.m_bShowMask;
  return {
      {engine.m_pProgRGBtoY, "prog_rgb2y.bin", false},
      {engine.m_pProgRGBtoUV, "prog_rgb2uv.bin", true},
      {engine.m_pProgCheekSlimmer, mask ? "prog_face_slim_mask.bin" : "prog_face_slim.bin", true},
      {engine.m_pProgFaceWhitening, "prog_face_white.bin", true},
      {engine.m_pProgRectification, mask ? "prog_rectification_mask.bin" : "prog_rectification.bin",
       true},
      {engine.m_pProgRadialDistortion, "prog_radial_distortion_mask.bin", true}};
}

std::vector<ProgramLoad> ColourConvertLoads(const android::GPUBeautyFace& engine) {
  return {{engine.m_pProgYUV2RGB, "prog_yuv2rgb.bin", false},
          {engine.m_pProgRGB2HSI, "prog_rgb2hsi.bin", false},
          {engine.m_pProgHSI2YUV, "prog_hsi2yuv.bin", false}};
}

std::vector<ProgramLoad> CaptureLoads(const android::GPUBeautyFace& engine) {
  std::vector<ProgramLoad> loads = {{engine.m_pProgRGBtoY, "prog_rgb2y.bin", false},
                                    {engine.m_pProgRGBtoUV, "prog_rgb2uv.bin", true}};
  if (!engine.m_bColorCvtMode) loads.push_back({engine.m_pProgCheekSlimmer, nullptr, true});
  loads.push_back({engine.m_pProgFaceWhitening, "prog_face_white_large.bin", true});
  loads.push_back({engine.m_pProgYUV2HSI, "prog_yuv2hsi.bin", false});
  loads.push_back({engine.m_pProgHSI2YUV, "prog_hsi2yuv.bin", false});
  return loads;
}

Lines ColdLoads(const std::vector<ProgramLoad>& loads, const std::string& cache_directory) {
  const bool binaries = DriverHasBinaries();
  Lines lines;
  for (const ProgramLoad& load : loads) {
    if (load.cache_file != nullptr) {
      lines = lines + CompileLines(load, cache_directory, binaries);
    }
    lines = lines + LocationLines(load);
  }
  return lines;
}

Lines WarmLoads(const std::vector<ProgramLoad>& loads) {
  const bool binaries = DriverHasBinaries();
  Lines lines;
  for (const ProgramLoad& load : loads) {
    if (!binaries && load.cache_file != nullptr) lines = lines + CompileLines(load, "", false);
    lines = lines + LocationLines(load);
  }
  return lines;
}

Lines ImageLines(int count) {
  Lines lines;
  for (int i = 0; i < count; ++i) {
    lines = lines + Lines{Debug(kImages, "SEGLImage::Create - start"),
                          Debug(kImages, "new GraphicBuffer - start"),
                          Debug(kImages, "new GraphicBuffer spend:  ms\n"),
                          Debug(kImages, "new GraphicBuffer - end"),
                          Debug(kImages, "clientBuf: "),
                          Debug(kImages, "eglCreateImageKHR - start"),
                          Info(kImages, "eglCreateImageKHR() done! "),
                          Debug(kImages, "eglImageID: "),
                          Debug(kImages, "eglCreateImageKHR - end"),
                          Debug(kImages, "CreateTexture - start"),
                          Debug(kImages, "textureID: "),
                          Debug(kImages, "CreateTexture - end"),
                          Debug(kImages, "glBindTexture - start"),
                          Debug(kImages, "glBindTexture - end"),
                          Debug(kImages, "glEGLImageTargetTexture2DOES - start"),
                          Debug(kImages, "glEGLImageTargetTexture2DOES - end"),
                          Debug(kImages, "GL create texture spend:  ms\n"),
                          Debug(kImages, "SEGLImage::Create - end")};
  }
  return lines;
}

Lines DeletionLines(const std::vector<unsigned>& programs) {
  Lines lines;
  for (const unsigned program : programs) {
    lines.push_back(
        Info(kPrograms, "[~GLProgram] program %d deleted\n", static_cast<int>(program)));
  }
  return lines;
}

Lines WithoutNumbers(Lines lines) {
  for (LogLine& line : lines) {
    const size_t colon = line.text.find(": ");
    if (line.tag != kImages || colon == std::string::npos) continue;
    const auto number = [](char c) { return std::strchr("0123456789.-", c) != nullptr; };
    const auto tail = line.text.begin() + static_cast<std::ptrdiff_t>(colon);
    line.text.erase(std::remove_if(tail, line.text.end(), number), line.text.end());
  }
  return lines;
}

Lines operator+(Lines a, const Lines& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

}  // namespace lumora::test
