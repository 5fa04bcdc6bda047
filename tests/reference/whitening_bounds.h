// SPDX-License-Identifier: Apache-2.0
// Whitened texels as ranges: near the line of an ellipse the last bits of the driver's arithmetic
// decide on which side a pixel lies.
#ifndef LUMORA_REFERENCE_WHITENING_BOUNDS_H_
#define LUMORA_REFERENCE_WHITENING_BOUNDS_H_

#include "reference/bounds.h"
#include "reference/whitening.h"

namespace lumora::reference {

/// How near an ellipse's line counts as on it, in half axes.
constexpr double kLineSlack = 1e-3;

/// What whitening may make of an HSI texel at a place of the frame.
TexelBounds WhitenBounds(const TexelBounds& hsi, Vec2 place, const WhiteningUniforms& uniforms);

/// The same where an earlier result, if its alpha is not 0, is kept.
TexelBounds WhitenBounds(const TexelBounds& hsi, const TexelBounds& previous, Vec2 place,
                         const WhiteningUniforms& uniforms);

}  // namespace lumora::reference

#endif  // LUMORA_REFERENCE_WHITENING_BOUNDS_H_
