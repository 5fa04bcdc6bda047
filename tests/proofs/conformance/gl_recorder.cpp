// SPDX-License-Identifier: Apache-2.0
#include "proofs/conformance/recorded_calls.h"

namespace lumora::test {
namespace {

GlRecorder* g_recorder = nullptr;
std::string g_last_call;

template <typename Map, typename Key>
std::string Text(const Map& map, const Key& key) {
  const auto found = map.find(key);
  return found != map.end() ? found->second : "nowhere";
}

}  // namespace

namespace recorded {

Tracker& Now() {
  static auto* const tracker = new Tracker;  // never destroyed: drivers call until the end
  return *tracker;
}

void Record(const char* function, Arguments arguments) {
  g_last_call = function;
  if (g_recorder == nullptr) return;
  g_recorder->calls.push_back(
      {function, std::move(arguments), Now().bindings.context, g_recorder->count_lines()});
}

bool CheckFails() {
  const bool fails = g_recorder != nullptr && g_recorder->failing.count(g_last_call) != 0;
  g_last_call = "glGetError";
  return fails;
}

ObjectId Make(ObjectKind kind, uint64_t name) {
  const uint64_t serial = ++Now().last_serial;
  Now().serials[{kind, name}] = serial;
  return {kind, serial};
}

CallArgument Object(ObjectKind kind, uint64_t name) {
  return {"", ObjectNow(kind, name)};
}
CallArgument Texture(GLuint name) {
  return Object(ObjectKind::Texture, name);
}
CallArgument Framebuffer(GLuint name) {
  return Object(ObjectKind::Framebuffer, name);
}
CallArgument Program(GLuint name) {
  return Object(ObjectKind::Program, name);
}
CallArgument Egl(ObjectKind kind, const void* handle) {
  return Object(kind, static_cast<uint64_t>(reinterpret_cast<uintptr_t>(handle)));
}
CallArgument Name(GLenum value) {
  return {GlName(value)};
}
CallArgument Number(int64_t value) {
  return {std::to_string(value)};
}
CallArgument Shader(GLuint name) {
  return {Now().shaders[name]};
}
CallArgument Uniform(GLint location) {
  return {Text(Now().uniforms, std::make_pair(Now().program, location))};
}
CallArgument Attribute(GLuint location) {
  return {Text(Now().attributes, std::make_pair(Now().program, static_cast<GLint>(location)))};
}

}  // namespace recorded

using recorded::Now;

ObjectId ObjectNow(ObjectKind kind, uint64_t name) {
  if (name == 0 || name == UINT32_MAX) return {kind, 0};  // the driver's and the engine's "unset"
  if (kind >= ObjectKind::Display) return {kind, name};
  const auto found = Now().serials.find({kind, name});
  return {kind, found != Now().serials.end() ? found->second : UINT64_MAX};
}

void Bindings::unbind(const ObjectId& object) {
  for (auto& [at, texture] : textures) {
    if (texture == object) texture.id = 0;
  }
  if (framebuffer == object) framebuffer.id = 0;
}

GlRecorder::GlRecorder(std::function<size_t()> count, std::set<std::string> functions)
    : before(Now().bindings), count_lines(std::move(count)), failing(std::move(functions)) {
  if (g_recorder != nullptr) std::abort();
  g_last_call.clear();
  g_recorder = this;
}

GlRecorder::~GlRecorder() {
  g_recorder = nullptr;
}

const std::vector<std::string>& FirstDisplayCalls() {
  return Now().display_calls;
}

}  // namespace lumora::test
