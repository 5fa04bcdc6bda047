#include "lumora/platform/graphic_buffer.h"

#include <algorithm>
#include <cerrno>
#include <vector>

#include "lumora/platform/buffer/backing_factory.h"
#include "lumora/platform/buffer/buffer_geometry.h"
#include "lumora/platform/buffer/buffer_registry.h"
#include "lumora/platform/buffer/coherence.h"
#include "lumora/platform/buffer/pixel_digest.h"
#include "lumora/platform/immortal.h"
#include "lumora/platform/out_of_memory.h"

namespace lumora::platform {

struct GraphicBuffer::State final : CoherentMemory {
  State(const BufferGeometry& layout, uint32_t usage) : geometry(layout), coherence(*this) {
    handle.flags = static_cast<int>(usage);
  }

  // What stands in where there is no memory for even this; it never gets a backing, so that nothing
  // is written to it.
  static State& Missing() {
    static Immortal<State> state(LayOut(0, 0), 0U);
    return *state;
  }
  static State* Make(const BufferGeometry& layout, uint32_t usage) {
    return UnlessOutOfMemory(&Missing(), [&] { return new State(layout, usage); });
  }

  // So that digests can be remembered at any time. False where memory is short.
  bool reserveDigests() {
    return UnlessOutOfMemory(false, [this] {
      row_digests.reserve(rows());
      return true;
    });
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
    if (backing->kind() == BufferKind::Staged) rememberRows(0, rows());
  }
  bool cpuChanged() override {
    if (backing->kind() != BufferKind::Staged) return false;
    for (size_t row = 0; row < rows(); ++row) {
      if (row_digests.size() <= row || row_digests[row] != rowDigest(row)) return true;
    }
    return false;
  }

  // Whether the GPU's side is known to be the newer one.
  bool drawn() const { return coherence.state() == Coherence::State::Gpu; }

  size_t rows() const { return geometry.height; }
  void rememberRows(size_t first, size_t count) {
    row_digests.resize(rows());
    for (size_t row = first; row < first + count; ++row) row_digests[row] = rowDigest(row);
  }
  uint64_t rowDigest(size_t row) const {
    const unsigned char* pixels = backing->address() + row * geometry.rowBytes();
    return PixelDigest(pixels, size_t{geometry.width} * kPixelBytes, 1, geometry.rowBytes());
  }

  // The part of a rectangle that lies in the image.
  PixelRectangle clip(int x, int y, int width, int height) const {
    const PixelRectangle whole = geometry.whole();
    return CutToImage({x, y, width, height}, whole.width, whole.height);
  }

  const BufferGeometry geometry;
  PrivateHandle handle;
  std::unique_ptr<BufferBacking> backing;  ///< null when the allocation failed
  Coherence coherence;
  std::vector<uint64_t> row_digests;  ///< of the CPU's rows at the last transfer, if watched
};

GraphicBuffer::GraphicBuffer(uint32_t width, uint32_t height, int format, uint32_t usage)
    : state_(State::Make(LayOut(width, height), usage)) {
  const bool missing = state_.get() == &State::Missing();
  if (missing || format != HAL_PIXEL_FORMAT_RGBA_8888 || state_->geometry.size == 0) return;
  std::unique_ptr<BufferBacking> memory = MakeBacking(state_->geometry);
  if (memory == nullptr || !state_->reserveDigests()) return;
  if (!BufferRegistry::Instance().add(this, memory->address(), &state_->coherence)) return;
  state_->adopt(std::move(memory));
}

GraphicBuffer::~GraphicBuffer() {
  BufferRegistry::Instance().remove(this);
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
  // Bytes that only may be older than the GPU's are still the ones that the CPU left here.
  const bool stale = !state_->coherence.lock() && state_->drawn();
  return stale ? nullptr : state_->backing->address();
}

unsigned char* GraphicBuffer::lockForOverwrite() {
  if (state_->backing == nullptr) return nullptr;
  // What is drawn need not come here, but what is written must be able to go there.
  if (state_->drawn() && !state_->backing->fetch({0, 0, 0, 0})) return nullptr;
  return state_->coherence.lockForOverwrite() ? state_->backing->address() : nullptr;
}

int GraphicBuffer::readInto(const PixelRectangle& part, unsigned char* pixels, int stride) {
  if (state_->backing == nullptr) return -ENOMEM;
  const PixelRectangle inside = state_->clip(part.x, part.y, part.width, part.height);
  if (state_->drawn()) {
    return state_->backing->fetchInto({pixels, stride}, inside) ? 0 : -EPERM;
  }
  // Only a lock tells which side is newer.
  if (!state_->coherence.lock()) return -EPERM;
  CopyPart({state_->backing->address(), static_cast<int>(state_->geometry.stride)},
           {pixels, stride}, inside);
  return 0;
}

int GraphicBuffer::writeFrom(const PixelRectangle& part, const unsigned char* pixels, int stride) {
  if (state_->backing == nullptr) return -ENOMEM;
  const PixelRectangle inside = state_->clip(part.x, part.y, part.width, part.height);
  // The backing only reads it.
  if (!state_->backing->publishFrom({const_cast<unsigned char*>(pixels), stride}, inside)) {
    return -EPERM;
  }
  state_->coherence.drawnInto();
  return 0;
}

int GraphicBuffer::clean() {
  if (state_->backing == nullptr) return -ENOMEM;
  return state_->coherence.unlock() ? 0 : -EPERM;
}

unsigned char* GraphicBuffer::lockPart(int x, int y, int width, int height) {
  if (state_->backing == nullptr) return nullptr;
  const PixelRectangle part = state_->clip(x, y, width, height);
  const bool ready =
      state_->drawn() ? state_->backing->fetch(part) : state_->backing->beginAccess();
  return ready ? state_->backing->address() : nullptr;
}

int GraphicBuffer::cleanPart(int x, int y, int width, int height) {
  if (state_->backing == nullptr) return -ENOMEM;
  const PixelRectangle part = state_->clip(x, y, width, height);
  if (part.width == 0 || part.height == 0) return 0;
  if (!state_->backing->publish(part)) return -EPERM;
  // Bytes that were handed out whole and not yet cleaned stay to be noticed.
  if (!state_->row_digests.empty() && state_->coherence.state() != Coherence::State::Cpu) {
    state_->rememberRows(static_cast<size_t>(part.y), static_cast<size_t>(part.height));
  }
  return 0;
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

}  // namespace lumora::platform
