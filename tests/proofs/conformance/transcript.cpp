// SPDX-License-Identifier: Apache-2.0
#include "proofs/conformance/transcript.h"

#include <EGL/egl.h>

#include <algorithm>
#include <iostream>
#include <optional>
#include <sstream>

#include "engine/setup_transcript.h"
#include "support/scoped.h"

namespace lumora::test {
namespace {

// Passes are recorded as the contract has them, over the whole target; where drawing less gives the
// same picture is for tests of pixels.
const ScopedEnvironment kFullQuads("LUMORA_FULL_QUADS", "1");

// How much was compared, told at the end of a run.
struct Compared {
  size_t scripts = 0;
  size_t log_lines = 0;
  size_t calls = 0;
};
Compared g_compared;

class Summary : public testing::Environment {
 public:
  void TearDown() override {
    std::cout << "compared " << g_compared.scripts << " transcripts: " << g_compared.log_lines
              << " log lines, " << g_compared.calls << " calls\n";
  }
};
const testing::Environment* const kSummary = testing::AddGlobalTestEnvironment(new Summary);

bool IsCall(const std::string& line) {
  return line.compare(0, 2, "gl") == 0 || line.compare(0, 3, "egl") == 0;
}

std::set<std::string> FailingAfter(Checks checks) {
  if (checks == Checks::SetUp) {
    return {
        "glGenTextures",   "glBindTexture", "glFramebufferTexture2D", "glCheckFramebufferStatus",
        "glCreateProgram", "glGetShaderiv", "glAttachShader"};
  }
  return {"glTexParameteri", "glViewport",  "glUseProgram", "glBindTexture", "glUniform1f",
          "glUniform2f",     "glUniform3f", "glUniform4f",  "glDrawElements"};
}

// Calls on what is bound, rather than on an object that they name.
bool ActsOnTexture(const std::string& function) {
  return function == "glTexParameteri" || function == "glTexImage2D" ||
         function == "glEGLImageTargetTexture2DOES";
}
bool ActsOnFramebuffer(const std::string& function) {
  return function == "glViewport" || function == "glFramebufferTexture2D" ||
         function == "glCheckFramebufferStatus" || function == "glDrawElements";
}

// Picks the calls of the contract out of all that were made.
class Reader {
 public:
  Reader(const Bindings& before, const ObjectNames& names) : state_(before), names_(names) {}

  // Whether the call belongs into a transcript.
  bool takes(const Call& call) {
    const bool after_flush = last_function_ == "glFlush";
    last_function_ = call.function;
    if (call.function == "eglMakeCurrent") return takes_current(call);
    if (call.function.compare(0, 2, "gl") == 0 && !known(call.context)) return false;
    if (call.function == "glFinish") return after_flush;
    if (call.function == "glDeleteTextures" || call.function == "glDeleteFramebuffers") {
      state_.unbind(call.arguments[0].object);
    }
    if (call.function == "glActiveTexture") {
      state_.unit = static_cast<unsigned>(call.arguments[0].text.back() - '0');
    }
    if (call.function == "glBindTexture") {
      return takes_binding(call.arguments[1].object, &state_.textures[state_.unit], &left_texture_);
    }
    if (call.function == "glBindFramebuffer") {
      return call.arguments[0].text == "FRAMEBUFFER" &&
             takes_binding(call.arguments[1].object, &state_.framebuffer, &left_framebuffer_);
    }
    if (ActsOnTexture(call.function) && !known(state_.textures[state_.unit])) return false;
    if (ActsOnFramebuffer(call.function) && !known(state_.framebuffer)) return false;
    // What is bound for reading alone is the platform's.
    if (call.function == "glCheckFramebufferStatus" && call.arguments[0].text != "FRAMEBUFFER") {
      return false;
    }
    return std::all_of(call.arguments.begin(), call.arguments.end(),
                       [this](const CallArgument& argument) { return known(argument.object); });
  }

  std::string text(const Call& call) const {
    std::string line = call.function;
    for (const CallArgument& argument : call.arguments) {
      line += " ";
      if (argument.object.kind == ObjectKind::None) {
        line += argument.text;
      } else {
        const auto found = names_.find(argument.object);
        line += found != names_.end() ? found->second : "none";
      }
    }
    return line;
  }

 private:
  // Nothing at all is known to everybody.
  bool known(const ObjectId& object) const { return object.id == 0 || names_.count(object) != 0; }

  // Somebody else's object is bound for a moment; binding the former one again ends that.
  bool takes_binding(const ObjectId& object, ObjectId* bound, std::optional<ObjectId>* left) const {
    const ObjectId former = *bound;
    *bound = object;
    if (!known(object)) {
      if (known(former)) *left = former;
      return false;
    }
    const bool restored = !known(former) && left->has_value() && (*left)->id == object.id;
    left->reset();
    return !restored;
  }

  bool takes_current(const Call& call) {
    const ObjectId context = call.arguments[3].object;
    const bool restored = !known(state_.context) && left_context_ == context;
    if (!known(context)) left_context_ = state_.context;
    state_.context = context;
    return known(context) && !restored;
  }

  Bindings state_;
  const ObjectNames& names_;
  std::optional<ObjectId> left_texture_, left_framebuffer_, left_context_;
  std::string last_function_;
};

// Runs of settings between which nothing happens, sorted.
Script WithSettingsSorted(Script lines) {
  const auto is_setting = [](const std::string& line) {
    return line.compare(0, 15, "glTexParameteri") == 0;
  };
  for (auto first = lines.begin(); first != lines.end();) {
    const auto last = std::find_if_not(first, lines.end(), is_setting);
    std::sort(first, last);
    first = last != lines.end() ? last + 1 : last;
  }
  return lines;
}

void Add(ObjectNames* names, ObjectKind kind, GLuint object, const std::string& name) {
  const ObjectId id = ObjectNow(kind, object);
  if (id.id != 0 && id.id != UINT64_MAX) (*names)[id] = name;
}

void AddImage(ObjectNames* names, const SEGLImage* image, const std::string& name) {
  if (image == nullptr) return;
  Add(names, ObjectKind::Texture, image->m_hTexture, name);
  const auto egl_image = reinterpret_cast<uintptr_t>(image->m_eglImage);
  if (egl_image != 0) (*names)[ObjectNow(ObjectKind::Image, egl_image)] = name;
}

void AddEgl(ObjectNames* names, EGLDisplay display, EGLSurface surface, EGLContext context) {
  const auto add = [names](ObjectKind kind, const void* handle, const char* name) {
    if (handle != nullptr) (*names)[{kind, reinterpret_cast<uintptr_t>(handle)}] = name;
  };
  add(ObjectKind::Display, display, "display");
  add(ObjectKind::Surface, surface, "surface");
  add(ObjectKind::Context, context, "context");
}

}  // namespace

Script operator+(Script a, const Script& b) {
  a += b;
  return a;
}

Script& operator+=(Script& a, const Script& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

ObjectNames operator+(ObjectNames a, const ObjectNames& b) {
  a.insert(b.begin(), b.end());
  return a;
}

ObjectNames NamesOf(const android::GPUBeautyFace& engine) {
  ObjectNames names;
  AddEgl(&names, engine.m_eglDisplay, engine.m_eglSurface, engine.m_eglContext);
  const struct {
    const char* name;
    const SEGLImage* image;
    GLuint framebuffer;
  } images[] = {{"input", engine.m_pRGBImage, engine.m_hRGBFbo},
                {"work0", engine.m_pWorkImage[0], engine.m_hWorkFbo[0]},
                {"work1", engine.m_pWorkImage[1], engine.m_hWorkFbo[1]},
                {"work2", engine.m_pWorkImage[2], engine.m_hWorkFbo[2]},
                {"luma", engine.m_pYYYYImage, engine.m_hYYYYFbo},
                {"chroma", engine.m_pUVUVImage, engine.m_hUVUVFbo}};
  for (const auto& one : images) {
    AddImage(&names, one.image, one.name);
    Add(&names, ObjectKind::Framebuffer, one.framebuffer, one.name);
  }
  Add(&names, ObjectKind::Texture, engine.m_hYTexture, "Y-plane");
  Add(&names, ObjectKind::Texture, engine.m_hCbCrTexture, "CbCr-plane");
  const struct {
    const char* name;
    const GLProgram* program;
  } programs[] = {{"RGBtoY", engine.m_pProgRGBtoY},
                  {"RGBtoUV", engine.m_pProgRGBtoUV},
                  {"CheekSlimmer", engine.m_pProgCheekSlimmer},
                  {"YUV2RGB", engine.m_pProgYUV2RGB},
                  {"RGB2HSI", engine.m_pProgRGB2HSI},
                  {"HSI2YUV", engine.m_pProgHSI2YUV},
                  {"FaceWhitening", engine.m_pProgFaceWhitening},
                  {"YUV2HSI", engine.m_pProgYUV2HSI},
                  {"Rectification", engine.m_pProgRectification},
                  {"RadialDistortion", engine.m_pProgRadialDistortion}};
  for (const auto& one : programs) {
    if (one.program != nullptr) {
      Add(&names, ObjectKind::Program, one.program->m_hProgram, one.name);
    }
  }
  return names;
}

ObjectNames NamesOf(const android::GPUColorConverter& converter) {
  ObjectNames names;
  AddEgl(&names, converter.m_eglDisplay, converter.m_eglSurface, converter.m_eglContext);
  AddImage(&names, converter.m_pInputImage, "input");
  const char* const outputs[] = {"RGB", "HSI"};
  for (int i = 0; i < 2; ++i) {
    AddImage(&names, converter.m_pOutputImage[i], outputs[i]);
    Add(&names, ObjectKind::Framebuffer, converter.m_hFrameBuffer[i], outputs[i]);
  }
  Add(&names, ObjectKind::Program, converter.m_hYUV2RGBProgram, "YUV2RGB");
  Add(&names, ObjectKind::Program, converter.m_hRGB2HSIProgram, "RGB2HSI");
  return names;
}

ObjectNames NamesOf(const GLProgram& program) {
  ObjectNames names;
  Add(&names, ObjectKind::Program, program.m_hProgram, "program");
  return names;
}

ObjectNames CurrentContext() {
  ObjectNames names;
  AddEgl(&names, eglGetCurrentDisplay(), EGL_NO_SURFACE, eglGetCurrentContext());
  return names;
}

ObjectNames NamesOf(const SEGLImage& image, const std::string& name) {
  ObjectNames names;
  AddImage(&names, &image, name);
  return names;
}

ObjectNames NameOfTexture(unsigned texture, const std::string& name) {
  ObjectNames names;
  Add(&names, ObjectKind::Texture, texture, name);
  return names;
}

Recording::Recording(Checks checks)
    : recorder_([this] { return log_.lines().size(); }, FailingAfter(checks)) {}

Script Recording::lines(const ObjectNames& names) const {
  const Script log = Told(WithoutNumbers(log_.lines()));
  Reader reader(recorder_.before, names);
  Script lines;
  size_t told = 0;
  const auto tell = [&](size_t count) {
    for (; told < count; ++told) lines.push_back(log[told]);
  };
  for (const Call& call : recorder_.calls) {
    tell(call.lines);
    if (reader.takes(call)) lines.push_back(reader.text(call));
  }
  tell(log.size());
  return lines;
}

Script Told(const LogLine& line) {
  const char level = line.priority == 3 ? 'D' : line.priority == 4 ? 'I' : 'E';
  return {std::string(1, level) + "/" + line.tag.value_or("(none)") + " " + line.text};
}

Script Told(const std::vector<LogLine>& lines) {
  Script script;
  for (const LogLine& line : lines) script += Told(line);
  return script;
}

testing::AssertionResult Same(const Script& expected, const Script& actual) {
  const Script wanted = WithSettingsSorted(expected);
  const Script found = WithSettingsSorted(actual);
  ++g_compared.scripts;
  for (const std::string& line : wanted) {
    ++(IsCall(line) ? g_compared.calls : g_compared.log_lines);
  }
  if (wanted == found) return testing::AssertionSuccess();
  size_t at = 0;
  while (at < wanted.size() && at < found.size() && wanted[at] == found[at]) ++at;
  std::ostringstream out;
  out << "transcripts differ at line " << at << "\n";
  for (size_t i = at > 3 ? at - 3 : 0; i < at; ++i) out << "    " << wanted[i] << "\n";
  for (size_t i = at; i < std::min(wanted.size(), at + 12); ++i) out << "  - " << wanted[i] << "\n";
  for (size_t i = at; i < std::min(found.size(), at + 12); ++i) out << "  + " << found[i] << "\n";
  return testing::AssertionFailure() << out.str();
}

}  // namespace lumora::test
