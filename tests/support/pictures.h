// SPDX-License-Identifier: Apache-2.0
// Frames and images to test with. Everything random comes from a seed, so every run sees the same.
#ifndef LUMORA_TESTS_SUPPORT_PICTURES_H_
#define LUMORA_TESTS_SUPPORT_PICTURES_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "reference/frame.h"
#include "reference/image.h"

namespace lumora::test {

using reference::Frame;
using reference::Image;

/// `count` uniformly distributed bytes.
std::vector<uint8_t> NoiseBytes(size_t count, uint32_t seed);

/// Every byte random: the hardest picture for copies and round trips.
Frame NoiseFrame(int width, int height, uint32_t seed);
/// Smooth: luma falls from left to right, Cr from top to bottom, Cb along the diagonal.
Frame GradientFrame(int width, int height);
/// Smooth gradients with waves of several lengths over them: a warp shows everywhere, and
/// neighbouring pixels differ by little, so that sampling errors stay small.
Frame TextureFrame(int width, int height);

Image NoiseImage(int width, int height, uint32_t seed);
/// Red grows with x, green with y, blue along the diagonal; alpha is `alpha`.
Image GradientImage(int width, int height, uint8_t alpha = 255);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_SUPPORT_PICTURES_H_
