// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/buffer/buffer_registry.h"

#include <algorithm>

#include "lumora/platform/immortal.h"
#include "lumora/platform/out_of_memory.h"

namespace lumora::platform {

BufferRegistry& BufferRegistry::Instance() {
  static Immortal<BufferRegistry> registry;
  return *registry;
}

bool BufferRegistry::Add(GraphicBuffer* buffer, const void* base, Coherence* coherence) {
  const std::lock_guard<std::mutex> guard(mutex_);
  return UnlessOutOfMemory(false, [&] {
    entries_.push_back({buffer, base, coherence, EGL_NO_CONTEXT, 0});
    return true;
  });
}

void BufferRegistry::Remove(const GraphicBuffer* buffer) {
  const std::lock_guard<std::mutex> guard(mutex_);
  entries_.erase(std::remove_if(entries_.begin(), entries_.end(),
                                [&](const Entry& entry) { return entry.buffer == buffer; }),
                 entries_.end());
}

void BufferRegistry::Attach(const GraphicBuffer* buffer, EGLContext context, GLuint texture) {
  const std::lock_guard<std::mutex> guard(mutex_);
  for (Entry& entry : entries_) {
    if (entry.context == context && entry.texture == texture) entry.context = EGL_NO_CONTEXT;
  }
  if (Entry* entry = Find(buffer)) {
    entry->context = context;
    entry->texture = texture;
  }
}

void BufferRegistry::Detach(const GraphicBuffer* buffer) {
  const std::lock_guard<std::mutex> guard(mutex_);
  if (Entry* entry = Find(buffer)) entry->context = EGL_NO_CONTEXT;
}

GraphicBuffer* BufferRegistry::FindByBase(const void* base) {
  const std::lock_guard<std::mutex> guard(mutex_);
  for (const Entry& entry : entries_) {
    if (entry.base == base) return entry.buffer;
  }
  return nullptr;
}

Coherence* BufferRegistry::FindByTexture(EGLContext context, GLuint texture) {
  if (context == EGL_NO_CONTEXT) return nullptr;
  const std::lock_guard<std::mutex> guard(mutex_);
  for (const Entry& entry : entries_) {
    if (entry.context == context && entry.texture == texture) return entry.coherence;
  }
  return nullptr;
}

BufferRegistry::Entry* BufferRegistry::Find(const GraphicBuffer* buffer) {
  for (Entry& entry : entries_) {
    if (entry.buffer == buffer) return &entry;
  }
  return nullptr;
}

}  // namespace lumora::platform
