// SPDX-License-Identifier: Apache-2.0
// Copies between CPU memory and a texture that leave no trace in the context's state.
#ifndef LUMORA_PLATFORM_LINUX_PIXEL_TRANSFER_H_
#define LUMORA_PLATFORM_LINUX_PIXEL_TRANSFER_H_

#include <GLES2/gl2.h>

#include "lumora/platform/buffer/buffer_geometry.h"

namespace lumora::platform {

/// What a context knows of pixel transfers beyond OpenGL ES 2.0.
struct TransferFeatures {
  bool unpack_subimage;   ///< row length and skips of uploads
  bool pack_subimage;     ///< row length and skips of read-backs
  bool pixel_buffers;     ///< a bound buffer object may replace the CPU address
  bool read_framebuffer;  ///< reading has a framebuffer binding of its own
};

/// Asks the current context.
TransferFeatures QueryTransferFeatures();

/// Gives the bound texture storage of width x height RGBA pixels with undefined contents.
void AllocatePixels(int width, int height, const TransferFeatures& features);

/// Copies `part` of `image` to the same place in `texture`.
void Upload(GLuint texture, const CpuImage& image, const PixelRectangle& part,
            const TransferFeatures& features);

/// Copies `part` of the colour attachment of `framebuffer` to the same place in `image`; pixels
/// outside it keep their bytes. Waits for the GPU.
void ReadBack(GLuint framebuffer, const CpuImage& image, const PixelRectangle& part,
              const TransferFeatures& features);

/// Makes `texture` the colour attachment of `framebuffer`.
void AttachColor(GLuint framebuffer, GLuint texture, const TransferFeatures& features);

/// Whether `framebuffer` can be read: its texture has storage, for one thing.
bool IsReadable(GLuint framebuffer, const TransferFeatures& features);

/// Makes `texture` a copy of one pixel of the colour attachment of `framebuffer`.
void CopyPixel(GLuint framebuffer, GLuint texture, const TransferFeatures& features);

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_LINUX_PIXEL_TRANSFER_H_
