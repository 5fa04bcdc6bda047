// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/cpu/rectification.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <variant>

#include "lumora/geometry/keystone.h"
#include "lumora/geometry/lens.h"
#include "lumora/geometry/rounding.h"
#include "pipeline/frames/frame_layout.h"
#include "pipeline/support/camera_lens.h"
#include "pipeline/support/lens_share.h"
#include "pipeline/support/number_bounds.h"

namespace lumora::cpu {
namespace {

/// Plane 1 and 2 as Cb and Cr of planar frames.
constexpr size_t kCb = 1;
constexpr size_t kCr = 2;

/// Samples that wait for their place in a frame of another layout.
constexpr int kChunk = 256;

RemapAxis AxisOf(int size, int first) {
  return {static_cast<float>(RoundUpTo32(size)), first, size - 1};
}

/// A coordinate between the corners of a Keystone, as pixels of `size`.
QuadAxis AxisBetween(const float (&corners)[4], int size, int width, int height) {
  const double left_top = static_cast<double>(corners[0]);
  const double across = static_cast<double>(corners[1]) - left_top;
  const double down = static_cast<double>(corners[2]) - left_top;
  const double both = static_cast<double>(corners[3]) - left_top - across - down;
  return {static_cast<float>(left_top * size), static_cast<float>(across * size / width),
          static_cast<float>(down * size / height),
          static_cast<float>(both * size / width / height)};
}

RemapSource SourceOf(const ConstFrameView& in, RemapSource::Kind kind, size_t plane) {
  return {kind, false, in.planes[plane], in.strides[plane], RowBytes(in.format, plane, in.width)};
}

uint8_t* RowOf(const FrameView& out, size_t plane, int row) {
  return out.planes[plane] + row * out.strides[plane];
}

/// The plane of the first sample of pairs, in planar frames.
size_t FirstPlane(PixelFormat pairs) {
  return pairs == PixelFormat::NV21 ? kCr : kCb;
}

size_t SecondPlane(PixelFormat pairs) {
  return pairs == PixelFormat::NV21 ? kCb : kCr;
}

/// A row of chroma from pairs to planes.
void DrawApart(const Remap& remap, const ConstFrameView& in, const FrameView& out, int row) {
  const RemapSource source = SourceOf(in, RemapSource::Kind::Pairs, 1);
  const int columns = ChromaSize(in.width);
  for (int begin = 0; begin < columns; begin += kChunk) {
    const int count = std::min(columns - begin, kChunk);
    uint8_t pairs[2 * kChunk];
    RemapRow(remap, source, row, begin, begin + count, pairs);
    uint8_t* const first = RowOf(out, FirstPlane(in.format), row) + begin;
    uint8_t* const second = RowOf(out, SecondPlane(in.format), row) + begin;
    for (int i = 0; i < count; ++i) {
      first[i] = pairs[2 * i];
      second[i] = pairs[2 * i + 1];
    }
  }
}

/// A row of chroma from planes to pairs.
void DrawTogether(const Remap& remap, const ConstFrameView& in, const FrameView& out, int row) {
  const auto source_of = [&in](size_t plane) {
    return SourceOf(in, RemapSource::Kind::Chroma, plane);
  };
  const RemapSource first_source = source_of(FirstPlane(out.format));
  const RemapSource second_source = source_of(SecondPlane(out.format));
  const int columns = ChromaSize(in.width);
  for (int begin = 0; begin < columns; begin += kChunk) {
    const int count = std::min(columns - begin, kChunk);
    uint8_t first[kChunk];
    uint8_t second[kChunk];
    RemapRow(remap, first_source, row, begin, begin + count, first);
    RemapRow(remap, second_source, row, begin, begin + count, second);
    uint8_t* const pairs = RowOf(out, 1, row) + 2 * static_cast<std::ptrdiff_t>(begin);
    for (int i = 0; i < count; ++i) {
      pairs[2 * i] = first[i];
      pairs[2 * i + 1] = second[i];
    }
  }
}

void DrawChroma(const Remap& remap, const ConstFrameView& in, const FrameView& out, int row) {
  const int columns = ChromaSize(in.width);
  if (IsSemiPlanar(in.format) && IsSemiPlanar(out.format)) {
    RemapSource source = SourceOf(in, RemapSource::Kind::Pairs, 1);
    source.swapped = in.format != out.format;
    RemapRow(remap, source, row, 0, columns, RowOf(out, 1, row));
  } else if (IsSemiPlanar(in.format)) {
    DrawApart(remap, in, out, row);
  } else if (IsSemiPlanar(out.format)) {
    DrawTogether(remap, in, out, row);
  } else {
    for (const size_t plane : {kCb, kCr}) {
      const RemapSource source = SourceOf(in, RemapSource::Kind::Chroma, plane);
      RemapRow(remap, source, row, 0, columns, RowOf(out, plane, row));
    }
  }
}

}  // namespace

Remap KeystoneRemap(int width, int height, int degree) {
  const Keystone quad = KeystoneOf(degree);
  Remap remap{};
  remap.kind = Remap::Kind::Quad;
  remap.quad = {AxisBetween(quad.x, width, width, height),
                AxisBetween(quad.y, height, width, height)};
  remap.columns = AxisOf(width, 0);
  remap.rows = AxisOf(height, 0);
  remap.width = width;
  remap.height = height;
  return remap;
}

Remap LensRemap(int width, int height, const LensCoefficients& lens) {
  const FramePlace place = MiddlePlace(width, height);
  const double padded_width = RoundUpTo32(width);
  const double padded_height = RoundUpTo32(height);
  // The engine shows a little less than the whole, so that the bent borders stay outside.
  float crop[2];
  CropCorner(0, 0, crop);
  const double shown = 1 - 2 * static_cast<double>(crop[0]);
  const double half_diagonal = static_cast<double>(kHalfDiagonal);
  const double scale = shown / half_diagonal;

  Remap remap{};
  remap.kind = Remap::Kind::Lens;
  LensMap& map = remap.lens;
  map.middle_x = static_cast<float>(padded_width / 2);
  map.middle_y = static_cast<float>(padded_height / 2);
  map.centre_x = map.middle_x - static_cast<float>(place.left);
  map.centre_y = map.middle_y - static_cast<float>(place.top);
  map.share_x = static_cast<float>(scale * scale / (padded_width * padded_width));
  map.share_y = static_cast<float>(scale * scale / (padded_height * padded_height));
  const float given[] = {lens.k0, lens.k1, lens.k2, lens.k3};
  const std::array<double, 4> coefficients =
      CoefficientsIn({width / padded_width, height / padded_height}, given);
  std::transform(coefficients.begin(), coefficients.end(), map.k,
                 [shown](double coefficient) { return static_cast<float>(coefficient * shown); });
  remap.columns = AxisOf(width, place.left);
  remap.rows = AxisOf(height, place.top);
  remap.width = width;
  remap.height = height;
  return remap;
}

LensCoefficients CoefficientsOf(const Lens& lens) {
  if (const auto* const given = std::get_if<LensCoefficients>(&lens)) return *given;
  const LensCoefficients read = ReadCameraLens(*std::get_if<Camera>(&lens));
  return IsUsable(read) ? read : LensCoefficients{};
}

int RowPairs(const ConstFrameView& frame) {
  return ChromaSize(frame.height);
}

void DrawRowPairs(const Remap& remap, const ConstFrameView& in, const FrameView& out, int begin,
                  int end) {
  const RemapSource luma = SourceOf(in, RemapSource::Kind::Luma, 0);
  for (int pair = begin; pair < end; ++pair) {
    for (int row = 2 * pair; row < std::min(2 * pair + 2, in.height); ++row) {
      RemapRow(remap, luma, row, 0, in.width, RowOf(out, 0, row));
    }
    DrawChroma(remap, in, out, pair);
  }
}

ConstFrameView SourceApart(const ConstFrameView& in, const FrameView& out, OwnFrame* memory) {
  return Overlap(in, out) ? memory->Copy(in) : in;
}

}  // namespace lumora::cpu
