// SPDX-License-Identifier: Apache-2.0
// Image files and test patterns for exercising the GPU paths without a camera.
//
// RGB565 pixels are unsigned 16-bit: red in bits 15 .. 11, green in 10 .. 5, blue in 4 .. 0.
// Aligned rows are the width rounded up to 32 pixels. Messages go to the log under the tag
// "EGLImageTest".
#ifndef LUMORA_GL_IMAGE_FILES_H_
#define LUMORA_GL_IMAGE_FILES_H_

#include "lumora/export.h"

/// Reads `n` RGB565 pixels from the raw file `path` into `buf`. Returns 1 on success, 0 on failure
/// (told at ERROR). Success is judged against twice the number of pixels, so only n = 0 succeeds;
/// any other n reads its pixels, reports failure and leaves the file open.
LUMORA_API int Load565FromFile(const char* path, unsigned short* buf, int n);

/// Loads an uncompressed TGA image: a new array of rows as they lie in the file (blue first, bottom
/// row first in most files), to be released with delete[]; null when the file cannot be opened or
/// its header claims more than 1 GiB of pixels. Stores width and height in pixels, and GL_RGB for
/// 24-bit files, else GL_RGBA. Image type, ID field and colour map are not looked at. Bytes that a
/// short file lacks are 0.
LUMORA_API unsigned char* LoadTGA(const char* path, unsigned int* pWidth, unsigned int* pHeight,
                                  unsigned int* pFormat);

/// Copies a tightly packed RGB565 image of w x h pixels to aligned rows: `dst` holds h times the
/// aligned row. When w is not aligned the time of the copy goes to the timing globals of
/// segl_image.h. Returns 1.
LUMORA_API int InputImageMemcopy(unsigned short* src, unsigned short* dst, int w, int h);

/// Fills `buf` (w x h RGBA pixels, tightly packed) with a colour gradient under an 8 x 8
/// checkerboard of full and half brightness. `format` 1 alone does anything; w and h are 2 or more.
LUMORA_API void CreateTestPattern(int w, int h, int format, char* buf);

// clang-format off
/// Vertical RGB565 stripes: red up to 0.3125 of the width, blue beyond 0.6875, green between.
///   mode 0  w x h pixels, tightly packed, into `buf`
///   mode 1  for w that is no multiple of 32: on aligned rows into `buf`; returns the 1 of
///           InputImageMemcopy
/// Any other case writes nothing, and the result means nothing outside that of mode 1. A null `buf`
/// is replaced by memory that is left to nobody; so is the packed image of mode 1.
// clang-format on
LUMORA_API int Create565Pattern(unsigned int w, unsigned int h, int mode, unsigned short* buf);

#endif  // LUMORA_GL_IMAGE_FILES_H_
