// SPDX-License-Identifier: Apache-2.0
// TGA and RGB565 files, and the images made in their place.
#include <algorithm>
#include <cstdio>
#include <memory>
#include <numeric>
#include <vector>

#include "fuzz/support/files.h"
#include "fuzz/support/input.h"
#include "fuzz/support/require.h"
#include "lumora/gl/image_files.h"
#include "support/guarded_buffer.h"

namespace {

using lumora::fuzz::Input;
using lumora::fuzz::MemoryFile;
using lumora::fuzz::Require;
using lumora::test::GuardedBuffer;
using Bytes = std::vector<uint8_t>;

constexpr unsigned kRgb = 0x1907, kRgba = 0x1908;
constexpr size_t kHeader = 18;

std::FILE* s_opened = nullptr;

unsigned short* Pixels(GuardedBuffer& buffer) {
  return reinterpret_cast<unsigned short*>(buffer.data());
}

GuardedBuffer::Guard TakeGuard(Input& input) {
  return input.flag() ? GuardedBuffer::Guard::Begin : GuardedBuffer::Guard::End;
}

void Tga(const Bytes& file, const char* path) {
  const auto byte = [&file](size_t at) { return at < file.size() ? unsigned{file[at]} : 0u; };
  const unsigned columns = byte(12) | byte(13) << 8, rows = byte(14) | byte(15) << 8;
  const size_t texel = byte(16) >> 3;
  const size_t bytes = texel * columns * rows;
  constexpr size_t kMost = size_t{1} << 30;
  // What is allowed but large only costs time.
  if (bytes > (size_t{1} << 22) && bytes <= kMost) return;

  unsigned width = 0, height = 0, format = 0;
  const std::unique_ptr<unsigned char[]> pixels(LoadTGA(path, &width, &height, &format));
  Require(width == columns && height == rows, "the size is that of the header");
  Require(format == (texel == 3 ? kRgb : kRgba), "24 bits are RGB, all others RGBA");
  Require((pixels != nullptr) == (bytes <= kMost), "there are pixels unless there are too many");
  if (pixels == nullptr) return;
  for (size_t i = 0; i < bytes; ++i) {
    Require(pixels[i] == byte(kHeader + i), "pixels are the file's bytes and then zero");
  }
}

void Rgb565(Input& input, MemoryFile& memory) {
  const int wanted = input.flag() ? input.between(0, 300) : -input.between(0, 2);
  GuardedBuffer buffer(static_cast<size_t>(std::max(wanted, 0)) * 2, TakeGuard(input));
  const Bytes file = input.rest();
  memory.set(file);
  s_opened = nullptr;
  const int result = Load565FromFile(memory.path().c_str(), Pixels(buffer), wanted);
  Require(result == (wanted == 0 ? 1 : 0), "only no pixels at all are a success");
  if (result == 0) std::fclose(s_opened);  // a failure leaves the file open
  for (size_t i = 0; i < buffer.size(); ++i) {
    const bool read = i < file.size() / 2 * 2;
    if (read) Require(buffer.data()[i] == file[i], "pixels are the file's");
  }
  Require(buffer.intact(), "nothing but the pixels is written");
}

void AlignedRows(Input& input) {
  const int width = input.between(1, 100), height = input.between(1, 20);
  const size_t row = static_cast<size_t>(width), aligned = (row + 31) / 32 * 32;
  const size_t rows = static_cast<size_t>(height);
  GuardedBuffer source(row * rows * 2, TakeGuard(input));
  GuardedBuffer target(aligned * rows * 2, TakeGuard(input));
  std::iota(Pixels(source), Pixels(source) + row * rows, input.take<uint16_t>());
  source.protect_from_writing();
  Require(InputImageMemcopy(Pixels(source), Pixels(target), width, height) == 1, "copies are made");
  for (size_t i = 0; i < aligned * rows; ++i) {
    const size_t column = i % aligned;
    const int fill = GuardedBuffer::kFill << 8 | GuardedBuffer::kFill;
    const int pixel = column < row ? Pixels(source)[i / aligned * row + column] : fill;
    Require(Pixels(target)[i] == pixel, "rows keep their pixels and their padding");
  }
  Require(target.intact(), "nothing beside the rows is written");
}

void Patterns(Input& input) {
  const int width = input.between(2, 100), height = input.between(2, 20);
  const size_t rows = static_cast<size_t>(height), row = static_cast<size_t>(width);
  GuardedBuffer texels(row * rows * 4, TakeGuard(input));
  CreateTestPattern(width, height, input.between(0, 2), reinterpret_cast<char*>(texels.data()));
  // Mode 1 leaves an image to nobody at every call.
  GuardedBuffer stripes(row * rows * 2, TakeGuard(input));
  Create565Pattern(static_cast<unsigned>(width), static_cast<unsigned>(height),
                   input.flag() ? 0 : 2, Pixels(stripes));
  Require(texels.intact() && stripes.intact(), "patterns stay in their memory");
}

}  // namespace

// The linker puts this in the place of the library's fdopen.
extern "C" std::FILE* __real_fdopen(int file, const char* mode);
extern "C" std::FILE* __wrap_fdopen(int file, const char* mode) {
  return s_opened = __real_fdopen(file, mode);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static MemoryFile memory;
  Input input(data, size);
  switch (input.between(0, 3)) {
    case 0: {
      const Bytes file = input.rest();
      memory.set(file);
      Tga(file, memory.path().c_str());
      break;
    }
    case 1:
      Rgb565(input, memory);
      break;
    case 2:
      AlignedRows(input);
      break;
    default:
      Patterns(input);
  }
  return 0;
}
