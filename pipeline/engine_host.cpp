#include "pipeline/engine_host.h"

#include <chrono>
#include <initializer_list>
#include <string>

#include "lumora/gl/gl_program.h"
#include "lumora/gl/segl_image.h"
#include "lumora/platform/display.h"
#include "lumora/platform/gl_api.h"
#include "lumora/platform/graphic_buffer.h"
#include "lumora/platform/settings.h"
#include "pipeline/face_record.h"
#include "pipeline/status.h"

namespace lumora {
namespace {

/// Milliseconds since the last reading.
class Stopwatch {
 public:
  double Lap() {
    const auto now = Clock::now();
    const std::chrono::duration<double, std::milli> passed = now - last_;
    last_ = now;
    return passed.count();
  }

 private:
  using Clock = std::chrono::steady_clock;
  Clock::time_point last_ = Clock::now();
};

int MaxTextureSize() {
  GLint size = 0;
  glGetIntegerv(GL_MAX_TEXTURE_SIZE, &size);
  return size;
}

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

bool Loaded(const GLProgram* program) {
  return program != nullptr && program->m_hProgram != 0 &&
         program->m_hProgram != static_cast<unsigned int>(-1);
}

bool HasMemory(const SEGLImage* image) {
  return image != nullptr && image->m_pData != nullptr;
}

bool Drawable(GLuint framebuffer) {
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  return glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
}

/// Forgets errors of earlier calls. A lost context reports errors for ever, hence the bound.
void ClearGlErrors() {
  for (int i = 0; i < 16 && glGetError() != GL_NO_ERROR; ++i) {
  }
}

}  // namespace

EngineHost::EngineHost() = default;

Status EngineHost::Slim(const ConstFrameView& in, const FrameView& out,
                        std::vector<FACE_INFO_t>& records, Report* report) {
  if (Status status = PreparePreview(AlignedSize(in.width), AlignedSize(in.height)); !status.ok()) {
    return status;
  }
  Stopwatch stopwatch;
  frame_.Load(in);
  report->upload_ms = stopwatch.Lap();

  SmoothSampling();
  ClearGlErrors();
  // The engine writes the luma over its input and the chroma to its output: the frame again.
  const int done =
      records.size() == 1
          ? engine_.FaceProcess(frame_.luma(), frame_.chroma(), kBeautyLevel, records.front(), 0)
          : engine_.FaceProcessMultiface(frame_.luma(), frame_.chroma(), kBeautyLevel,
                                         records.data(), static_cast<int>(records.size()), 0);
  const GLenum error = glGetError();
  report->engine_ms = stopwatch.Lap();
  if (done == 0) {
    return Failure(StatusCode::EngineFailed,
                   "the engine refused the frame; set LUMORA_LOG=debug to see why");
  }
  if (error != GL_NO_ERROR) {
    preview_width_ = preview_height_ = 0;  // sets the engine up anew for the next frame
    return Failure(StatusCode::EngineFailed,
                   "the driver failed to draw the frame (GL error " + std::to_string(error) + ")");
  }

  frame_.Store(out);
  report->download_ms = stopwatch.Lap();
  report->chain = "preview";
  report->buffer_kind = platform::BufferKindName(engine_.m_pRGBImage->m_spBuffer->kind());
  report->faces = static_cast<int>(records.size());
  return {};
}

Status EngineHost::PreparePreview(int width, int height) {
  if (width == preview_width_ && height == preview_height_) return {};
  const int largest = MaxTextureSize();
  if (width > largest || height > largest) {
    return Failure(StatusCode::TooLarge,
                   "the frame takes " + std::to_string(width) + " x " + std::to_string(height) +
                       " pixels, but the driver's textures end at " + std::to_string(largest));
  }
  preview_width_ = preview_height_ = 0;
  int stride = 0;
  engine_.Init(width, height, width, height, &stride, false);
  if (const char* fault = PreviewFault(); fault != nullptr) {
    return Failure(StatusCode::EngineFailed, std::string("the engine cannot be set up: ") + fault +
                                                 "; set LUMORA_LOG=debug to see why");
  }
  preview_width_ = width;
  preview_height_ = height;
  return {};
}

/// What the engine lacks for the preview chain, null when nothing. Its set-up itself does not tell.
const char* EngineHost::PreviewFault() {
  if (!Loaded(engine_.m_pProgRGBtoY) || !Loaded(engine_.m_pProgRGBtoUV) ||
      !Loaded(engine_.m_pProgCheekSlimmer)) {
    return "a shader program could not be loaded";
  }
  if (!HasMemory(engine_.m_pRGBImage) || !HasMemory(engine_.m_pWorkImage[0]) ||
      !HasMemory(engine_.m_pWorkImage[1]) || !HasMemory(engine_.m_pYYYYImage) ||
      !HasMemory(engine_.m_pUVUVImage)) {
    return "there is not enough memory for its images";
  }
  if (!Drawable(engine_.m_hWorkFbo[0]) || !Drawable(engine_.m_hWorkFbo[1]) ||
      !Drawable(engine_.m_hYYYYFbo) || !Drawable(engine_.m_hUVUVFbo)) {
    return "the driver cannot draw into its images";
  }
  return nullptr;
}

/// The engine's packing passes leave images with nearest filters, so that a warp would be drawn
/// smoothly in the first frame only. This makes every frame as smooth as the first, and its result
/// independent of the frames before it.
void EngineHost::SmoothSampling() {
  for (const SEGLImage* image :
       {engine_.m_pRGBImage, engine_.m_pWorkImage[0], engine_.m_pWorkImage[1]}) {
    glBindTexture(GL_TEXTURE_2D, image->m_hTexture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
  }
}

DeviceInfo EngineHost::Device() {
  DeviceInfo info;
  info.display = platform::DisplayOrigin();
  info.vendor = GlText(GL_VENDOR);
  info.renderer = GlText(GL_RENDERER);
  info.version = GlText(GL_VERSION);
  info.buffer_kind = platform::BufferKindName(platform::PreferredBufferKind());
  info.max_texture_size = MaxTextureSize();
  info.cache_directory = platform::CacheDirectory();
  info.program_binaries = OffersProgramBinaries();
  return info;
}

}  // namespace lumora
