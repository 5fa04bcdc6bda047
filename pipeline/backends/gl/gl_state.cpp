// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/gl/gl_state.h"

#include <string>
#include <string_view>

#include "lumora/platform/buffer_kind.h"
#include "lumora/platform/display.h"
#include "lumora/platform/settings.h"
#include "pipeline/support/failure.h"

namespace lumora {
namespace {

int MaxTextureSize() {
  GLint size = 0;
  glGetIntegerv(GL_MAX_TEXTURE_SIZE, &size);
  return size;
}

/// One of the driver's texts, empty when there is none.
std::string GlText(GLenum name) {
  const GLubyte* const text = glGetString(name);
  return text == nullptr ? "" : reinterpret_cast<const char*>(text);
}

bool OffersProgramBinaries() {
  const std::string extensions = " " + GlText(GL_EXTENSIONS) + " ";
  if (extensions.find(" GL_OES_get_program_binary ") == std::string::npos) return false;
  GLint formats = 0;
  glGetIntegerv(GL_NUM_PROGRAM_BINARY_FORMATS_OES, &formats);
  return formats > 0;
}

DisplaySource DisplayHere() {
  const std::string_view origin = platform::DisplayOrigin();
  for (const DisplaySource source : {DisplaySource::Default, DisplaySource::Device,
                                     DisplaySource::SoftwareDevice, DisplaySource::Surfaceless}) {
    if (origin == Name(source)) return source;
  }
  return DisplaySource::None;
}

}  // namespace

DeviceInfo DeviceHere() {
  DeviceInfo info;
  info.device = Device::Gl;
  info.display = DisplayHere();
  info.vendor = GlText(GL_VENDOR);
  info.renderer = GlText(GL_RENDERER);
  info.version = GlText(GL_VERSION);
  info.buffer_kind = BufferKindHere();
  info.max_texture_size = MaxTextureSize();
  info.cache_directory = platform::CacheDirectory();
  info.program_binaries = OffersProgramBinaries();
  return info;
}

BufferKind BufferKindHere() {
  switch (platform::PreferredBufferKind()) {
    case platform::BufferKind::Staged:
      return BufferKind::Staged;
    case platform::BufferKind::MemoryObject:
      return BufferKind::MemoryObject;
    case platform::BufferKind::DmaBuf:
      return BufferKind::DmaBuf;
    case platform::BufferKind::HardwareBuffer:
      return BufferKind::HardwareBuffer;
  }
  return BufferKind::None;
}

void ClearGlErrors() {
  // A lost context reports errors for ever, hence the bound.
  for (int i = 0; i < 16 && glGetError() != GL_NO_ERROR; ++i) {
  }
}

Status CheckGlErrors() {
  const GLenum error = glGetError();
  if (error == GL_NO_ERROR) return {};
  return Failure(StatusCode::EngineFailed,
                 "the driver failed to draw the frame (GL error " + std::to_string(error) + ")");
}

Status CheckTextureSize(int width, int height) {
  const int largest = MaxTextureSize();
  if (width <= largest && height <= largest) return {};
  return Failure(StatusCode::TooLarge,
                 "the frame takes " + std::to_string(width) + " x " + std::to_string(height) +
                     " pixels, but the driver's textures end at " + std::to_string(largest));
}

}  // namespace lumora
