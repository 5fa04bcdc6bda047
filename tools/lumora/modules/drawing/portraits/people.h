// SPDX-License-Identifier: Apache-2.0
// Who is drawn: the colours and traits in which the portraits differ.
#ifndef LUMORA_TOOLS_MODULES_DRAWING_PORTRAITS_PEOPLE_H_
#define LUMORA_TOOLS_MODULES_DRAWING_PORTRAITS_PEOPLE_H_

#include "tools/lumora/modules/drawing/portraits/canvas.h"

namespace lumora::tools {

enum class HairStyle { Long, Short, Bob, Curls };
enum class Wallpaper { Tiles, Stripes, Grid, Planks };

struct Person {
  Rgb skin, skin_shadow, blush, lips;
  Rgb hair, iris;
  Rgb shirt, shirt_stripe;
  Rgb wall, wall_line;
  HairStyle hair_style;
  Wallpaper wallpaper;
  bool freckles, stubble, glasses, earrings;
};

inline constexpr Person kPeople[] = {
    {0xdab79b, 0xbb8666, 0xd27f6c, 0xc8605f, 0xa4502a, 0x5a8a5a, 0x2f7f86, 0x27696f, 0xdfe9e4,
     0x9fbdb2, HairStyle::Long, Wallpaper::Tiles, true, false, false, false},
    {0xd09a71, 0xa56f49, 0xc47352, 0xb0625a, 0x2b2422, 0x5d4030, 0x44597f, 0x394b6d, 0xf0e6d4,
     0xcdb48d, HairStyle::Short, Wallpaper::Stripes, false, true, false, false},
    {0xbf855c, 0x8c5636, 0xb0583c, 0x99433f, 0x33211c, 0x3d281c, 0xd9a441, 0xc48f30, 0xdde3f0,
     0x9aa8c9, HairStyle::Bob, Wallpaper::Grid, false, false, true, false},
    {0x80533a, 0x57331f, 0x8f4632, 0x7c3a3c, 0x1d1716, 0x2a1a12, 0xb8505a, 0xa3434d, 0xf3ddd0,
     0xd3a48c, HairStyle::Curls, Wallpaper::Planks, false, false, false, true},
};

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_MODULES_DRAWING_PORTRAITS_PEOPLE_H_
