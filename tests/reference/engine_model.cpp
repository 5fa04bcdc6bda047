// SPDX-License-Identifier: Apache-2.0
#include "reference/engine_model.h"

#include <algorithm>

#include "reference/colour.h"
#include "reference/expand.h"

namespace lumora::reference {
namespace {

// Packing passes sample at texel centres, where linear filtering is exact too, or at borders, where
// any neighbour may answer.
constexpr double kPackingSlack = 1.0 / 1024;

void StoreBounds(const TexelBounds& texel, int x, int y, ImageBounds* image) {
  image->low.set(x, y, texel.low);
  image->high.set(x, y, texel.high);
}

}  // namespace

PreviewModel::PreviewModel(int src_width, int src_height, int proc_width, int proc_height,
                           Options options)
    : src_width_(src_width),
      src_height_(src_height),
      proc_width_(proc_width),
      proc_height_(proc_height),
      options_(options),
      rotate_(static_cast<float>(src_width) / static_cast<float>(src_height) -
                  static_cast<float>(proc_width) / static_cast<float>(proc_height) <
              0.0f) {
  const int row = RoundUp(src_width, 32);
  images_[kInput] = {ImageBounds(row, src_height), Wrap::MirroredRepeat, Filter::Linear};
  images_[kWork0] = {ImageBounds(row, src_height), Wrap::ClampToEdge, Filter::Linear};
  images_[kWork1] = images_[kWork0];
}

void PreviewModel::load(const Frame& in) {
  Expand(in, &images_[kInput].bounds.low);
  Expand(in, &images_[kInput].bounds.high);
}

void PreviewModel::draw(Slot source, Slot target, const BoundsShader& shader,
                        const Geometry& geometry) {
  bound_ = source;
  ImageBounds& store = images_[target].bounds;
  ForEachFragment(geometry, RoundUp(proc_width_, 32), proc_height_, store.low.width,
                  store.low.height, [&](int x, int y, Vec2 coordinate) {
                    StoreBounds(shader(images_[source], coordinate), x, y, &store);
                  });
}

TexelBounds PreviewModel::sampled(const Target& source, Vec2 coordinate) const {
  TexelBounds texel =
      SampleBounds(source.bounds, source.wrap, source.filter, coordinate, options_.slack);
  if (source.filter == Filter::Nearest) return texel;
  for (int channel = 0; channel < 4; ++channel) {
    texel.low[channel] -= options_.filter_error / 255.0;
    texel.high[channel] += options_.filter_error / 255.0;
  }
  return texel;
}

TexelBounds PreviewModel::warped(const Target& source, Vec2 coordinate) const {
  const WarpPoint point = WarpFrame(coordinate, warp_.uniforms(0.2));
  const TexelBounds red = TexelBounds::Exactly(kMaskRed);
  TexelBounds texel = sampled(source, point.coordinate);
  if (!options_.show_mask) return texel;
  const auto near = [&](double limit) {
    return point.unclamped > limit - options_.ratio_slack &&
           point.unclamped < limit + options_.ratio_slack;
  };
  if (near(0.95) || near(1.0)) {
    texel.include(red);
    return texel;
  }
  return MaskMarks(point) ? red : texel;
}

void PreviewModel::draw_face(int index, const FaceRecord& face, int level) {
  SetParameters(RequestOf(face, level, src_width_, src_height_), &warp_);
  const Slot source = index == 0 ? kInput : index % 2 == 1 ? kWork0 : kWork1;
  const Slot target = index % 2 == 0 ? kWork0 : kWork1;
  draw(source, target,
       [this](const Target& from, Vec2 coordinate) { return warped(from, coordinate); }, {});
}

FrameBounds PreviewModel::pack(int source_index) {
  const Slot source = source_index <= 0 ? kInput : source_index % 2 == 1 ? kWork0 : kWork1;
  const int row = RoundUp(proc_width_, 32);
  const Geometry geometry{rotate_ ? kRotatedPositions : kNormalPositions, kWholeTexture};
  const auto at = [&](Vec2 coordinate, Vec2 shift) {
    const Target& from = images_[source];
    return SampleBounds(from.bounds, from.wrap, from.filter,
                        {coordinate.x + shift.x, coordinate.y + shift.y}, kPackingSlack);
  };

  // Each pass first makes the texture bound before it nearest, then binds its own.
  images_[bound_].filter = Filter::Nearest;
  bound_ = source;
  ImageBounds luma(RoundUp(proc_width_ / 4, 32), proc_height_);
  const auto luma_shifts = LumaShifts(row, rotate_);
  ForEachFragment(geometry, row / 4, proc_height_, luma.low.width, luma.low.height,
                  [&](int x, int y, Vec2 coordinate) {
                    TexelBounds packed;
                    for (int i = 0; i < 4; ++i) {
                      const TexelBounds s = at(coordinate, luma_shifts[static_cast<size_t>(i)]);
                      packed.low[i] = s.low.r;
                      packed.high[i] = s.high.r;
                    }
                    StoreBounds(packed, x, y, &luma);
                  });

  images_[bound_].filter = Filter::Nearest;
  ImageBounds chroma(RoundUp(proc_width_ / 4, 32), proc_height_ / 2);
  const auto chroma_shifts = ChromaShifts(row, proc_height_, rotate_);
  ForEachFragment(geometry, row / 4, proc_height_ / 2, chroma.low.width, chroma.low.height,
                  [&](int x, int y, Vec2 coordinate) {
                    TexelBounds packed;
                    for (int i = 0; i < 2; ++i) {
                      const TexelBounds s = at(coordinate, chroma_shifts[static_cast<size_t>(i)]);
                      packed.low[2 * i] = s.low.g;
                      packed.high[2 * i] = s.high.g;
                      packed.low[2 * i + 1] = s.low.b;
                      packed.high[2 * i + 1] = s.high.b;
                    }
                    StoreBounds(packed, x, y, &chroma);
                  });
  return {Unpack(luma.low, chroma.low, proc_width_, proc_height_),
          Unpack(luma.high, chroma.high, proc_width_, proc_height_)};
}

FrameBounds PreviewModel::face_process(const Frame& in, int level, const FaceRecord& face) {
  return face_process_multiface(in, level, {face});
}

FrameBounds PreviewModel::face_process_multiface(const Frame& in, int level,
                                                 const std::vector<FaceRecord>& faces) {
  load(in);
  for (size_t i = 0; i < faces.size(); ++i) draw_face(static_cast<int>(i), faces[i], level);
  return pack(static_cast<int>(faces.size()));
}

FrameBounds PreviewModel::rectification(const Frame& in, int degree) {
  load(in);
  images_[bound_].filter = Filter::Linear;
  const RectificationQuad quad = QuadOfDegree(degree);
  draw(kInput, kWork0,
       [&](const Target& from, Vec2 coordinate) {
         TexelBounds texel = sampled(from, QuadMap(coordinate, quad));
         if (!options_.show_mask) return texel;
         const double outside = DistanceFromDot(coordinate, DegreeShown(degree));
         const TexelBounds red = TexelBounds::Exactly(kMaskRed);
         if (outside < -options_.ratio_slack) return red;
         if (outside < options_.ratio_slack) texel.include(red);
         return texel;
       },
       {});
  return pack(1);
}

FrameBounds PreviewModel::radial_rectification(const Frame& in, const RadialCoefficients& k) {
  load(in);
  images_[bound_].filter = Filter::Linear;
  draw(kInput, kWork0,
       [&](const Target& from, Vec2 coordinate) { return sampled(from, RadialMap(coordinate, k)); },
       {kNormalPositions, CroppedCorners()});
  return pack(1);
}

FrameBounds PreviewModel::round_trip(const Frame& in) {
  load(in);
  return pack(-1);
}

}  // namespace lumora::reference
