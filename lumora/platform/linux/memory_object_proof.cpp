#include "lumora/platform/linux/memory_object_proof.h"

#include <array>
#include <mutex>
#include <vector>

#include "lumora/platform/gl_api.h"
#include "lumora/platform/linux/memory_object.h"

namespace lumora::platform {
namespace {

// A context of its own on the current display, current for the life of the object.
class PrivateContext {
 public:
  PrivateContext() {
    constexpr std::array<EGLint, 5> kConfig = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT,
                                               EGL_RENDERABLE_TYPE, EGL_OPENGL_ES2_BIT, EGL_NONE};
    constexpr std::array<EGLint, 3> kVersion = {EGL_CONTEXT_CLIENT_VERSION, 2, EGL_NONE};
    constexpr std::array<EGLint, 5> kSize = {EGL_WIDTH, 1, EGL_HEIGHT, 1, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (eglChooseConfig(display_, kConfig.data(), &config, 1, &count) != EGL_TRUE || count == 0) {
      return;
    }
    surface_ = eglCreatePbufferSurface(display_, config, kSize.data());
    context_ = eglCreateContext(display_, config, EGL_NO_CONTEXT, kVersion.data());
    current_ = eglMakeCurrent(display_, surface_, surface_, context_) == EGL_TRUE;
  }
  ~PrivateContext() {
    if (current_) eglMakeCurrent(display_, former_draw_, former_read_, former_context_);
    if (context_ != EGL_NO_CONTEXT) eglDestroyContext(display_, context_);
    if (surface_ != EGL_NO_SURFACE) eglDestroySurface(display_, surface_);
  }
  PrivateContext(const PrivateContext&) = delete;
  PrivateContext& operator=(const PrivateContext&) = delete;

  bool current() const { return current_; }

 private:
  const EGLDisplay display_ = eglGetCurrentDisplay();
  const EGLContext former_context_ = eglGetCurrentContext();
  const EGLSurface former_draw_ = eglGetCurrentSurface(EGL_DRAW);
  const EGLSurface former_read_ = eglGetCurrentSurface(EGL_READ);
  EGLSurface surface_ = EGL_NO_SURFACE;
  EGLContext context_ = EGL_NO_CONTEXT;
  bool current_ = false;
};

// Several rows, and rows that are not a power of two long: a wrong row pitch cannot pass.
constexpr uint32_t kWidth = 96;
constexpr uint32_t kHeight = 6;

GLuint CompileShader(GLenum type, const char* text) {
  const GLuint shader = glCreateShader(type);
  glShaderSource(shader, 1, &text, nullptr);
  glCompileShader(shader);
  return shader;
}

// Draws the bound texture over the whole framebuffer, texel by texel.
void UseCopyProgram() {
  const GLuint program = glCreateProgram();
  glAttachShader(program, CompileShader(GL_VERTEX_SHADER, R"(
    attribute vec2 corner;
    varying vec2 at;
    void main() { at = corner; gl_Position = vec4(corner * 2.0 - 1.0, 0.0, 1.0); })"));
  glAttachShader(program, CompileShader(GL_FRAGMENT_SHADER, R"(
    precision mediump float;
    varying vec2 at;
    uniform sampler2D image;
    void main() { gl_FragColor = texture2D(image, at); })"));
  glBindAttribLocation(program, 0, "corner");
  glLinkProgram(program);
  glUseProgram(program);
}

// The texture that shows `backing`, bound; 0 when there is no such image.
GLuint BindImage(BufferBacking& backing) {
  constexpr std::array<EGLint, 3> kAttributes = {EGL_IMAGE_PRESERVED_KHR, EGL_TRUE, EGL_NONE};
  const EGLDisplay display = eglGetCurrentDisplay();
  const EGLImageKHR image = backing.createImage(display, kAttributes.data());
  if (image == EGL_NO_IMAGE_KHR || backing.kind() != BufferKind::MemoryObject) return 0;
  GLuint texture = 0;
  glGenTextures(1, &texture);
  glBindTexture(GL_TEXTURE_2D, texture);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
  gl::Extensions().glEGLImageTargetTexture2DOES(GL_TEXTURE_2D, image);
  gl::Extensions().eglDestroyImageKHR(display, image);  // the texture keeps the memory
  return texture;
}

unsigned char PatternByte(size_t index, int round) {
  return static_cast<unsigned char>(index * 7 + (index >> 8) + static_cast<size_t>(round) * 59 + 1);
}

// The CPU writes a picture, the GPU draws it, the CPU compares; twice, because a first exchange may
// succeed on a copy.
bool ExchangesPictures(BufferBacking& source, BufferBacking& target,
                       const BufferGeometry& geometry) {
  const size_t bytes = geometry.rowBytes() * kHeight;
  for (int round = 0; round < 2; ++round) {
    for (size_t i = 0; i < bytes; ++i) source.address()[i] = PatternByte(i, round);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    glFinish();
    for (size_t i = 0; i < bytes; ++i) {
      if (target.address()[i] != PatternByte(i, round)) return false;
    }
  }
  return glGetError() == GL_NO_ERROR;
}

const VulkanMemory* Prove() {
  const PrivateContext context;
  if (!context.current()) return nullptr;
  const VulkanMemory* const device = CurrentMemoryDevice();
  if (device == nullptr) return nullptr;

  const BufferGeometry geometry = LayOut(kWidth, kHeight);
  const auto source = MakeMemoryObjectBacking(*device, geometry);
  const auto target = MakeMemoryObjectBacking(*device, geometry);
  if (source == nullptr || target == nullptr) return nullptr;
  const GLuint target_texture = BindImage(*target);
  const GLuint source_texture = BindImage(*source);
  if (target_texture == 0 || source_texture == 0) return nullptr;

  GLuint framebuffer = 0;
  glGenFramebuffers(1, &framebuffer);
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, target_texture, 0);
  if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) return nullptr;
  constexpr std::array<GLfloat, 8> kCorners = {0, 0, 1, 0, 0, 1, 1, 1};
  UseCopyProgram();
  glViewport(0, 0, kWidth, kHeight);
  glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, 0, kCorners.data());
  glEnableVertexAttribArray(0);
  return ExchangesPictures(*source, *target, geometry) ? device : nullptr;
}

struct Proof {
  EGLDisplay display;
  const VulkanMemory* device;
};

}  // namespace

const VulkanMemory* ProvenMemoryDevice() {
  const EGLDisplay display = eglGetCurrentDisplay();
  if (display == EGL_NO_DISPLAY) return nullptr;
  // Never destroyed: buffers of static objects may be made after any other static has gone.
  static auto* const mutex = new std::mutex;
  static auto* const proofs = new std::vector<Proof>;
  const std::lock_guard<std::mutex> guard(*mutex);
  for (const Proof& proof : *proofs) {
    if (proof.display == display) return proof.device;
  }
  proofs->push_back({display, Prove()});
  return proofs->back().device;
}

}  // namespace lumora::platform
