// SPDX-License-Identifier: Apache-2.0
// YUV frames to RGB and HSI images on the GPU.
#ifndef LUMORA_CONVERT_GPU_COLOR_CONVERTER_H_
#define LUMORA_CONVERT_GPU_COLOR_CONVERTER_H_

#include <EGL/egl.h>
#include <GLES2/gl2.h>

#include "lumora/export.h"
#include "lumora/gl/segl_image.h"

namespace android {

/// A small engine of its own: turns one semi-planar YUV 4:2:0 frame (luma plane, then pairs of Cr
/// and Cb) into two images that the CPU can read.
///
/// A client constructs it, calls Init, then per frame ConvertYUV and the two getters, then DeInit
/// (optional: the destructor does it).
///
/// Thread and context: the constructor makes a context of its own current on the calling thread;
/// every later call, the destructor included, comes from that thread. Any number of converters and
/// beauty engines may live in one process, one a thread.
///
/// Failure: nothing throws; the log (tag "GPUColorConvert") tells. A converter whose construction
/// failed (`m_bEGLReady` false) is good for destruction only.
class LUMORA_API GPUColorConverter {
 public:
  GPUColorConverter();
  ~GPUColorConverter();

  GPUColorConverter(const GPUColorConverter&) = delete;
  GPUColorConverter& operator=(const GPUColorConverter&) = delete;

  /// Prepares for frames of that size, in pixels; the width is a multiple of 16. A set-up that is
  /// still there is released first. `*pStride` receives the width rounded up to 32 (a null pointer:
  /// nothing). Always returns 1; a program that failed shows in the log.
  int Init(int nSrcImageWidth, int nSrcImageHeight, int* pStride);
  /// Releases what Init made. Returns 1.
  int DeInit();

  // Steps of the set-up. The last two return 0 when a program or location is missing.
  int InitTexture();
  int LoadShader();
  int InitShader();

  /// Converts one tightly packed frame and waits for the GPU. Rows of `m_nYYYYWidth` texels are
  /// expanded: those equal the image's rows for widths whose multiple of 32 is one of 128. Returns
  /// 1, or 0 before Init and without a frame.
  int ConvertYUV(void* pSrc);

  /// The RGB image: R, G, B, A bytes, rows of the width rounded up to 32 pixels. Null before Init,
  /// and when the converter's context, in which it was drawn, is not current. Valid until DeInit;
  /// read it after ConvertYUV and ask again for each frame.
  unsigned char* GetRGB_Image();
  /// The HSI image: hue (255 is a turn), saturation, intensity, 255; rows as above.
  unsigned char* GetHSI_Image();

  // The two passes. Set: 0 when the program is not valid. Draw: always 1.
  int SetColorConvertYUV2RGBShader();
  int SetColorConvertRGB2HSIShader();
  int DrawColorConvertYUV2RGB();
  int DrawColorConvertRGB2HSI();

  /// Writes the CPU's cache of a buffer back to memory. Returns 1, or 0 (DEBUG) when no buffer
  /// starts at `base`.
  int clean_buffer(void* base, int flags, int offset, int fd, int size);

  EGLDisplay m_eglDisplay;
  EGLConfig m_eglConfig;
  EGLSurface m_eglSurface;  ///< 1 x 1 pbuffer
  EGLContext m_eglContext;
  bool m_bEGLReady;  ///< the context was made current

  int m_nSrcWidth, m_nSrcHeight;          ///< the frame, pixels; -1 before Init, like all sizes
  int m_nProcWidth, m_nProcHeight;        ///< the same
  int m_nYYYYWidth, m_nYYYYHeight;        ///< row length of the expansion, texels; height
  int m_nUVUVWidth, m_nUVUVHeight;        ///< same row length; the height is never set
  int m_nAlignedWidth, m_nAlignedHeight;  ///< the frame, not rounded

  GLuint m_hFrameBuffer[2];      ///< into the RGB image, into the HSI image; 0 when unset
  SEGLImage* m_pOutputImage[2];  ///< owned: RGB, HSI
  SEGLImage* m_pInputImage;      ///< owned: the expanded frame
  GLuint m_hYUV2RGBProgram;      ///< 0 when unset
  GLint m_nYUV2RGBVerCoordLoc, m_nYUV2RGBTexCoordLoc, m_nYUV2RGBTextureSlot, m_nYUV2RGBMatrixSlot;
  GLuint m_hRGB2HSIProgram;  ///< 0 when unset
  GLint m_nRGB2HSIVerCoordLoc, m_nRGB2HSITexCoordLoc, m_nRGB2HSITextureSlot;
  bool m_bCreated;
  bool m_bIsInit;

 private:
  bool m_bDisplayReferenced;  ///< the display was initialised and is terminated with the converter
};

}  // namespace android

#endif  // LUMORA_CONVERT_GPU_COLOR_CONVERTER_H_
