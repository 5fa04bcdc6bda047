// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/cpu/slimming.h"

#include <algorithm>
#include <cmath>

#include "lumora/geometry/rounding.h"
#include "lumora/geometry/warp.h"
#include "pipeline/frames/frame_copy.h"
#include "pipeline/plan/circle_spans.h"
#include "pipeline/plan/warp_geometry.h"

namespace lumora::cpu {
namespace {

/// The size that a warp is measured in: both sides multiples of 32.
struct PaddedSize {
  PaddedSize(int frame_width, int frame_height)
      : width(RoundUpTo32(frame_width)), height(RoundUpTo32(frame_height)) {}
  int width;
  int height;
};

Warp WarpOf(const FacePlan& face, Chain chain, const PaddedSize& size) {
  FaceMeasures measures{};
  measures.loc_x = face.record.loc_x;
  measures.loc_y = face.record.loc_y;
  measures.dist = face.record.dist;
  measures.chin_dist = face.record.chin_dist;
  measures.roll = face.record.roll;
  measures.shape_type = face.record.shapetype;
  WarpRequest request{};
  request.frame_width = size.width;
  request.frame_height = size.height;
  request.beauty_level = kBeautyLevel;
  request.level_ratio = face.record.dist_level_ratio;
  request.capture = chain == Chain::Capture;
  return ComputeWarp(measures, request);
}

/// From shares of the frame to pixels. The limiter's distance is a share of each side, which
/// stretches it where they differ.
WarpShape ShapeOf(const Warp& warp, const PaddedSize& size, bool smooth_chroma) {
  const auto width = static_cast<float>(size.width);
  const float reach = warp.limiter_distance * warp.radius;
  WarpShape shape{};
  shape.strength = warp.strength / width;
  shape.inverse_radius = 1 / (warp.radius * width);
  shape.limiter_x = reach * std::cos(warp.limiter_direction) * width;
  shape.limiter_y = reach * std::sin(warp.limiter_direction) * static_cast<float>(size.height);
  shape.inverse_reach = 1 / (warp.limiter_scale * reach * width);
  shape.smooth_chroma = smooth_chroma;
  return shape;
}

/// The circle and what is drawn into it from outside of the frame: within a share of the radius.
PixelRectangle PlaceOf(const FacePlan& face, const PaddedSize& size) {
  const int radius = static_cast<int>(std::ceil(face.radius)) + 2;
  const int beyond = RoundUpToEven(radius / 4 + 2);
  const auto even = [](float centre, int offset) {
    return (static_cast<int>(centre) + offset) & ~1;
  };
  const int left = std::max(even(face.centre.x, -radius - 2), -beyond);
  const int top = std::max(even(face.centre.y, -radius - 2), -beyond);
  const int right = std::min(even(face.centre.x, radius + 2), size.width + beyond);
  const int bottom = std::min(even(face.centre.y, radius + 2), size.height + beyond);
  return {left, top, RoundUpTo32(right - left), bottom - top};
}

/// How far a pixel lies from the borders across an axis, as the fade measures it.
float BorderAt(int pixel, int size, float exponent) {
  const float share = (static_cast<float>(pixel) + 0.5f) / static_cast<float>(size);
  return std::pow(std::max(std::min(share, 1 - share), 0.f), exponent);
}

/// Stores what lies in the circle of two rows, the first of which is row `y` of the frame from
/// column `x` on.
void StoreSpans(const WarpRows& rows, int x, int y, const CircleSpans& spans,
                const FrameView& frame) {
  const auto store = [&](const uint8_t* from, int row, const RowSpan& span) {
    if (span.begin == span.end) return;
    std::copy_n(from + (span.begin - x), span.end - span.begin,
                frame.planes[0] + row * frame.strides[0] + span.begin);
  };
  store(rows.luma[0], y, spans.upper);
  store(rows.luma[1], y + 1, spans.lower);
  StoreChromaPairs(rows.chroma + (2 * spans.chroma.begin - x), y / 2, spans.chroma, frame);
}

}  // namespace

void Slimming::Prepare(const FramePlan& plan, int width, int height, const Workers& workers) {
  const PaddedSize size(width, height);
  for (const FacePlan& face : plan.faces) {
    tile_.SetPlace(PlaceOf(face, size));
    const auto columns = static_cast<size_t>(tile_.stride());
    borders_.resize(std::max(borders_.size(), columns));
    rows_.resize(std::max(rows_.size(), 3 * columns * static_cast<size_t>(workers.threads())));
  }
}

void Slimming::Draw(const FramePlan& plan, const FrameView& frame, Workers& workers) {
  // The first face of a preview, and every one of a capture, is drawn from an image that is seen in
  // a mirror beyond its borders.
  Beyond beyond = Beyond::Mirror;
  for (const FacePlan& face : plan.faces) {
    DrawFace(face, plan.chain, beyond, frame, workers);
    if (plan.chain == Chain::Preview) beyond = Beyond::Repeat;
  }
}

void Slimming::DrawFace(const FacePlan& face, Chain chain, Beyond beyond, const FrameView& frame,
                        Workers& workers) {
  const PaddedSize size(frame.width, frame.height);
  const Warp warp = WarpOf(face, chain, size);
  const WarpShape shape = ShapeOf(warp, size, chain == Chain::Capture);
  tile_.SetPlace(PlaceOf(face, size));
  tile_.Load(AsConst(frame), beyond, workers);
  const PixelRectangle& place = tile_.place();
  for (int column = 0; column < place.width; ++column) {
    borders_[static_cast<size_t>(column)] = BorderAt(place.x + column, size.width, warp.edge_fade);
  }
  const WarpSource source = SourceFor(face);
  const int bottom = std::min(face.bounds.y + face.bounds.height, frame.height);
  workers.Run(std::max(0, (bottom - face.bounds.y + 1) / 2), [&](int pair, int worker) {
    const int y = face.bounds.y + 2 * pair;
    const CircleSpans spans = CircleSpansAt(face, y, frame.width, frame.height);
    if (spans.chroma.begin == spans.chroma.end) return;
    // Whole groups of columns, counted from the tile's first.
    const int first = (2 * spans.chroma.begin - place.x) / kWarpColumns * kWarpColumns;
    const int last = RoundUpTo32(2 * spans.chroma.end - place.x);
    uint8_t* const memory = RowsOf(worker);
    WarpRows rows{};
    rows.x = source.x + static_cast<float>(first);
    rows.y = static_cast<float>(y) + 0.5f - face.centre.y;
    rows.columns = last - first;
    rows.column_borders = borders_.data() + first;
    for (int row = 0; row < 2; ++row) {
      rows.row_borders[row] = BorderAt(y + row, size.height, warp.edge_fade);
      rows.luma[row] = memory + row * place.width;
    }
    rows.chroma = memory + 2 * place.width;
    DrawWarp(shape, source, rows);
    StoreSpans(rows, place.x + first, y, spans, frame);
  });
}

WarpSource Slimming::SourceFor(const FacePlan& face) const {
  const PixelRectangle& place = tile_.place();
  WarpSource source{};
  source.luma = tile_.luma();
  source.chroma = tile_.chroma();
  source.stride = tile_.stride();
  source.columns = place.width;
  source.rows = place.height;
  source.x = static_cast<float>(place.x) + 0.5f - face.centre.x;
  source.y = static_cast<float>(place.y) + 0.5f - face.centre.y;
  return source;
}

}  // namespace lumora::cpu
