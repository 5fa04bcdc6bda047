// SPDX-License-Identifier: Apache-2.0
// Frames between the caller's memory and the engine's images.
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "lumora/convert/sp2yuvxs.h"
#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/engine/internal/packed_targets.h"
#include "lumora/geometry/frame_sizes.h"
#include "lumora/geometry/lens.h"
#include "lumora/gl/cache_clean.h"
#include "lumora/gl/log.h"
#include "lumora/platform/gl_api.h"

LUMORA_LOG_TAG("Lumora");

namespace android {
namespace {

/// A destination plane: the caller's, or a buffer of its own that nobody releases.
struct PlaneWriter {
  unsigned char* data;
  size_t capacity;  ///< bytes; the caller's planes are as large as they have to be

  static PlaneWriter For(void* plane, size_t replacement_size) {
    if (plane != nullptr) return {static_cast<unsigned char*>(plane), SIZE_MAX};
    auto* replacement = static_cast<unsigned char*>(std::malloc(replacement_size));
    return {replacement, replacement != nullptr ? replacement_size : 0};
  }

  /// Copies rows of `width` bytes, as many as fit.
  void CopyRows(const unsigned char* source, int source_stride, int width, int rows) const {
    const auto row_bytes = static_cast<size_t>(width);
    for (int row = 0; row < rows; ++row) {
      const size_t offset = static_cast<size_t>(row) * row_bytes;
      if (offset + row_bytes > capacity) return;
      std::memcpy(data + offset, source + static_cast<ptrdiff_t>(row) * source_stride, row_bytes);
    }
  }
};

/// The input image for a frame to be expanded into; one that fills it whole fetches nothing first.
unsigned char* LockInputImage(const GPUBeautyFace& engine) {
  SEGLImage* const image = engine.m_pRGBImage;
  if (image == nullptr) return nullptr;
  const bool overwrites = lumora::ExpandsExactly(engine.m_nSrcWidth, engine.m_nSrcHeight) &&
                          lumora::RoundUpTo32(engine.m_nSrcWidth) == engine.m_nSrcWidth;
  return overwrites && image->m_spBuffer ? image->m_spBuffer->lockForOverwrite() : image->Lock();
}

}  // namespace

int GPUBeautyFace::LoadPreviewFrameBuffer(void* pSrc) {
  unsigned char* texels = pSrc != nullptr ? LockInputImage(*this) : nullptr;
  if (texels == nullptr) {
    LOGE("[%s] program or image is missing", "LoadPreviewFrameBuffer");
    return 0;
  }
  sp2yuvxs(texels, lumora::RoundUpTo32(m_nSrcWidth), pSrc, m_nSrcWidth, m_nSrcHeight, 0, 0,
           m_nSrcWidth, m_nSrcHeight);
  return m_pRGBImage->Unlock() >= 0 ? 1 : 0;
}

int GPUBeautyFace::CopyMemYUVfromSrcTexture(void* pDstY, void* pDstUV) {
  if (m_pRGBImage == nullptr) {
    LOGE("[SetSrcImage]g_pSrcTexture is not initiated");
    return 0;
  }
  if (DrawRGBtoYY(-1) == 0 || DrawRGBtoUV(-1) == 0) return 0;
  glFlush();
  glFinish();
  return MemcpyYUV(pDstY, pDstUV);
}

int GPUBeautyFace::MemcpyYUV(void* pDstY, void* pDstUV) {
  namespace internal = lumora::engine;
  const size_t first_luma_size = internal::FirstLumaSize(*this);
  const int texels = m_nProcWidth / 4;
  const internal::PlanePart whole_luma{static_cast<unsigned char*>(pDstY),
                                       {0, 0, texels, m_nProcHeight}};
  const internal::PlanePart whole_chroma{static_cast<unsigned char*>(pDstUV),
                                         {0, 0, texels, m_nProcHeight / 2}};
  if (m_nProcWidth % 4 == 0 && internal::ReadPacked(*this, whole_luma, whole_chroma, texels)) {
    return 1;
  }
  const unsigned char* luma = m_pYYYYImage != nullptr ? m_pYYYYImage->Lock() : nullptr;
  const unsigned char* chroma = m_pUVUVImage != nullptr ? m_pUVUVImage->Lock() : nullptr;
  if (luma == nullptr || chroma == nullptr) {
    LOGE("[%s] program or image is missing", "MemcpyYUV");
    return 0;
  }
  // NOLINTBEGIN(clang-analyzer-unix.Malloc): the replacement buffers are left to nobody.
  PlaneWriter::For(pDstY, first_luma_size)
      .CopyRows(luma, m_nYYYYWidth, m_nProcWidth, m_nProcHeight);
  PlaneWriter::For(pDstUV, first_luma_size / 2)
      .CopyRows(chroma, m_nUVUVWidth, m_nProcWidth, m_nProcHeight / 2);
  return 1;
  // NOLINTEND(clang-analyzer-unix.Malloc)
}

int GPUBeautyFace::clean_buffer(void* base, int flags, int offset, int fd, int size) {
  if (lumora::CleanBuffer(base, flags, offset, fd, size) >= 0) return 1;
  LOGD("[%s] clean buffer error", "clean_buffer");
  return 0;
}

int GPUBeautyFace::clear_cache(void* base, int fd, int width, int height) {
  const int flags = m_pYYYYImage != nullptr ? m_pYYYYImage->GetFlag() : 0;
  clean_buffer(base, flags, 0, fd, static_cast<int>(static_cast<double>(width) * height * 1.5));
  return 1;
}

int GPUBeautyFace::SetCropVertexCoord(float u, float v, float* pOut) {
  lumora::CropCorner(u, v, pOut);
  return 1;
}

}  // namespace android
