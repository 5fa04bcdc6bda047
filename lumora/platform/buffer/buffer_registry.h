// SPDX-License-Identifier: Apache-2.0
// The process's live graphic buffers, found by the address of their memory or by their texture.
#ifndef LUMORA_PLATFORM_BUFFER_BUFFER_REGISTRY_H_
#define LUMORA_PLATFORM_BUFFER_BUFFER_REGISTRY_H_

#include <EGL/egl.h>
#include <GLES2/gl2.h>

#include <mutex>
#include <vector>

namespace lumora::platform {

class Coherence;
class GraphicBuffer;

/// Thread-safe. What is found stays valid because a buffer is used and destroyed by one thread.
class BufferRegistry {
 public:
  static BufferRegistry& Instance();

  /// False, with nothing added, where memory is short.
  bool Add(GraphicBuffer* buffer, const void* base, Coherence* coherence);
  /// Forgets the buffer and its texture.
  void Remove(const GraphicBuffer* buffer);

  /// Names the texture of `context` that shows the buffer. A texture shows one buffer: a former
  /// buffer of the same name in the same context (whose context may have died) loses it.
  void Attach(const GraphicBuffer* buffer, EGLContext context, GLuint texture);
  void Detach(const GraphicBuffer* buffer);

  /// Null when no live buffer starts at `base`.
  GraphicBuffer* FindByBase(const void* base);
  /// Null when no live buffer is shown by this texture.
  Coherence* FindByTexture(EGLContext context, GLuint texture);

 private:
  struct Entry {
    GraphicBuffer* buffer;
    const void* base;
    Coherence* coherence;
    EGLContext context;  ///< EGL_NO_CONTEXT while no texture is attached
    GLuint texture;
  };

  Entry* Find(const GraphicBuffer* buffer);

  std::mutex mutex_;
  std::vector<Entry> entries_;  // few: one a live image
};

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_BUFFER_BUFFER_REGISTRY_H_
