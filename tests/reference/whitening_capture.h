// SPDX-License-Identifier: Apache-2.0
// Whitened captures: the store of the whole frame, block after block.
#ifndef LUMORA_REFERENCE_WHITENING_CAPTURE_H_
#define LUMORA_REFERENCE_WHITENING_CAPTURE_H_

#include <vector>

#include "reference/capture_blocks.h"
#include "reference/face_record.h"
#include "reference/frame.h"
#include "reference/whitening_parameters.h"

namespace lumora::reference {

/// What a caller asks for.
struct WhiteningRequest {
  int intensity_level = 0;
  int saturation_level = 0;
  int32_t effect = kIntensityAndSaturation;
};

/// An engine in block mode with a fresh store. Block widths are multiples of 32.
class WhiteningCaptureModel {
 public:
  WhiteningCaptureModel(int width, int height);

  /// One call with at most ten faces. The frame has the capture's size; with an odd height it is of
  /// one colour.
  void whiten(const Frame& frame, const std::vector<FaceRecord>& faces,
              const WhiteningRequest& request);

  /// Lets the store hold something else than zeros.
  void set_store(const Image& store) { store_ = ImageBounds(store); }

  const CaptureSize& size() const { return size_; }
  /// HSI with the mask in alpha, rows rounded up to 32 pixels.
  const ImageBounds& store() const { return store_; }
  /// The rectangles of the faces of the last call, whether they were processed or not.
  const std::vector<Rectangle>& rectangles() const { return rectangles_; }
  /// Whether a face's rectangle is at least a twentieth of the frame in each direction.
  bool processed(size_t face) const;

 private:
  void whiten_block(const Frame& frame, Rectangle block, const WhiteningUniforms& uniforms,
                    size_t face);

  CaptureSize size_;
  ImageBounds store_;
  std::vector<Rectangle> rectangles_;
};

}  // namespace lumora::reference

#endif  // LUMORA_REFERENCE_WHITENING_CAPTURE_H_
