// SPDX-License-Identifier: Apache-2.0
#include "reference/slimming_capture.h"

#include <algorithm>
#include <cmath>
#include <functional>

#include "reference/colour_bounds.h"
#include "reference/quad.h"

namespace lumora::reference {
namespace {

// Draws one block: `sample` tells what is at a place that is known up to the slack.
ImageBounds DrawBlock(const CaptureSize& size, const SlimmerUniforms& uniforms,
                      const std::function<TexelBounds(Vec2 place)>& sample) {
  ImageBounds drawn(size.block_width, size.block_height);
  ForEachFragment({}, size.block_width, size.block_height, size.block_width, size.block_height,
                  [&](int x, int y, Vec2 coordinate) {
                    const TexelBounds texel = sample(WarpBlock(coordinate, uniforms).coordinate);
                    drawn.low.set(x, y, texel.low);
                    drawn.high.set(x, y, texel.high);
                  });
  return drawn;
}

// The texels that nearest filtering may answer with.
TexelBounds Nearest(const Sampler& sampler, Vec2 place,
                    const std::function<TexelBounds(const Texel&)>& shader) {
  TexelBounds result = shader(sampler.sample(place));
  const auto inner = [](double coordinate, int size) {
    return std::floor((coordinate - kCaptureSlack) * size) ==
           std::floor((coordinate + kCaptureSlack) * size);
  };
  if (inner(place.x, sampler.image->width) && inner(place.y, sampler.image->height)) return result;
  for (const double x : {place.x - kCaptureSlack, place.x + kCaptureSlack}) {
    for (const double y : {place.y - kCaptureSlack, place.y + kCaptureSlack}) {
      result.include(shader(sampler.sample({x, y})));
    }
  }
  return result;
}

}  // namespace

SlimmingCaptureModel::SlimmingCaptureModel(int width, int height, bool block_mode)
    : size_(width, height), block_mode_(block_mode) {}

void SlimmingCaptureModel::set_face(const FaceRecord& face, int level) {
  WarpRequest request = RequestOf(face, level, size_.width, size_.height, true);
  request.block_mode = block_mode_;
  SetParameters(request, &warp_);
  warp_.aspect_ratio = static_cast<float>(size_.height) / static_cast<float>(size_.width);
}

Rectangle SlimmingCaptureModel::rectangle_of(const FaceRecord& face) const {
  const int measure = std::max(face.get(FaceRecord::kDist), face.get(FaceRecord::kChinDist));
  const auto reach = [measure](int block) {
    return static_cast<int>(std::ceil(static_cast<float>(measure) / static_cast<float>(block))) *
           block;
  };
  const int across = reach(size_.block_width);
  const int down = reach(size_.block_height);
  return {face.get(FaceRecord::kLocX) - across, face.get(FaceRecord::kLocY) - down, 2 * across,
          2 * down};
}

SlimmerUniforms SlimmingCaptureModel::uniforms_at(const Rectangle& block) const {
  SlimmerUniforms uniforms = warp_.uniforms(0.0);
  uniforms.block_scale = {static_cast<double>(size_.block_width) / size_.width,
                          static_cast<double>(size_.block_height) / size_.height};
  uniforms.block_shift = {uniforms.centre.x - static_cast<double>(block.x) / size_.width,
                          uniforms.centre.y - static_cast<double>(block.y) / size_.height};
  return uniforms;
}

void SlimmingCaptureModel::slim(const std::vector<uint8_t>& planes, const Rectangle& rectangle,
                                PlaneBounds* out) const {
  // Textures of the two planes: luma in red, a chroma pair in red and alpha.
  Image luma(size_.width, size_.height);
  Image chroma(size_.width / 2, size_.height / 2);
  const size_t pixels = static_cast<size_t>(size_.width) * static_cast<size_t>(size_.height);
  for (size_t i = 0; i < pixels; ++i) luma.bytes[4 * i] = planes[i];
  for (size_t i = 0; i < chroma.bytes.size() / 4; ++i) {
    chroma.bytes[4 * i] = planes[pixels + 2 * i];
    chroma.bytes[4 * i + 3] = planes[pixels + 2 * i + 1];
  }
  const Sampler luma_sampler{&luma, Wrap::MirroredRepeat, Filter::Nearest};
  const Sampler chroma_sampler{&chroma, Wrap::MirroredRepeat, Filter::Nearest};
  const auto same = [](const Texel& texel) { return TexelBounds::Exactly(texel); };
  for (const Rectangle& block : BlocksOf(size_, rectangle, size_.row)) {
    const ImageBounds drawn = DrawBlock(size_, uniforms_at(block), [&](Vec2 place) {
      const TexelBounds y = Nearest(luma_sampler, place, same);
      const TexelBounds pair = Nearest(chroma_sampler, place, same);
      return TexelBounds{{y.low.r, pair.low.r, pair.low.a, 1.0},
                         {y.high.r, pair.high.r, pair.high.a, 1.0}};
    });
    out->put(block, drawn);
  }
}

void SlimmingCaptureModel::slim(const Image& store, const Rectangle& rectangle,
                                PlaneBounds* out) const {
  const Sampler sampler{&store, Wrap::ClampToEdge, Filter::Nearest};
  for (const Rectangle& block : BlocksOf(size_, rectangle, size_.row)) {
    const ImageBounds drawn = DrawBlock(size_, uniforms_at(block), [&](Vec2 place) {
      return Nearest(sampler, place, HsiToYuvBounds);
    });
    out->put(block, drawn);
  }
}

}  // namespace lumora::reference
