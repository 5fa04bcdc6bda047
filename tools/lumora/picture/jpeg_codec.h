// SPDX-License-Identifier: Apache-2.0
// libjpeg with errors as exceptions.
#ifndef LUMORA_TOOLS_PICTURE_JPEG_CODEC_H_
#define LUMORA_TOOLS_PICTURE_JPEG_CODEC_H_

#include <csetjmp>
#include <cstdio>
#include <new>
#include <stdexcept>

// libjpeg's headers need <cstdio> before them.
#include <jerror.h>
#include <jpeglib.h>

#include "tools/lumora/support/files.h"

namespace lumora::tools {

/// What libjpeg says about a file that it cannot read or write.
class JpegError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// libjpeg's error handling. Its errors leave the library by longjmp.
struct JpegErrorHandler {
  jpeg_error_mgr base;  // must be first: libjpeg knows only this
  std::jmp_buf escape;
  char message[JMSG_LENGTH_MAX];

  void Prepare();

  /// Runs libjpeg calls. They may be left by longjmp, so `calls` must not own anything.
  template <typename Calls>
  void Guard(const Calls& calls) {
    if (setjmp(escape) != 0) {
      if (base.msg_code == JERR_OUT_OF_MEMORY) throw std::bad_alloc();
      throw JpegError(message);
    }
    calls();
  }
};

/// A file whose header has been read. It has to outlive the decoder.
class JpegDecoder {
 public:
  explicit JpegDecoder(const Bytes& file);
  ~JpegDecoder() { jpeg_destroy_decompress(&info); }
  JpegDecoder(const JpegDecoder&) = delete;
  JpegDecoder& operator=(const JpegDecoder&) = delete;

  template <typename Calls>
  void Guard(const Calls& calls) {
    errors_.Guard(calls);
  }

  jpeg_decompress_struct info = {};

 private:
  JpegDecoder();

  JpegErrorHandler errors_ = {};
};

/// A file to be written.
class JpegEncoder {
 public:
  JpegEncoder();
  ~JpegEncoder();
  JpegEncoder(const JpegEncoder&) = delete;
  JpegEncoder& operator=(const JpegEncoder&) = delete;

  template <typename Calls>
  void Guard(const Calls& calls) {
    errors_.Guard(calls);
  }

  /// Takes over quantisation, sampling and density.
  void CopySettings(JpegDecoder& from);

  /// What was written; whole after jpeg_finish_compress.
  Bytes File() const { return Bytes(buffer_, buffer_ + size_); }

  jpeg_compress_struct info = {};

 private:
  JpegErrorHandler errors_ = {};
  unsigned char* buffer_ = nullptr;
  unsigned long size_ = 0;
};

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_PICTURE_JPEG_CODEC_H_
