// SPDX-License-Identifier: Apache-2.0
// The beauty engine: face effects on camera frames, on the GPU.
#ifndef LUMORA_ENGINE_GPU_BEAUTY_FACE_H_
#define LUMORA_ENGINE_GPU_BEAUTY_FACE_H_

#include <EGL/egl.h>
#include <GLES2/gl2.h>

#include "lumora/engine/engine_types.h"
#include "lumora/engine/face_info.h"
#include "lumora/export.h"
#include "lumora/gl/gl_program.h"
#include "lumora/gl/segl_image.h"

namespace android {

/// One engine: for the preview stream of a camera (Init), or for one still capture (InitCapture).
///
/// Frames are semi-planar YUV 4:2:0: a luma plane of width x height bytes, directly followed by a
/// chroma plane of height / 2 rows of width bytes, each holding width / 2 pairs of Cr and Cb, Cr
/// first. Samples are full-range. Rows are tightly packed (stride = width) unless said otherwise.
///
/// Life: construct; Init, frames, DeInit; or InitCapture, the capture, DeInitCapture; destroy.
/// Preview and capture set-ups must not overlap. Before destruction a capture is released by
/// DeInitCapture: the destructor alone runs DeInit and leaves the programs and plane textures that
/// only captures have.
///
/// Thread and context: the constructor makes a context of its own current on the calling thread,
/// and every later call, the destructor included, must come from that thread. Keep one live engine
/// a thread: a second one takes the thread's current context away from the first. Engines of
/// different threads are independent of each other.
///
/// Failure: nothing throws. Calls return 0 where said so, and the log (tag "Lumora") tells why.
/// Operations whose program or image does not exist do nothing, say so at ERROR and return 0. Where
/// memory is short a set-up lacks that program or image, or does without the program cache.
class LUMORA_API GPUBeautyFace {
 public:
  /// Builds the context. When any step fails the object is left half-built with `m_bEGLReady` false
  /// and nothing but destruction is of use.
  GPUBeautyFace();
  /// Releases a preview set-up if there is one, then the context.
  ~GPUBeautyFace();

  GPUBeautyFace(const GPUBeautyFace&) = delete;
  GPUBeautyFace& operator=(const GPUBeautyFace&) = delete;

  // ---- Set-up -----------------------------------------------------------------------------------

  // clang-format off
  /// Prepares the preview path; a set-up that is still there is released first.
  ///   nSrcImage*  size of the caller's frames, pixels; the width is even and at least 16
  ///   proc*       size of the result, normally the same; a result that is wider in shape than the
  ///               source lays the frame across (`m_bRotate`)
  ///   pStride     with colorCvt: receives the source width rounded up to 32; else not written
  ///   colorCvt    the caller fills the input image through LoadPreviewFrameBuffer and ConvertYUV,
  ///               and processing calls do not upload the frame again
  /// Always returns 1: a texture or program that failed shows in the log and in the drawing calls.
  // clang-format on
  int Init(int nSrcImageWidth, int nSrcImageHeight, int procWidth, int procHeight, int* pStride,
           bool colorCvt);

  // clang-format off
  /// Prepares a still capture. Captures wider than 1280 pixels are processed in blocks of 384 x
  /// 384, smaller ones at once (at most 2048 x 1536).
  ///   pY, pCbCr      the frame's planes; read during this call when blockMode is false
  ///   width, height  size of the capture, pixels
  ///   pStride        with blockMode: receives the width rounded up to 32; else not written
  ///   blockMode      true: the frame goes through the HSI chain, with a store of all of it;
  ///                  false: its planes become two textures
  /// Always returns 1, as Init does. A preview set-up must have been released before.
  // clang-format on
  int InitCapture(void* pY, void* pCbCr, int width, int height, int* pStride, bool blockMode);

  /// Releases what Init made. Returns 1.
  int DeInit();
  /// Releases what InitCapture made, except `m_spLargeBuffer`, which the next large capture
  /// replaces. Returns 1.
  int DeInitCapture();

  // Steps of the set-up: 1 on success, 0 on failure.
  int InitTexture();
  int InitTextureLarge(int width, int height);
  int InitTextureLarge(void* pY, void* pCbCr, int width, int height);
  int InitShader();
  int InitShaderLarge();
  int InitColorCvtShader();

  // ---- Frame transfer and colour passes ---------------------------------------------------------

  /// Expands a caller's tightly packed frame of the source size into the input image. Returns 1, or
  /// 0 without an input image or frame.
  int LoadPreviewFrameBuffer(void* pSrc);

  /// Preview, colour-convert mode: input image to RGB (work image 0) and HSI (work image 1); waits
  /// for the GPU. Returns 1, or 0 without an input image.
  int ConvertYUV();
  /// Preview, colour-convert mode: the HSI result back to YUV in the input image; waits for the
  /// GPU. Returns 1, or 0 without a result image.
  int ConvertHSItoYUV();

  // Single passes over a whole image: 1, or 0 when a program or image is missing.
  int DrawColorConvertYUV2RGB();  ///< input image to work image 0
  int DrawColorConvertRGB2HSI();  ///< work image 0 to work image 1
  int DrawColorConvertHSI2YUV();  ///< result to input image, texture coordinates as they are
  int DrawColorConvertYUV2HSI();  ///< input image to work image 0
  /// Packs luma, four samples a texel. nSrc < 1: the input image; else work image (nSrc - 1) mod 2.
  int DrawRGBtoYY(int nSrc);
  /// Packs chroma, two pairs a texel, from the same sources.
  int DrawRGBtoUV(int nSrc);

  /// Packs the input image and copies it to the caller's planes, as MemcpyYUV does. Returns 1, or 0
  /// without an input image.
  int CopyMemYUVfromSrcTexture(void* pDstY, void* pDstUV);

  /// Copies the packed targets to tightly packed planes of `m_nProcWidth` bytes a row:
  /// `m_nProcHeight` rows to pDstY, half as many to pDstUV. A null plane is replaced by a buffer of
  /// the size that the first call in the process needed, filled as far as it goes, and left to
  /// nobody. Returns 1, or 0 with nothing copied: without packed targets, or without the context
  /// when they were drawn.
  int MemcpyYUV(void* pDstY, void* pDstUV);

  /// Block-mode captures: brings the blocks that cover faces back to the caller's planes, whose
  /// rows have the full capture width; the rest of the planes is left as it is. `m_rcFaceProcess`
  /// tells the rectangles; nFaces above 10 is taken as 10 (ERROR). Faces smaller than a twentieth
  /// of the frame height in either direction are skipped; frames must be at least 20 rows high. The
  /// third argument is not used. Returns 1, or 0 outside block mode or when a pass could not run.
  int CopyMemYUVfromSrcTextureLarge(void* pDstY, void* pDstUV, int unused, int nFaces);

  /// Copies a packed RGBA block (blockWidth x blockHeight pixels) into a full RGBA image of
  /// fullWidth pixels a row at (x, y); columns beyond the right edge are left out. The last
  /// argument is not used.
  static void BlockCopyRGBA8888(const unsigned char* pBlock, unsigned char* pFull, int x, int y,
                                int blockWidth, int blockHeight, int fullWidth, int unused);
  /// The opposite direction: fills the block from the full image.
  static void BlockCopyRGBA8888DrawBack(const unsigned char* pFull, unsigned char* pBlock, int x,
                                        int y, int blockWidth, int blockHeight, int fullWidth,
                                        int unused);

  /// Copies `rows` rows of `width` bytes of the packed targets to (x, y) of two planes with
  /// `stride` bytes a row; chroma goes with even rows. The fourth argument is not used. Returns 1,
  /// or 0 without destinations or packed targets.
  int BlockCopyYUV(unsigned char* pDstYStart, unsigned char* pDstUVStart, int stride, int unused,
                   int x, int y, int width, int rows);

  /// Writes the CPU's cache of a buffer back to memory. Returns 1, or 0 (DEBUG) when no buffer
  /// starts at `base`.
  int clean_buffer(void* base, int flags, int offset, int fd, int size);
  /// The same for a frame of width x height x 1.5 bytes. Returns 1.
  int clear_cache(void* base, int fd, int width, int height);

  /// Moves a quad corner (u, v), each 0 .. 1, so that the lens correction crops the bent frame
  /// edges; coordinates other than exactly 0 and 1 pass unchanged. Writes two floats. Returns 1.
  int SetCropVertexCoord(float u, float v, float* pOut);

  // ---- Face slimming ----------------------------------------------------------------------------

  /// Turns face measures into the warp of `m_pProgCheekSlimmer`. Measures are pixels of the frame;
  /// roll is degrees; see FACE_INFO_t. A face with dist, loc_x or loc_y of 0 or less leaves the
  /// warp of the previous call. Returns 1, or 0 without the program.
  int SetParameters(int loc_x, int loc_y, int dist, int roll, int chin_dist, int Beauty_Level,
                    int shapetype, bool bLarge, float dist_level_ratio);

  /// The same from a face record; its distances count only when it says they are valid. `bLarge` is
  /// true in captures. Returns 1, or 0 without the program.
  int SetCheekSlimmerParameters(FACE_INFO_t face, int level, bool bLarge);

  /// Slims one face of a preview frame. `in` is the frame (luma, then chroma, tightly packed); its
  /// luma plane is overwritten with the result, whose chroma goes to `out` (which may be in + width
  /// * height). `level` is the beauty level: 0 is the gentlest, each step adds a tenth of the base
  /// strength. Returns 1, or 0 with both planes untouched.
  int FaceProcess(void* in, void* out, int level, FACE_INFO_t face, int unused);

  /// The same for `count` consecutive records, each warping the result of the one before. With
  /// count 0 the frame comes back unchanged.
  int FaceProcessMultiface(void* in, void* out, int level, FACE_INFO_t* faces, int count,
                           int unused);

  /// Draws the warp: index 0 from the input image, index i from the result of i - 1, into work
  /// image i mod 2. Returns 1, or 0 when a program or image is missing.
  int DrawFaceDist(int index);

  // clang-format off
  /// Slims the faces of a capture, block by block around each face, and writes the processed blocks
  /// to two planes whose rows have the full capture width; the rest of them is left as it is.
  ///   in, out        luma and chroma plane to write to
  ///   width, height  size of the capture, pixels; at least 20 rows in block mode
  ///   faces, count   consecutive records; in block mode at most 10 (more: ERROR, and 10 are
  ///                  processed)
  ///   level          beauty level, as in FaceProcess
  /// Outside block mode blocks lie around each face's centre. In block mode they lie in the
  /// rectangles that whitening recorded, and a GLProgCheekSlimmerLarge_HSI must be in
  /// `m_pProgCheekSlimmer`: the set-up makes none. The argument after height is not used. Always
  /// returns 1.
  // clang-format on
  int FaceProcessLarge(void* in, void* out, int width, int height, int unused, FACE_INFO_t* faces,
                       int count, int level);

  /// Draws one capture block: from the HSI store in block mode, else from the plane textures, into
  /// work image 0. Returns 1, or 0 when a program or image is missing.
  int DrawFaceDistLarge();

  // ---- Face whitening ---------------------------------------------------------------------------

  // clang-format off
  /// Whitens faces of a preview frame in colour-convert mode, between ConvertYUV and
  /// ConvertHSItoYUV.
  ///   pFaces, nFaces    consecutive records
  ///   nIntensityLevel   requested lift of intensity, 0 .. 255 units
  ///   nSaturationLevel  shift of saturation, 0 .. 255 units
  /// `m_nResultIdx` names the image with the result: 2 after an odd number of faces, 1 after an
  /// even one, and 3, the input image, without a face. Returns 1, or 0 when an image or program is
  /// missing.
  // clang-format on
  int DoFaceWhitening(FACE_INFO_t* pFaces, int nFaces, int nIntensityLevel, int nSaturationLevel,
                      BEAUTYSHOT_EFFECT_t eEffect);

  // clang-format off
  /// Whitens faces of a capture in block mode into the store of the whole frame;
  /// CopyMemYUVfromSrcTextureLarge then brings the blocks back. At most 10 faces (more: ERROR, and
  /// 10 are processed); frames must be at least 20 x 20 pixels.
  ///   pSrcY   luma plane, tightly packed, with the chroma rows directly after it (faces are
  ///           measured there)
  ///   pSrcUV  chroma plane that is expanded, rows of the full capture width
  /// Returns 1.
  // clang-format on
  int DoFaceWhiteningLarge(unsigned char* pSrcY, unsigned char* pSrcUV, FACE_INFO_t* pFaces,
                           int nFaces, int nIntensityLevel, int nSaturationLevel,
                           BEAUTYSHOT_EFFECT_t eEffect);

  /// Measures a face and sets the whitening program's members. `bCpuSource` takes the samples from
  /// the tightly packed frame `pSrcYUV`, else from work image 1. The face's number is not used.
  /// Returns 1, or 0 without the program.
  int SetFaceWhiteningParameters(FACE_INFO_t face, int nIntensityLevel, int nSaturationLevel,
                                 BEAUTYSHOT_EFFECT_t eEffect, int nFaceIndex, bool bCpuSource,
                                 unsigned char* pSrcYUV);

  /// The matrix, nine floats column by column, that takes texture coordinates (u, v, 1) of an
  /// nWidth x nHeight frame to the unit circle of the ellipse with the axes p0 - p1 and p2 - p3
  /// (pixels). nPadding pixels are added to the half axes after scaling by fScale. Returns 1.
  int GetEllipseTransformMatrix(fpf_point p0, fpf_point p1, fpf_point p2, fpf_point p3,
                                float* pMatrix, int nWidth, int nHeight, int nPadding,
                                float fScale);

  /// One pixel's hue (degrees), saturation and intensity (0 .. 255): of the semi-planar frame pYUV
  /// (nStride bytes a row, chroma after nHeight rows), or, when that is null, of work image
  /// 1 + nImageIdx mod 2 (nStride pixels a row). Without the image nothing is written. Returns 1.
  int GetGPU_HSI(unsigned char* pYUV, int x, int y, int nStride, int nHeight, int& nH, int& nS,
                 int& nI, int nImageIdx);

  /// The logit of an 8-bit intensity in the shader's units.
  float InvertEC(int nValue);

  /// Draws one face of a whole frame: pass k = nPass mod 2 reads work image 1 + k and writes the
  /// other of the two. Returns 1, or 0 when a program or image is missing.
  int DrawFaceWhite(int nPass);
  /// Draws one block: work image 0, with the previous result in the input image when bUsePrev, into
  /// work image 2. Does not set the viewport. Returns 1, or 0 when a program or image is missing.
  int DrawFaceWhiteLarge(bool bUsePrev);

  // ---- Lens rectification -----------------------------------------------------------------------

  /// Keystone correction of a preview frame. `degree` is in hundredths of the frame's size: a
  /// positive one shortens the left side of what is sampled, a negative one the right. Planes as in
  /// FaceProcess. Returns 1, or 0 with both planes untouched.
  int Rectification(void* in, void* out, int degree, int unused);
  /// Radial correction of a preview frame by the lens coefficients of a camera (1: the second; any
  /// other: the first), read from its files at every call. The third argument is not used. Planes
  /// as in FaceProcess. Returns 1, or 0 with both planes untouched.
  int RadialRectification(void* in, void* out, int unused, int camera);

  // Parameters and passes of the two: 1, or 0 when a program or image is missing.
  int SetRectParameters(int degree);
  int SetRadialRectParameters(int camera);
  int DrawRectification();        ///< input image to work image 0
  int DrawRadialRectification();  ///< input image to work image 0, cropped to the corrected frame

  // ---- State ------------------------------------------------------------------------------------
  // Sizes are pixels unless said otherwise. Sizes and GL names are -1 and pointers null when unset.

  EGLDisplay m_eglDisplay;
  EGLConfig m_eglConfig;
  EGLSurface m_eglSurface;  ///< 1 x 1 pbuffer; all drawing goes to framebuffer objects
  EGLContext m_eglContext;
  bool m_bEGLReady;  ///< the context was made current

  int m_nSrcWidth, m_nSrcHeight;    ///< preview: the caller's frame; capture: the block
  int m_nProcWidth, m_nProcHeight;  ///< the frame that the effects run on
  int m_nYYYYWidth, m_nYYYYHeight;  ///< packed luma target, in samples; also its bytes a row
  int m_nUVUVWidth, m_nUVUVHeight;  ///< packed chroma target, in samples; also its bytes a row
  int m_nAlignedWidth, m_nAlignedHeight;  ///< viewport of the passes
  int m_nFullWidth, m_nFullHeight;        ///< the caller's full frame

  GLuint m_hYYYYFbo, m_hUVUVFbo;  ///< framebuffers of the packed targets
  GLuint m_hWorkFbo[3];           ///< framebuffers of the work images
  GLuint m_hRGBFbo;               ///< framebuffer of the input image

  SEGLImage* m_pWorkImage[3];  ///< owned; capture: 1 is the store of the whole frame
  SEGLImage* m_pRGBImage;      ///< owned; the input image
  SEGLImage* m_pYYYYImage;     ///< owned; four luma samples a texel
  SEGLImage* m_pUVUVImage;     ///< owned; two chroma pairs a texel
  /// Store of the whole frame for captures above 4096 pixels in either direction.
  lumora::platform::sp<lumora::platform::GraphicBuffer> m_spLargeBuffer;
  int m_nResultIdx;  ///< which image holds the result: a work image, 3 is the input image

  GLProgram* m_pProgRGBtoY;  ///< programs are owned and deleted by the engine
  GLProgram* m_pProgRGBtoUV;
  GLProgram* m_pProgCheekSlimmer;
  GLProgram* m_pProgYUV2RGB;
  GLProgram* m_pProgRGB2HSI;
  GLProgram* m_pProgHSI2YUV;
  GLProgram* m_pProgFaceWhitening;
  GLProgram* m_pProgYUV2HSI;
  GLProgram* m_pProgRectification;
  GLProgram* m_pProgRadialDistortion;

  bool m_bColorCvtMode;  ///< preview: colour-convert mode; capture: block mode
  bool m_bRotate;        ///< packed targets are filled along the vertical axis
  bool m_bIsInit;
  bool m_bLargeCapture;                 ///< above 4096 pixels in either direction
  GLuint m_hYTexture, m_hCbCrTexture;   ///< plane textures of a capture outside block mode
  bool m_bShowMask;                     ///< the programs paint their diagnostic marks
  FaceProcessRect m_rcFaceProcess[10];  ///< by face: the rectangle that captures processed

  // The face that whitening measured last, in pixels of the full frame.
  int m_nFaceWhiteRadius;
  int m_nFaceWhiteHalfWidth;
  int m_nFaceWhiteHalfHeight;
  int m_nFaceWhiteCenterX;
  int m_nFaceWhiteCenterY;

 private:
  bool m_bDisplayReferenced;  ///< the display was initialised and is terminated with the engine
};

}  // namespace android

#endif  // LUMORA_ENGINE_GPU_BEAUTY_FACE_H_
