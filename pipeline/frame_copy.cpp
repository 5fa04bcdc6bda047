#include "pipeline/frame_copy.h"

#include <libyuv/planar_functions.h>

#include <cstring>

#include "pipeline/face_record.h"
#include "pipeline/frame_layout.h"

namespace lumora {
namespace {

/// Plane 1 and 2 as Cb and Cr of planar frames.
constexpr size_t kCb = 1;
constexpr size_t kCr = 2;

template <typename Byte>
int Stride(const BasicFrameView<Byte>& frame, size_t plane) {
  return static_cast<int>(frame.strides[plane]);
}

/// Copies between frames that share no byte.
void CopyApart(const ConstFrameView& in, const FrameView& out) {
  libyuv::CopyPlane(in.planes[0], Stride(in, 0), out.planes[0], Stride(out, 0), in.width,
                    in.height);
  const int columns = ChromaSize(in.width);
  const int rows = ChromaSize(in.height);
  if (in.format == out.format) {
    for (size_t plane = 1; plane < PlaneCount(in.format); ++plane) {
      libyuv::CopyPlane(in.planes[plane], Stride(in, plane), out.planes[plane], Stride(out, plane),
                        RowBytes(in.format, plane, in.width), rows);
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

/// The addresses of a plane, from its first sample to behind its last.
struct Extent {
  uintptr_t begin;
  uintptr_t end;
};

template <typename Byte>
Extent ExtentOf(const BasicFrameView<Byte>& frame, size_t plane) {
  const auto begin = reinterpret_cast<uintptr_t>(frame.planes[plane]);
  const auto rows = static_cast<uintptr_t>(PlaneRows(plane, frame.height));
  const auto row_bytes = static_cast<uintptr_t>(RowBytes(frame.format, plane, frame.width));
  return {begin, begin + (rows - 1) * static_cast<uintptr_t>(frame.strides[plane]) + row_bytes};
}

bool Overlap(const ConstFrameView& in, const FrameView& out) {
  for (size_t i = 0; i < PlaneCount(in.format); ++i) {
    for (size_t o = 0; o < PlaneCount(out.format); ++o) {
      const Extent a = ExtentOf(in, i);
      const Extent b = ExtentOf(out, o);
      if (a.begin < b.end && b.begin < a.end) return true;
    }
  }
  return false;
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

/// Repeats the last `unit` bytes of each of the first `rows` rows up to `stride`, then the last of
/// these rows up to `all_rows`.
void ExtendPlane(uint8_t* plane, int stride, int used, int unit, int rows, int all_rows) {
  const auto row_bytes = static_cast<size_t>(stride);
  const auto unit_bytes = static_cast<size_t>(unit);
  for (int row = 0; row < rows; ++row) {
    uint8_t* const begin = plane + static_cast<size_t>(row) * row_bytes;
    for (int at = used; at < stride; at += unit) {
      std::memcpy(begin + at, begin + used - unit, unit_bytes);
    }
  }
  const uint8_t* const last = plane + static_cast<size_t>(rows - 1) * row_bytes;
  for (int row = rows; row < all_rows; ++row) {
    std::memcpy(plane + static_cast<size_t>(row) * row_bytes, last, row_bytes);
  }
}

/// The upper left width x height pixels of a tightly packed NV21 frame.
template <typename Byte>
BasicFrameView<Byte> PackedView(Byte* luma, Byte* chroma, std::ptrdiff_t stride, int width,
                                int height) {
  return {PixelFormat::NV21, width, height, {luma, chroma, nullptr}, {stride, stride, 0}};
}

}  // namespace

void CopyFrame(const ConstFrameView& in, const FrameView& out) {
  if (SameFrame(in, out)) return;
  if (!Overlap(in, out)) return CopyApart(in, out);
  PaddedFrame between;
  between.Load(in);
  between.Store(out);
}

void PaddedFrame::Load(const ConstFrameView& in) {
  width_ = AlignedSize(in.width);
  height_ = AlignedSize(in.height);
  bytes_.resize(luma_size() + luma_size() / 2);
  CopyApart(in, PackedView(luma(), chroma(), width_, in.width, in.height));
  ExtendPlane(luma(), width_, in.width, 1, in.height, height_);
  ExtendPlane(chroma(), width_, 2 * ChromaSize(in.width), 2, ChromaSize(in.height), height_ / 2);
}

void PaddedFrame::Store(const FrameView& out) const {
  const uint8_t* const luma = bytes_.data();
  CopyApart(PackedView(luma, luma + luma_size(), width_, out.width, out.height), out);
}

}  // namespace lumora
