#include "lumora/platform/graphic_buffer.h"

#include <cerrno>

#include "lumora/platform/buffer_backing.h"
#include "lumora/platform/buffer_geometry.h"
#include "lumora/platform/buffer_registry.h"
#include "lumora/platform/coherence.h"
#include "lumora/platform/pixel_digest.h"

namespace lumora::platform {

struct GraphicBuffer::State final : CoherentMemory {
  State(const BufferGeometry& layout, uint32_t usage) : geometry(layout), coherence(*this) {
    handle.flags = static_cast<int>(usage);
  }

  void adopt(std::unique_ptr<BufferBacking> memory) {
    backing = std::move(memory);
    handle.size = static_cast<int>(geometry.size);
    handle.base = backing->address();
  }

  bool beginAccess() override { return backing->beginAccess(); }
  bool publish() override { return backing->publish(geometry.whole()); }
  bool fetch() override { return backing->fetch(geometry.whole()); }
  void rememberCpu() override {
    if (backing->kind() == BufferKind::Staged) digest = cpuDigest();
  }
  bool cpuChanged() override {
    return backing->kind() == BufferKind::Staged && digest != cpuDigest();
  }

  uint64_t cpuDigest() const {
    return PixelDigest(backing->address(), size_t{geometry.width} * kPixelBytes, geometry.height,
                       geometry.rowBytes());
  }

  const BufferGeometry geometry;
  PrivateHandle handle;
  std::unique_ptr<BufferBacking> backing;  ///< null when the allocation failed
  Coherence coherence;
  uint64_t digest = 0;  ///< of the CPU's pixels at the last transfer, for watched images
};

GraphicBuffer::GraphicBuffer(uint32_t width, uint32_t height, int format, uint32_t usage)
    : state_(std::make_unique<State>(LayOut(width, height), usage)) {
  if (format != HAL_PIXEL_FORMAT_RGBA_8888 || state_->geometry.size == 0) return;
  std::unique_ptr<BufferBacking> memory = MakeBacking(state_->geometry);
  if (memory == nullptr) return;
  state_->adopt(std::move(memory));
  BufferRegistry::Instance().add(this, state_->handle.base, &state_->coherence);
}

GraphicBuffer::~GraphicBuffer() {
  BufferRegistry::Instance().remove(this);
}

uint32_t GraphicBuffer::width() const {
  return state_->geometry.width;
}

uint32_t GraphicBuffer::height() const {
  return state_->geometry.height;
}

uint32_t GraphicBuffer::stride() const {
  return state_->geometry.stride;
}

BufferKind GraphicBuffer::kind() const {
  return state_->backing != nullptr ? state_->backing->kind() : BufferKind::Staged;
}

void* GraphicBuffer::getNativeBuffer() {
  return state_.get();
}

const PrivateHandle& GraphicBuffer::handle() const {
  return state_->handle;
}

int GraphicBuffer::lock(uint32_t, void** address) {
  if (address == nullptr) return -EINVAL;
  *address = lockPixels();
  return *address != nullptr ? 0 : -ENOMEM;
}

int GraphicBuffer::unlock() {
  return clean();
}

unsigned char* GraphicBuffer::lockPixels() {
  if (state_->backing == nullptr) return nullptr;
  state_->coherence.lock();
  return state_->backing->address();
}

int GraphicBuffer::clean() {
  if (state_->backing == nullptr) return -ENOMEM;
  return state_->coherence.unlock() ? 0 : -EPERM;
}

EGLImageKHR GraphicBuffer::createImage(EGLDisplay display, const EGLint* attributes) {
  if (state_->backing == nullptr) return EGL_NO_IMAGE_KHR;
  return state_->backing->createImage(display, attributes);
}

void GraphicBuffer::attachTexture(GLuint texture) {
  BufferRegistry::Instance().attach(this, eglGetCurrentContext(), texture);
}

void GraphicBuffer::detachTexture() {
  BufferRegistry::Instance().detach(this);
}

void BeforeDraw() {
  const EGLContext context = eglGetCurrentContext();
  if (context == EGL_NO_CONTEXT) return;
  GLint framebuffer = 0;
  glGetIntegerv(GL_FRAMEBUFFER_BINDING, &framebuffer);
  if (framebuffer == 0) return;  // the window-system framebuffer has no attachment to ask for
  GLint type = GL_NONE;
  glGetFramebufferAttachmentParameteriv(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0,
                                        GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE, &type);
  if (type != GL_TEXTURE) return;
  GLint texture = 0;
  glGetFramebufferAttachmentParameteriv(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0,
                                        GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME, &texture);
  Coherence* const drawn =
      BufferRegistry::Instance().findByTexture(context, static_cast<GLuint>(texture));
  if (drawn != nullptr) drawn->drawnInto();
}

void NoteColorAttachment(GLuint texture) {
  Coherence* const attached =
      BufferRegistry::Instance().findByTexture(eglGetCurrentContext(), texture);
  if (attached != nullptr) attached->watch();
}

const char* BufferKindName(BufferKind kind) {
  switch (kind) {
    case BufferKind::Staged:
      return "staged";
    case BufferKind::MemoryObject:
      return "memobj";
    case BufferKind::DmaBuf:
      return "dmabuf";
    case BufferKind::HardwareBuffer:
      return "hardware buffer";
  }
  return "unknown";
}

}  // namespace lumora::platform
