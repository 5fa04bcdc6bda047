// SPDX-License-Identifier: Apache-2.0
// Whole preview frames: what the engine's entry points give back, pass after pass.
//
// Every pass stores 8 bits. How the input and the work images are sampled changes over time: the
// packing passes set nearest filters on the texture that happens to be bound, before they bind
// their own. So the input image is sampled with linear filtering in the first frame and nearest
// afterwards. One model object is therefore one initialised engine, and its calls follow the
// engine's.
#ifndef LUMORA_REFERENCE_ENGINE_MODEL_H_
#define LUMORA_REFERENCE_ENGINE_MODEL_H_

#include <functional>
#include <vector>

#include "reference/bounds.h"
#include "reference/face_record.h"
#include "reference/quad.h"
#include "reference/rectification.h"
#include "reference/warp_parameters.h"

namespace lumora::reference {

class PreviewModel {
 public:
  struct Options {
    bool show_mask = false;
    /// How far, in texels, the driver's sample positions may be off: interpolation weights have
    /// 8 bits, and positions of float precision move a nearest sample by far less.
    double slack = 1.0 / 128;
    /// How far, in 8-bit steps, a linearly filtered value may be off.
    int filter_error = 1;
    /// How far the warp's ratio may be off where a mask variant decides by it.
    double ratio_slack = 1e-3;
  };

  /// An engine after Init(src_width, src_height, proc_width, proc_height, ..., false). Frames have
  /// the source size, a width that is a multiple of 16 and an even height; results have the
  /// processing size.
  PreviewModel(int src_width, int src_height, int proc_width, int proc_height, Options options);
  PreviewModel(int width, int height) : PreviewModel(width, height, width, height, Options()) {}
  PreviewModel(int width, int height, Options options)
      : PreviewModel(width, height, width, height, options) {}

  FrameBounds face_process(const Frame& in, int level, const FaceRecord& face);
  /// With no face the frame comes back as it is.
  FrameBounds face_process_multiface(const Frame& in, int level,
                                     const std::vector<FaceRecord>& faces);
  FrameBounds rectification(const Frame& in, int degree);
  FrameBounds radial_rectification(const Frame& in, const RadialCoefficients& k);
  /// LoadPreviewFrameBuffer and CopyMemYUVfromSrcTexture.
  FrameBounds round_trip(const Frame& in);

  /// The program's members now.
  const WarpMembers& warp() const { return warp_; }
  bool rotated() const { return rotate_; }
  /// The input image's filter now.
  Filter input_filter() const { return images_[kInput].filter; }

 private:
  enum Slot { kInput, kWork0, kWork1, kPackedChroma, kSlots };

  struct Target {
    ImageBounds bounds;
    Wrap wrap = Wrap::ClampToEdge;
    Filter filter = Filter::Nearest;
  };
  // The range of a fragment's colour, given the image that it samples.
  using BoundsShader = std::function<TexelBounds(const Target& source, Vec2 coordinate)>;

  void load(const Frame& in);
  void draw(Slot source, Slot target, const BoundsShader& shader, const Geometry& geometry);
  void draw_face(int index, const FaceRecord& face, int level);
  TexelBounds warped(const Target& source, Vec2 coordinate) const;
  TexelBounds sampled(const Target& source, Vec2 coordinate) const;
  FrameBounds pack(int source_index);

  int src_width_, src_height_, proc_width_, proc_height_;
  Options options_;
  bool rotate_;
  WarpMembers warp_;
  Target images_[kSlots];
  Slot bound_ = kPackedChroma;  // the texture that a filter change would hit
};

}  // namespace lumora::reference

#endif  // LUMORA_REFERENCE_ENGINE_MODEL_H_
