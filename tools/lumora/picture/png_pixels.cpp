// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/picture/png_pixels.h"

#include <png.h>
#include <zlib.h>

#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

namespace lumora::tools {
namespace {

/// What reading and writing have in common. libpng's errors leave the library by longjmp.
class Codec {
 public:
  Codec() = default;
  Codec(const Codec&) = delete;
  Codec& operator=(const Codec&) = delete;

 protected:
  ~Codec() = default;

  /// Runs libpng calls. They may be left by longjmp, so `calls` must not own anything.
  template <typename Calls>
  void Guard(const Calls& calls) {
    if (setjmp(escape_) != 0) {
      if (out_of_memory_) throw std::bad_alloc();
      throw PngError(message_);
    }
    calls();
  }

  static void OnError(png_structp png, png_const_charp message) {
    Codec& codec = From(png_get_error_ptr(png));
    std::snprintf(codec.message_, sizeof(codec.message_), "%s", message);
    std::longjmp(codec.escape_, 1);
  }

  static void OnWarning(png_structp, png_const_charp) {}

  static png_voidp Allocate(png_structp png, png_alloc_size_t size) {
    void* const memory = std::malloc(size);
    if (memory == nullptr) From(png_get_mem_ptr(png)).out_of_memory_ = true;
    return memory;
  }

  static void Free(png_structp, png_voidp memory) { std::free(memory); }

  /// What libpng is given to find this again.
  void* self() { return this; }

  png_structp png_ = nullptr;
  png_infop info_ = nullptr;
  bool out_of_memory_ = false;

 private:
  static Codec& From(png_voidp pointer) { return *static_cast<Codec*>(pointer); }

  std::jmp_buf escape_;
  char message_[128] = "";
};

/// One reading of a file.
class Decoder : Codec {
 public:
  explicit Decoder(const Bytes& file) : file_(file) {
    png_ = png_create_read_struct_2(PNG_LIBPNG_VER_STRING, self(), OnError, OnWarning, self(),
                                    Allocate, Free);
    if (png_ != nullptr) info_ = png_create_info_struct(png_);
    if (info_ == nullptr) {
      png_destroy_read_struct(&png_, nullptr, nullptr);
      throw std::bad_alloc();
    }
    png_set_read_fn(png_, this, Read);
  }
  ~Decoder() { png_destroy_read_struct(&png_, &info_, nullptr); }

  PngPixels Decode() {
    Guard([this] { ReadHeader(); });
    PngPixels result;
    result.reduced = png_get_bit_depth(png_, info_) == 16;
    Guard([this] { AskForBgr(); });
    const auto width = static_cast<int>(png_get_image_width(png_, info_));
    const auto height = static_cast<int>(png_get_image_height(png_, info_));
    result.pixels = Image({width, height}, png_get_channels(png_, info_));
    if (png_get_rowbytes(png_, info_) != result.pixels.stride()) {
      throw PngError("unknown kind of pixels");
    }
    std::vector<png_bytep> rows;
    rows.reserve(static_cast<size_t>(height));
    for (int y = 0; y < height; ++y) rows.push_back(result.pixels.Row(y));
    Guard([&] {
      png_read_image(png_, rows.data());
      png_read_end(png_, info_);
    });
    return result;
  }

 private:
  void ReadHeader() { png_read_info(png_, info_); }

  /// 8 bits a channel; gray stays gray unless something in it is transparent.
  void AskForBgr() {
    const int kind = png_get_color_type(png_, info_);
    const bool has_transparent_colour = png_get_valid(png_, info_, PNG_INFO_tRNS) != 0;
    png_set_scale_16(png_);
    png_set_expand(png_);
    if ((kind & PNG_COLOR_MASK_ALPHA) != 0 || has_transparent_colour) png_set_gray_to_rgb(png_);
    png_set_bgr(png_);
    png_set_interlace_handling(png_);
    png_read_update_info(png_, info_);
  }

  static void Read(png_structp png, png_bytep bytes, size_t count) {
    Decoder& decoder = *static_cast<Decoder*>(png_get_io_ptr(png));
    if (count > decoder.file_.size() - decoder.at_) png_error(png, "the file ends too early");
    std::memcpy(bytes, decoder.file_.data() + decoder.at_, count);
    decoder.at_ += count;
  }

  const Bytes& file_;
  size_t at_ = 0;
};

/// One writing of a file.
class Encoder : Codec {
 public:
  Encoder() {
    png_ = png_create_write_struct_2(PNG_LIBPNG_VER_STRING, self(), OnError, OnWarning, self(),
                                     Allocate, Free);
    if (png_ != nullptr) info_ = png_create_info_struct(png_);
    if (info_ == nullptr) {
      png_destroy_write_struct(&png_, nullptr);
      throw std::bad_alloc();
    }
    png_set_write_fn(png_, this, Write, [](png_structp) {});
  }
  ~Encoder() { png_destroy_write_struct(&png_, &info_); }

  Bytes Encode(const Image& pixels) {
    std::vector<png_bytep> rows;
    rows.reserve(static_cast<size_t>(pixels.height()));
    for (int y = 0; y < pixels.height(); ++y) rows.push_back(const_cast<png_bytep>(pixels.Row(y)));
    Guard([&] {
      AskForSpeed();
      png_set_IHDR(png_, info_, static_cast<png_uint_32>(pixels.width()),
                   static_cast<png_uint_32>(pixels.height()), 8, KindOf(pixels.channels()),
                   PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
      png_write_info(png_, info_);
      png_set_bgr(png_);
      png_write_image(png_, rows.data());
      png_write_end(png_, info_);
    });
    return std::move(file_);
  }

 private:
  static int KindOf(int channels) {
    if (channels == 1) return PNG_COLOR_TYPE_GRAY;
    return channels == 3 ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGB_ALPHA;
  }

  /// Photographs hardly get smaller by more effort.
  void AskForSpeed() {
    png_set_filter(png_, PNG_FILTER_TYPE_BASE, PNG_FILTER_SUB);
    png_set_compression_level(png_, Z_BEST_SPEED);
    png_set_compression_strategy(png_, Z_RLE);
  }

  /// Exceptions must not pass through libpng.
  static void Write(png_structp png, png_bytep bytes, size_t count) {
    Encoder& encoder = *static_cast<Encoder*>(png_get_io_ptr(png));
    bool written = true;
    try {
      encoder.file_.insert(encoder.file_.end(), bytes, bytes + count);
    } catch (const std::bad_alloc&) {
      written = false;
    }
    if (written) return;
    encoder.out_of_memory_ = true;
    png_error(png, "out of memory");
  }

  Bytes file_;
};

}  // namespace

PngPixels ReadPngPixels(const Bytes& file) {
  return Decoder(file).Decode();
}

Bytes WritePngPixels(const Image& pixels) {
  return Encoder().Encode(pixels);
}

}  // namespace lumora::tools
