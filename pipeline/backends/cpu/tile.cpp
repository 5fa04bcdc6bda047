// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/cpu/tile.h"

#include <algorithm>
#include <cstring>

#include "lumora/geometry/rounding.h"
#include "pipeline/backends/cpu/kernels/warp_rows.h"
#include "pipeline/frames/frame_copy.h"
#include "pipeline/frames/frame_layout.h"

namespace lumora::cpu {
namespace {

/// One axis of a plane of samples.
struct Axis {
  int samples;  ///< that the frame has
  int padded;   ///< up to where its last one goes on
};

/// The sample of a frame that is seen at `position`, which may lie outside.
int Seen(int position, const Axis& axis, Beyond beyond) {
  if (beyond == Beyond::Mirror) {
    const int period = 2 * axis.padded;
    position = (position % period + period) % period;
    if (position >= axis.padded) position = period - 1 - position;
  }
  return std::clamp(position, 0, axis.samples - 1);
}

/// The part of an axis that was copied, in samples of the frame.
struct Copied {
  int begin, end;

  int Nearest(int position) const { return std::clamp(position, begin, end - 1); }
};

/// A plane of a tile, whose first sample is that of the frame at (x, y).
struct Plane {
  uint8_t* bytes;
  int stride;
  int unit;  // bytes of a sample
  int x, y, columns, rows;

  uint8_t* at(int column, int row) const {
    return bytes + std::ptrdiff_t{row - y} * stride + std::ptrdiff_t{column - x} * unit;
  }
};

/// Fills what was not copied.
void Surround(const Plane& plane, const Axis& across, const Axis& down, const Copied& columns,
              const Copied& rows, Beyond beyond) {
  const auto unit = static_cast<size_t>(plane.unit);
  const auto fill = [&](int from, int to) {
    for (int column = from; column < to; ++column) {
      const int seen = columns.Nearest(Seen(column, across, beyond));
      for (int row = rows.begin; row < rows.end; ++row) {
        std::memcpy(plane.at(column, row), plane.at(seen, row), unit);
      }
    }
  };
  fill(plane.x, columns.begin);
  fill(columns.end, plane.x + plane.columns);
  const auto repeat = [&](int from, int to) {
    for (int row = from; row < to; ++row) {
      const int seen = rows.Nearest(Seen(row, down, beyond));
      std::memcpy(plane.at(plane.x, row), plane.at(plane.x, seen),
                  static_cast<size_t>(plane.columns) * unit);
    }
  };
  repeat(plane.y, rows.begin);
  repeat(rows.end, plane.y + plane.rows);
}

}  // namespace

size_t Tile::PlaneBytes(int rows) const {
  return (static_cast<size_t>(rows) + 1) * static_cast<size_t>(place_.width) + kWarpSlack;
}

void Tile::SetPlace(const PixelRectangle& place) {
  place_ = place;
  const size_t needed = PlaneBytes(place.height) + PlaneBytes(place.height / 2);
  if (needed > bytes_.size()) bytes_.resize(needed);
}

void Tile::Load(const ConstFrameView& frame, Beyond beyond, Workers& workers) {
  uint8_t* const luma = bytes_.data();
  uint8_t* const chroma = luma + PlaneBytes(place_.height);
  const PixelRectangle inside = CutToImage(place_, frame.width, frame.height);
  const std::ptrdiff_t stride = place_.width;
  FrameView view;
  view.format = PixelFormat::NV21;
  view.width = inside.width;
  view.height = inside.height;
  view.planes[0] = luma + (inside.y - place_.y) * stride + (inside.x - place_.x);
  view.planes[1] = chroma + (inside.y - place_.y) / 2 * stride + (inside.x - place_.x);
  view.strides = {stride, stride, 0};
  CopyInBands(PartOf(frame, inside), view, workers);

  const int padded_width = RoundUpTo32(frame.width), padded_height = RoundUpTo32(frame.height);
  Surround({luma, place_.width, 1, place_.x, place_.y, place_.width, place_.height},
           {frame.width, padded_width}, {frame.height, padded_height},
           {inside.x, inside.x + inside.width}, {inside.y, inside.y + inside.height}, beyond);
  Surround(
      {chroma, place_.width, 2, place_.x / 2, place_.y / 2, place_.width / 2, place_.height / 2},
      {ChromaSize(frame.width), padded_width / 2}, {ChromaSize(frame.height), padded_height / 2},
      {inside.x / 2, inside.x / 2 + ChromaSize(inside.width)},
      {inside.y / 2, inside.y / 2 + ChromaSize(inside.height)}, beyond);
}

void CopyInBands(const ConstFrameView& in, const FrameView& out, Workers& workers) {
  constexpr int kRows = 32;
  workers.Run((in.height + kRows - 1) / kRows, [&](int band, int) {
    const int y = band * kRows;
    const PixelRectangle part = {0, y, in.width, std::min(kRows, in.height - y)};
    CopyFrame(PartOf(in, part), PartOf(out, part));
  });
}

}  // namespace lumora::cpu
