// SPDX-License-Identifier: Apache-2.0
// Set-up and release.
#include <cstdio>

#include "proofs/conformance/contract.h"
#include "support/scoped.h"

namespace lumora::test {
namespace {

constexpr char kImages[] = "EGLImageTest";
constexpr char kPrograms[] = "GLProgram";

Script Step(const char* text) {
  return Told(Debug(kImages, "%s", text));
}

int Id(const GLProgram& program) {
  return static_cast<int>(program.m_hProgram);
}

/// One shader from its text, and the check behind it.
Script Compiled(const std::string& type, const char* label) {
  return Script{"glCreateShader " + type, "glShaderSource " + type, "glCompileShader " + type,
                "glGetShaderiv " + type + " COMPILE_STATUS"} +
         Check(label);
}

/// The part of loading that is the same from source and from the cache.
Script Located(const GLProgram& program, const std::string& name, const ProgramCase& one) {
  Script script;
  if (one.announces_use) script += Told(Info(kNoTag, "[Load] use program"));
  script += Told(Info(kNoTag, "[Load] get locations"));
  for (const Lookup& lookup : one.lookups) {
    const bool attribute = lookup.slot.table <= Slot::Texture;
    script += Script{std::string(attribute ? "glGetAttribLocation " : "glGetUniformLocation ") +
                     name + " " + lookup.name};
  }
  return script + Told(Info(kNoTag, "[Load] program id %d", Id(program))) +
         Told(Info(kNoTag, "[Load] SAMPLER_INPUT_TEX %d", program.m_nSamplerLoc[0]));
}

}  // namespace

Script Sampled(const std::string& wrap, const std::string& filter) {
  const std::string set = "glTexParameteri TEXTURE_2D TEXTURE_";
  return {set + "WRAP_S " + wrap, set + "WRAP_T " + wrap, set + "MIN_FILTER " + filter,
          set + "MAG_FILTER " + filter};
}

Script PlainTextureMade(const std::string& name, const std::string& format, int width, int height,
                        const std::string& wrap) {
  return Script{"glGenTextures " + name, "glBindTexture TEXTURE_2D " + name,
                "glTexImage2D TEXTURE_2D 0 " + format + " " + std::to_string(width) + " " +
                    std::to_string(height) + " 0 " + format + " UNSIGNED_BYTE"} +
         Sampled(wrap, "NEAREST");
}

Script ImageMade(const std::string& name) {
  return Step("SEGLImage::Create - start") + Step("new GraphicBuffer - start") +
         Step("new GraphicBuffer spend:  ms\n") + Step("new GraphicBuffer - end") +
         Step("clientBuf: ") + Step("eglCreateImageKHR - start") +
         Script{"eglCreateImageKHR {IMAGE_PRESERVED_KHR 1} " + name} +
         Told(Info(kImages, "eglCreateImageKHR() done! ")) + Step("eglImageID: ") +
         Step("eglCreateImageKHR - end") + Step("CreateTexture - start") +
         Script{"glGenTextures " + name} + Check("CreateTexture - glGenTextures") +
         Script{"glBindTexture TEXTURE_2D " + name} + Check("CreateTexture - glBindTexture") +
         Sampled("CLAMP_TO_EDGE", "NEAREST") + Step("textureID: ") + Step("CreateTexture - end") +
         Step("glBindTexture - start") + Script{"glBindTexture TEXTURE_2D " + name} +
         Step("glBindTexture - end") + Step("glEGLImageTargetTexture2DOES - start") +
         Script{"glEGLImageTargetTexture2DOES TEXTURE_2D " + name} +
         Step("glEGLImageTargetTexture2DOES - end") + Step("GL create texture spend:  ms\n") +
         Step("SEGLImage::Create - end");
}

Script TargetAttached(const std::string& name, const std::string& wrap, const std::string& filter,
                      const std::string& label) {
  return Sampled(wrap, filter) +
         Script{"glGenFramebuffers " + name, "glBindFramebuffer FRAMEBUFFER " + name,
                "glBindTexture TEXTURE_2D " + name} +
         Check("SetColorAttachment - glBindTexture") +
         Script{"glFramebufferTexture2D FRAMEBUFFER COLOR_ATTACHMENT0 TEXTURE_2D " + name + " 0"} +
         Check("SetColorAttachment - after glFramebufferTexture2D") +
         Script{"glCheckFramebufferStatus FRAMEBUFFER"} + Check(label);
}

Script TargetMade(const std::string& name, const std::string& wrap, const std::string& filter,
                  const std::string& label) {
  return ImageMade(name) + TargetAttached(name, wrap, filter, label);
}

Script PackedTargetsMade() {
  return TargetMade("luma", "CLAMP_TO_EDGE", "NEAREST",
                    "InitTexture - after YYYY SetColorAttachment") +
         TargetMade("chroma", "CLAMP_TO_EDGE", "NEAREST",
                    "InitTexture - after UVUV SetColorAttachment");
}

Script ProgramCompiled(const std::string& name) {
  return Compiled("VERTEX_SHADER", "gl Load Vertex Shader") +
         Compiled("FRAGMENT_SHADER", "gl Load Fragment Shader") +
         Script{"glCreateProgram " + name} + Check("glCreateProgram") +
         Script{"glAttachShader " + name + " VERTEX_SHADER"} + Check("glAttachVertexShader") +
         Script{"glAttachShader " + name + " FRAGMENT_SHADER"} + Check("glAttachFragmentShader") +
         Script{"glLinkProgram " + name, "glGetProgramiv " + name + " LINK_STATUS"};
}

Script LoadedFromCache(const GLProgram& program, const std::string& name, const ProgramCase& one) {
  if (one.cache_file == nullptr) return LoadedFromSource(program, name, one, "");
  return Script{"glIsProgram none", "glCreateProgram " + name, "glProgramBinaryOES " + name,
                "glGetProgramiv " + name + " LINK_STATUS"} +
         Located(program, name, one);
}

Script LoadedFromSource(const GLProgram& program, const std::string& name, const ProgramCase& one,
                        const std::string& cache_directory) {
  Script script;
  const std::string path =
      one.cache_file != nullptr ? cache_directory + "/" + one.cache_file : std::string();
  if (one.cache_file != nullptr) {
    script += Told(Error(kPrograms, "[LoadBinary] can't open binary shader file %s", path.c_str()));
    script += Told(Debug(kNoTag, "[Load] load program binary fail, switch to normal compile mode"));
  }
  script += ProgramCompiled(name);
  if (one.cache_file != nullptr) {
    const std::string file = ReadFile(path).value_or("");
    uint32_t format = 0;
    file.copy(reinterpret_cast<char*>(&format), sizeof(format));
    script +=
        Told(Debug(kNoTag,
                   "[Load] load shader success, cache the binary in file system for further "
                   "usages")) +
        Script{"glIsProgram " + name, "glGetProgramiv " + name + " PROGRAM_BINARY_LENGTH_OES"} +
        Told(Info(kPrograms, "[SaveBinary] binary length %d bytes",
                  static_cast<int>(file.size()) - 4)) +
        Script{"glGetProgramBinaryOES " + name} +
        Told(Info(kPrograms, "[SaveBinary] proram id %d, binary format is 0x%X", Id(program),
                  format));
  }
  return script + Located(program, name, one);
}

Script ProgramDeleted(const GLProgram& program, const std::string& name) {
  return Script{"glDeleteProgram " + name} +
         Told(Info(kPrograms, "[~GLProgram] program %d deleted\n", Id(program)));
}

Script ImageDestroyed(const std::string& name) {
  return {"glDeleteTextures " + name, "eglDestroyImageKHR " + name};
}

Script ContextMade(const std::string& tag, const std::string& class_name) {
  const auto done = [&](const char* step) {
    return Told(Debug(tag.c_str(), "[%s] %s successfully", class_name.c_str(), step));
  };
  return Told(Info(tag.c_str(), "%s()+", class_name.c_str())) + done("m_eglDisplay") +
         Script{"eglInitialize display",
                "eglChooseConfig display {SURFACE_TYPE 5 RED_SIZE 8 GREEN_SIZE 8 BLUE_SIZE 8 "
                "ALPHA_SIZE 8 DEPTH_SIZE 16 STENCIL_SIZE 4 RENDERABLE_TYPE 4} 10"} +
         done("eglChooseConfig") +
         Script{"eglCreateContext display none {CONTEXT_CLIENT_VERSION 2} context"} +
         done("eglCreateContext") +
         Script{"eglCreatePbufferSurface display {WIDTH 1 HEIGHT 1} surface"} +
         done("eglCreatePbufferSurface") +
         Script{"eglMakeCurrent display surface surface context"} + done("eglMakeCurrent") +
         Told(Info(tag.c_str(), "%s()-", class_name.c_str()));
}

Script ContextDestroyed(const std::string& tag, const std::string& class_name) {
  const std::string function = "~" + class_name;
  const auto step = [&](const char* call, const char* arguments) {
    return Told(Info(tag.c_str(), "[%s] %s", function.c_str(), call)) +
           Script{std::string(call) + " display" + arguments};
  };
  return step("eglMakeCurrent", " none none none") + step("eglDestroySurface", " surface") +
         step("eglDestroyContext", " context") + step("eglTerminate", "") +
         Told(Info(tag.c_str(), "%s()-", function.c_str()));
}

}  // namespace lumora::test
