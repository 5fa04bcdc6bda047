// SPDX-License-Identifier: Apache-2.0
#include "gl/cache_fixture.h"

#include <EGL/egl.h>
#include <GLES2/gl2.h>
#include <GLES2/gl2ext.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>

namespace lumora::test {
namespace {

constexpr const char* kTag = "GLProgram";

struct Binary {
  uint32_t format = 0;
  std::string bytes;
};

Binary BinaryOf(const GLProgram& program) {
  GLint length = 0;
  glGetProgramiv(program.m_hProgram, GL_PROGRAM_BINARY_LENGTH_OES, &length);
  Binary binary;
  binary.bytes.resize(static_cast<size_t>(length));
  GLenum format = 0;
  const auto get =
      reinterpret_cast<PFNGLGETPROGRAMBINARYOESPROC>(eglGetProcAddress("glGetProgramBinaryOES"));
  get(program.m_hProgram, length, nullptr, &format, binary.bytes.data());
  binary.format = format;
  return binary;
}

}  // namespace

void CacheTest::SetUp() {
  GlTest::SetUp();
  if (!context().ok()) return;
  GLint formats = 0;
  glGetIntegerv(GL_NUM_PROGRAM_BINARY_FORMATS_OES, &formats);
  if (formats == 0) GTEST_SKIP() << "this driver has no program binaries";
}

std::string CacheTest::GoodFile() {
  {
    GLProgRGB2HSI program;
    EXPECT_TRUE(program.Load());
  }
  const std::string bytes = ReadFile(path()).value_or("");
  EXPECT_GT(bytes.size(), 4u);
  log_.take();
  return bytes;
}

std::vector<std::string> NamesIn(const std::string& directory) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(directory)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

unsigned ModeOf(const std::string& path) {
  struct stat status = {};
  EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
  return status.st_mode & 07777;
}

std::vector<std::string> WithSeals(std::vector<std::string> names) {
  for (size_t i = names.size(); i > 0; --i) names.push_back(names[i - 1] + ".seal");
  std::sort(names.begin(), names.end());
  return names;
}

std::string ExpectedFile(const GLProgram& program) {
  const Binary binary = BinaryOf(program);
  std::string file(sizeof(binary.format), '\0');
  std::memcpy(file.data(), &binary.format, sizeof(binary.format));
  return file + binary.bytes;
}

Lines operator+(Lines first, const Lines& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

Lines CannotOpen(const std::string& path) {
  return {Error(kTag, "[LoadBinary] can't open binary shader file %s", path.c_str())};
}

Lines InvalidLength() {
  return {Error(kTag, "[LoadBinary] invalid shader length")};
}

Lines Refused() {
  return {Error(kTag, "[LoadBinary] can't load binary shader")};
}

Lines SwitchToCompiling() {
  return {Debug(kNoTag, "[Load] load program binary fail, switch to normal compile mode")};
}

Lines CompiledWell() {
  return {Debug(kNoTag,
                "[Load] load shader success, cache the binary in file system for further usages")};
}

Lines Saved(const GLProgram& program) {
  const Binary binary = BinaryOf(program);
  return {Info(kTag, "[SaveBinary] binary length %d bytes", static_cast<int>(binary.bytes.size())),
          Info(kTag, "[SaveBinary] proram id %d, binary format is 0x%X",
               static_cast<int>(program.m_hProgram), binary.format)};
}

Lines Located(const GLProgram& program) {
  const int sampler = glGetUniformLocation(program.m_hProgram, "s_texture0");
  return {Info(kNoTag, "[Load] get locations"),
          Info(kNoTag, "[Load] program id %d", static_cast<int>(program.m_hProgram)),
          Info(kNoTag, "[Load] SAMPLER_INPUT_TEX %d", sampler)};
}

Lines Recompiled(const Lines& refusal, const GLProgram& program) {
  return refusal + SwitchToCompiling() + CompiledWell() + Saved(program) + Located(program);
}

}  // namespace lumora::test
