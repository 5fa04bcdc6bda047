// SPDX-License-Identifier: Apache-2.0
#include "pipeline/frames/frame_copy.h"

#include <libyuv/planar_functions.h>

#include <cstring>

#include "pipeline/frames/frame_layout.h"
#include "pipeline/frames/own_frame.h"

namespace lumora {
namespace {

/// Plane 1 and 2 as Cb and Cr of planar frames.
constexpr size_t kCb = 1;
constexpr size_t kCr = 2;

template <typename Byte>
int Stride(const BasicFrameView<Byte>& frame, size_t plane) {
  return static_cast<int>(frame.strides[plane]);
}

/// Copies a plane that both frames have. The C library's copy leaves what it writes in the caches,
/// where whoever reads it next finds it; libyuv's string instructions may go past them.
void CopyPlane(const ConstFrameView& in, const FrameView& out, size_t plane) {
  const auto row_bytes = static_cast<size_t>(RowBytes(in.format, plane, in.width));
  const auto rows = static_cast<size_t>(PlaneRows(plane, in.height));
  const auto tight = static_cast<std::ptrdiff_t>(row_bytes);
  if (in.strides[plane] == tight && out.strides[plane] == tight) {
    std::memcpy(out.planes[plane], in.planes[plane], row_bytes * rows);
    return;
  }
  for (std::ptrdiff_t row = 0; row < static_cast<std::ptrdiff_t>(rows); ++row) {
    std::memcpy(out.planes[plane] + row * out.strides[plane],
                in.planes[plane] + row * in.strides[plane], row_bytes);
  }
}

/// Copies between frames that share no byte.
void CopyApart(const ConstFrameView& in, const FrameView& out) {
  CopyPlane(in, out, 0);
  const int columns = ChromaSize(in.width);
  const int rows = ChromaSize(in.height);
  if (in.format == out.format) {
    for (size_t plane = 1; plane < PlaneCount(in.format); ++plane) {
      CopyPlane(in, out, plane);
    }
  } else if (IsSemiPlanar(in.format) && IsSemiPlanar(out.format)) {
    libyuv::SwapUVPlane(in.planes[1], Stride(in, 1), out.planes[1], Stride(out, 1), columns, rows);
  } else if (IsSemiPlanar(in.format)) {
    const bool cr_first = in.format == PixelFormat::NV21;
    const size_t first = cr_first ? kCr : kCb;
    const size_t second = cr_first ? kCb : kCr;
    libyuv::SplitUVPlane(in.planes[1], Stride(in, 1), out.planes[first], Stride(out, first),
                         out.planes[second], Stride(out, second), columns, rows);
  } else {
    const bool cr_first = out.format == PixelFormat::NV21;
    const size_t first = cr_first ? kCr : kCb;
    const size_t second = cr_first ? kCb : kCr;
    libyuv::MergeUVPlane(in.planes[first], Stride(in, first), in.planes[second], Stride(in, second),
                         out.planes[1], Stride(out, 1), columns, rows);
  }
}

bool SameFrame(const ConstFrameView& in, const FrameView& out) {
  if (in.format != out.format) return false;
  for (size_t plane = 0; plane < PlaneCount(in.format); ++plane) {
    if (in.planes[plane] != out.planes[plane] || in.strides[plane] != out.strides[plane]) {
      return false;
    }
  }
  return true;
}

/// The part of a plane that a frame fills, in bytes and rows.
struct Filled {
  int begin, end;  // of each row
  int top, bottom;
};

/// Repeats the outermost samples, of `unit` bytes, of the filled part to the left and right ends of
/// its rows, then its outermost rows up and down.
void ExtendPlane(uint8_t* plane, int stride, int rows, int unit, const Filled& filled) {
  const auto row_bytes = static_cast<size_t>(stride);
  const auto unit_bytes = static_cast<size_t>(unit);
  const auto row_at = [plane, row_bytes](int row) {
    return plane + static_cast<size_t>(row) * row_bytes;
  };
  for (int row = filled.top; row < filled.bottom; ++row) {
    uint8_t* const begin = row_at(row);
    for (int at = 0; at < filled.begin; at += unit) {
      std::memcpy(begin + at, begin + filled.begin, unit_bytes);
    }
    for (int at = filled.end; at < stride; at += unit) {
      std::memcpy(begin + at, begin + filled.end - unit, unit_bytes);
    }
  }
  for (int row = 0; row < filled.top; ++row) {
    std::memcpy(row_at(row), row_at(filled.top), row_bytes);
  }
  for (int row = filled.bottom; row < rows; ++row) {
    std::memcpy(row_at(row), row_at(filled.bottom - 1), row_bytes);
  }
}

/// width x height pixels of a tightly packed NV21 frame.
template <typename Byte>
BasicFrameView<Byte> PackedView(Byte* luma, Byte* chroma, std::ptrdiff_t stride, FramePlace place,
                                int width, int height) {
  return {PixelFormat::NV21,
          width,
          height,
          {luma + place.top * stride + place.left, chroma + place.top / 2 * stride + place.left,
           nullptr},
          {stride, stride, 0}};
}

}  // namespace

void CopyFrame(const ConstFrameView& in, const FrameView& out) {
  if (SameFrame(in, out)) return;
  if (!Overlap(in, out)) return CopyApart(in, out);
  PaddedFrame between;
  between.Load(in);
  between.Store(out);
}

void PaddedFrame::Load(const ConstFrameView& in, FramePlace place) {
  SetSize(RoundUpTo(in.width, column_alignment_), RoundUpTo32(in.height));
  place_ = place;
  CopyApart(in, PackedView(luma(), chroma(), width_, place, in.width, in.height));
  Extend(in.width, in.height);
}

void PaddedFrame::Extend(int width, int height) {
  const auto [left, top] = place_;
  ExtendPlane(luma(), width_, height_, 1, {left, left + width, top, top + height});
  ExtendPlane(chroma(), width_, height_ / 2, 2,
              {left, left + 2 * ChromaSize(width), top / 2, top / 2 + ChromaSize(height)});
}

void PaddedFrame::Store(const FrameView& out) const {
  CopyApart(PackedView(luma(), chroma(), width_, place_, out.width, out.height), out);
}

ConstFrameView PaddedFrame::Part(const PixelRectangle& area) const {
  return PackedView(luma(), chroma(), width_, {area.x, area.y}, area.width, area.height);
}

void PaddedFrame::StoreLuma(int row, RowSpan columns, const FrameView& out) const {
  const auto begin = static_cast<std::ptrdiff_t>(columns.begin);
  std::memcpy(out.planes[0] + row * out.strides[0] + begin,
              luma() + static_cast<std::ptrdiff_t>(row) * width_ + begin,
              static_cast<size_t>(columns.end - columns.begin));
}

void PaddedFrame::StoreChroma(int row, RowSpan columns, const FrameView& out) const {
  StoreChromaPairs(chroma() + static_cast<std::ptrdiff_t>(row) * width_ + 2 * columns.begin, row,
                   columns, out);
}

void StoreChromaPairs(const uint8_t* pairs, int row, RowSpan columns, const FrameView& out) {
  const auto row_at = [&out, row](size_t plane) {
    return out.planes[plane] + row * out.strides[plane];
  };
  const bool planar = !IsSemiPlanar(out.format);
  const bool cr_first = out.format == PixelFormat::NV21;
  uint8_t* const cr = planar ? row_at(kCr) : row_at(1) + (cr_first ? 0 : 1);
  uint8_t* const cb = planar ? row_at(kCb) : row_at(1) + (cr_first ? 1 : 0);
  const std::ptrdiff_t step = planar ? 1 : 2;
  for (std::ptrdiff_t i = columns.begin; i < columns.end; ++i) {
    cr[i * step] = *pairs++;
    cb[i * step] = *pairs++;
  }
}

void PaddedFrame::Resize(const PaddedFrame& other) {
  SetSize(other.width_, other.height_);
}

void PaddedFrame::Copy(const PaddedFrame& other) {
  Resize(other);
  std::memcpy(luma(), other.luma(), luma_size() + luma_size() / 2);
}

void PaddedFrame::SetSize(int width, int height) {
  width_ = width;
  height_ = height;
  const size_t needed = luma_size() + luma_size() / 2;
  if (needed <= capacity_) return;
  capacity_ = 0;
  bytes_.reset(new uint8_t[needed]);
  capacity_ = needed;
}

}  // namespace lumora
