// SPDX-License-Identifier: Apache-2.0
#include "reference/whitening_capture.h"

#include <algorithm>
#include <cmath>

#include "reference/colour_bounds.h"
#include "reference/whitening_bounds.h"

namespace lumora::reference {
namespace {

// A start and a length of whole blocks round a centre.
void Span(int centre, int half, int block, int* start, int* length) {
  const int blocks = static_cast<int>(
      std::ceil(static_cast<double>(static_cast<float>(half) / static_cast<float>(block)) + 0.5));
  *start = centre - blocks * block;
  *length = 2 * blocks * block;
}

// Whether one end of a block lies strictly inside a range.
bool EndInside(int start, int length, int first, int block) {
  const int end = start + length;
  return (start < first && first < end) || (start < first + block && first + block < end);
}

// The texel of a frame's pixel; pixels right of the frame repeat its last one.
Texel YuvAt(const Frame& frame, int x, int y) {
  const int column = std::min(x, frame.width - 1);
  return {FromByte(frame.y(column, y)), FromByte(frame.cr(column, y)),
          FromByte(frame.cb(column, y)), 1.0};
}

// What an 8-bit target between two passes holds.
TexelBounds Stored(const TexelBounds& texel) {
  TexelBounds stored;
  for (int channel = 0; channel < 4; ++channel) {
    stored.low[channel] = FromByte(ToByte(texel.low[channel]));
    stored.high[channel] = FromByte(ToByte(texel.high[channel]));
  }
  return stored;
}

}  // namespace

WhiteningCaptureModel::WhiteningCaptureModel(int width, int height)
    : size_(width, height), store_(size_.row, height) {}

bool WhiteningCaptureModel::processed(size_t face) const {
  const Rectangle& rectangle = rectangles_[face];
  return rectangle.width >= size_.width / 20 && rectangle.height >= size_.height / 20;
}

void WhiteningCaptureModel::whiten(const Frame& frame, const std::vector<FaceRecord>& faces,
                                   const WhiteningRequest& request) {
  rectangles_.clear();
  for (size_t face = 0; face < faces.size(); ++face) {
    const auto sample = [&](int x, int y) {
      // Odd last rows have no chroma of their own; frames of odd height are of one colour.
      return SampleYuv(frame.bytes.data(), x, std::min(y, size_.height / 2 * 2 - 1), frame.width,
                       frame.height);
    };
    const WhiteningParameters measured =
        MeasureFace(faces[face], request.intensity_level, request.saturation_level, request.effect,
                    size_.width, size_.height, sample);
    Rectangle rectangle{};
    Span(measured.centre.x, measured.half_width, size_.block_width, &rectangle.x, &rectangle.width);
    Span(measured.centre.y, measured.half_height, size_.block_height, &rectangle.y,
         &rectangle.height);
    rectangles_.push_back(rectangle);
    if (!processed(face)) continue;
    for (const Rectangle& block : BlocksOf(size_, rectangle, size_.width)) {
      whiten_block(frame, block, measured.uniforms, face);
    }
  }
}

void WhiteningCaptureModel::whiten_block(const Frame& frame, Rectangle block,
                                         const WhiteningUniforms& uniforms, size_t face) {
  if (block.height == 1) {
    // Rows are expanded in pairs: a last row alone comes with the pair before it.
    block.y -= 2;
    block.height = 3;
  }
  if (block.width % 32 != 0) {
    block.width = std::min((block.width + 31) / 32 * 32, size_.block_width);
    block.x = std::max(size_.width - block.width, 0);
  }
  const auto meets = [&](const Rectangle& earlier) {
    return EndInside(earlier.x, earlier.width, block.x, size_.block_width) &&
           EndInside(earlier.y, earlier.height, block.y, size_.block_height);
  };
  const bool overlaps = std::any_of(rectangles_.begin(),
                                    rectangles_.begin() + static_cast<std::ptrdiff_t>(face), meets);

  // The whole block goes to the store as far as that reaches. Expansion goes by pairs of rows: an
  // odd last row repeats the one before.
  const int columns = std::min(size_.row - block.x, size_.block_width);
  for (int row = 0; row < block.height; ++row) {
    const int y = block.y + row;
    const int source_row = block.y + std::min(row, block.height / 2 * 2 - 1);
    for (int column = 0; column < columns; ++column) {
      const int x = block.x + column;
      const int source_column = block.x + std::min(column, block.width - 1);
      const TexelBounds hsi = Stored(RgbToHsiBounds(
          YuvToRgbBounds(TexelBounds::Exactly(YuvAt(frame, source_column, source_row))), 0.0));
      const Vec2 place{(x + 0.5) / size_.row, (y + 0.5) / size_.height};
      TexelBounds result;
      if (overlaps) {
        const TexelBounds previous{store_.low.at(x, y), store_.high.at(x, y)};
        result = WhitenBounds(hsi, previous, place, uniforms);
      } else {
        result = WhitenBounds(hsi, place, uniforms);
      }
      store_.low.set(x, y, result.low);
      store_.high.set(x, y, result.high);
    }
  }
}

}  // namespace lumora::reference
