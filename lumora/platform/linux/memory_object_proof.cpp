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

// The framebuffer that draws into `texture`, bound; 0 when it cannot be drawn into.
GLuint BindFramebuffer(GLuint texture) {
  GLuint framebuffer = 0;
  glGenFramebuffers(1, &framebuffer);
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
  return glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE ? framebuffer : 0;
}

unsigned char PatternByte(size_t index, int round) {
  return static_cast<unsigned char>(index * 7 + (index >> 8) + static_cast<size_t>(round) * 59 + 1);
}

// The part of the source's picture that the GPU copies to the same place of the target, and the
// byte that it fills the target with before.
constexpr PixelRectangle kCopied = {32, 2, 40, 3};

unsigned char FilledByte(int round) {
  return round % 2 == 0 ? 0xff : 0x00;
}

bool IsCopied(size_t index) {
  const auto x = static_cast<int>(index / kPixelBytes % kWidth);
  const auto y = static_cast<int>(index / kPixelBytes / kWidth);
  return x >= kCopied.x && x < kCopied.x + kCopied.width && y >= kCopied.y &&
         y < kCopied.y + kCopied.height;
}

// The CPU writes a picture, the GPU fills the target and copies a part of the picture into it, the
// CPU compares; twice, because a first exchange may succeed on a copy. No shader takes part, and no
// scissor, for which drivers use one: the compiler, which nobody else needs where the binaries of
// programs are kept, would be the dearest step of a start.
bool ExchangesPictures(BufferBacking& source, BufferBacking& target, GLuint from, GLuint into,
                       const BufferGeometry& geometry) {
  const size_t bytes = geometry.rowBytes() * kHeight;
  for (int round = 0; round < 2; ++round) {
    for (size_t i = 0; i < bytes; ++i) source.address()[i] = PatternByte(i, round);
    glBindFramebuffer(GL_FRAMEBUFFER, into);
    const GLfloat level = static_cast<GLfloat>(FilledByte(round)) / 255.0f;
    glClearColor(level, level, level, level);
    glClear(GL_COLOR_BUFFER_BIT);
    glBindFramebuffer(GL_FRAMEBUFFER, from);
    glCopyTexSubImage2D(GL_TEXTURE_2D, 0, kCopied.x, kCopied.y, kCopied.x, kCopied.y, kCopied.width,
                        kCopied.height);
    glFinish();
    for (size_t i = 0; i < bytes; ++i) {
      const unsigned char expected = IsCopied(i) ? PatternByte(i, round) : FilledByte(round);
      if (target.address()[i] != expected) return false;
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
  const GLuint source_texture = BindImage(*source);
  const GLuint target_texture = BindImage(*target);  // stays bound, to be copied to
  if (source_texture == 0 || target_texture == 0) return nullptr;
  const GLuint from = BindFramebuffer(source_texture);
  const GLuint into = BindFramebuffer(target_texture);
  if (from == 0 || into == 0) return nullptr;
  return ExchangesPictures(*source, *target, from, into, geometry) ? device : nullptr;
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
