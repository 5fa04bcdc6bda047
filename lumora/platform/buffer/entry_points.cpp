// SPDX-License-Identifier: Apache-2.0
// What programs call of a graphic buffer, over its state.
#include "lumora/platform/graphic_buffer.h"

#include <cerrno>
#include <utility>

#include "lumora/platform/buffer/buffer_backing.h"
#include "lumora/platform/buffer/buffer_registry.h"
#include "lumora/platform/buffer/buffer_state.h"
#include "lumora/platform/buffer/cpu_access.h"

namespace lumora::platform {

GraphicBuffer::GraphicBuffer(uint32_t width, uint32_t height, int format, uint32_t usage)
    : state_(State::Make(LayOut(width, height), usage)) {
  const bool missing = state_.get() == &State::Missing();
  if (missing || format != HAL_PIXEL_FORMAT_RGBA_8888 || state_->geometry.size == 0) return;
  std::unique_ptr<BufferBacking> memory = MakeBacking(state_->geometry);
  if (memory == nullptr || !state_->ReserveDigests()) return;
  if (!BufferRegistry::Instance().Add(this, memory->address(), &state_->coherence)) return;
  state_->Adopt(std::move(memory));
}

GraphicBuffer::~GraphicBuffer() {
  BufferRegistry::Instance().Remove(this);
  if (state_.get() == &State::Missing()) static_cast<void>(state_.release());
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
  if (*address != nullptr) return 0;
  return state_->backing == nullptr ? -ENOMEM : -EPERM;
}

int GraphicBuffer::unlock() {
  return clean();
}

unsigned char* GraphicBuffer::lockPixels() {
  if (state_->backing == nullptr) return nullptr;
  Coherence& coherence = state_->coherence;
  // Bytes that only may be older than the GPU's are still the ones that the CPU left here.
  const bool stale =
      !coherence.Write(coherence.whole()) && coherence.state() == Coherence::State::Gpu;
  return stale ? nullptr : state_->backing->address();
}

int GraphicBuffer::clean() {
  if (state_->backing == nullptr) return -ENOMEM;
  return state_->coherence.Released(state_->coherence.whole()) ? 0 : -EPERM;
}

unsigned char* GraphicBuffer::lockForOverwrite() {
  return CpuAccess(this, CpuUse::Overwrite).pixels();  // clean publishes, not this access
}

int GraphicBuffer::readInto(const PixelRectangle& part, unsigned char* pixels, int stride) {
  if (state_->backing == nullptr) return -ENOMEM;
  return state_->coherence.ReadInto({pixels, stride}, state_->Part(part).part) ? 0 : -EPERM;
}

int GraphicBuffer::writeFrom(const PixelRectangle& part, const unsigned char* pixels, int stride) {
  if (state_->backing == nullptr) return -ENOMEM;
  // It is only read.
  const CpuImage image{const_cast<unsigned char*>(pixels), stride};
  return state_->coherence.WriteFrom(image, state_->Part(part).part) ? 0 : -EPERM;
}

unsigned char* GraphicBuffer::lockPart(int x, int y, int width, int height) {
  return CpuAccess(this, CpuUse::Write, {x, y, width, height}).pixels();  // cleanPart publishes
}

int GraphicBuffer::cleanPart(int x, int y, int width, int height) {
  if (state_->backing == nullptr) return -ENOMEM;
  return state_->coherence.Released(state_->Part({x, y, width, height})) ? 0 : -EPERM;
}

EGLImageKHR GraphicBuffer::createImage(EGLDisplay display, const EGLint* attributes) {
  if (state_->backing == nullptr) return EGL_NO_IMAGE_KHR;
  return state_->backing->CreateImage(display, attributes);
}

void GraphicBuffer::attachTexture(GLuint texture) {
  BufferRegistry::Instance().Attach(this, eglGetCurrentContext(), texture);
}

void GraphicBuffer::detachTexture() {
  BufferRegistry::Instance().Detach(this);
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
      BufferRegistry::Instance().FindByTexture(context, static_cast<GLuint>(texture));
  if (drawn != nullptr) drawn->Drawn();
}

void NoteColorAttachment(GLuint texture) {
  Coherence* const attached =
      BufferRegistry::Instance().FindByTexture(eglGetCurrentContext(), texture);
  if (attached != nullptr) attached->Watch();
}

}  // namespace lumora::platform
