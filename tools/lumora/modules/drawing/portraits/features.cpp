// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/modules/drawing/portraits/features.h"

namespace lumora::tools {
namespace {

void DrawEye(Canvas& canvas, const Person& person, bool mirrored) {
  const auto placed = [mirrored](const Points& p) { return mirrored ? Mirrored(p) : p; };
  const double shine_x = mirrored ? 1000 - kEyeX - 6 : kEyeX - 6;  // light comes from one side
  const Rgb lash = Mix(person.hair, 0x120c0a, 0.75);
  const Points lid = {{kEyeX - kEyeHalfWidth, kEyeY + 8},
                      {kEyeX - 22, kEyeY - 14},
                      {kEyeX + 2, kEyeY - 22},
                      {kEyeX + 26, kEyeY - 14},
                      {kEyeX + kEyeHalfWidth, kEyeY + 2}};
  Points almond = lid;
  for (const cv::Point2d low : {cv::Point2d(kEyeX + 24, kEyeY + 16), cv::Point2d(kEyeX, kEyeY + 21),
                                cv::Point2d(kEyeX - 24, kEyeY + 17)}) {
    almond.push_back(low);
  }
  const Points opening = placed(Smooth(almond));
  canvas.Fill(placed(Oval({kEyeX, kEyeY - 6}, 54, 36)), {person.skin_shadow, 0.5, 12});
  canvas.Fill(opening, {0xfbf8f4});
  const cv::Mat clip = canvas.Mask(opening);
  const cv::Point2d iris(kEyeX - 1, kEyeY - 2);
  canvas.Fill(placed(Oval(iris, 21, 21)), {Mix(person.iris, 0x000000, 0.55), 1, 0, &clip});
  canvas.Fill(placed(Oval(iris, 17, 17)), {person.iris, 1, 1.5, &clip});
  canvas.Fill(placed(Oval(iris + cv::Point2d(0, 7), 11, 8)),
              {Mix(person.iris, 0xffffff, 0.4), 0.6, 3, &clip});
  canvas.Fill(placed(Oval(iris, 9, 9)), {0x0c0808, 1, 0.7, &clip});
  canvas.Fill(placed(Stroke(lid, 26)), {0x2a1a14, 0.4, 5, &clip});  // shadow of the lid
  canvas.Fill(Oval({shine_x, kEyeY - 9}, 6, 6), {0xffffff, 0.95, 0.7, &clip});
  // Upper lashes end in a small wing, the crease above follows them.
  Points lashes = lid;
  lashes.emplace_back(kEyeX + kEyeHalfWidth + 8, kEyeY - 4);
  canvas.Fill(placed(Stroke(lashes, 11)), {lash, 0.95, 0.8});
  canvas.Fill(
      placed(
          Stroke({{kEyeX - 32, kEyeY - 18}, {kEyeX + 2, kEyeY - 36}, {kEyeX + 38, kEyeY - 16}}, 5)),
      {Mix(person.skin_shadow, 0x000000, 0.3), 0.7, 1.5});
  canvas.Fill(
      placed(Stroke({{kEyeX - 26, kEyeY + 19}, {kEyeX, kEyeY + 24}, {kEyeX + 30, kEyeY + 13}}, 4)),
      {person.skin_shadow, 0.8, 1.5});
  canvas.Fill(placed(Smooth({{kEyeX - 56, kBrowY + 12},
                             {kEyeX - 30, kBrowY - 6},
                             {kEyeX + 10, kBrowY - 14},
                             {kEyeX + 58, kBrowY + 8},
                             {kEyeX + 12, kBrowY + 3},
                             {kEyeX - 28, kBrowY + 12}})),
              {Mix(person.hair, 0x000000, 0.2), 0.9, 1.5});
}

}  // namespace

void DrawNose(Canvas& canvas, const Person& person) {
  const Rgb light = Mix(person.skin, 0xffffff, 0.45);
  const Rgb dark = Mix(person.skin_shadow, 0x000000, 0.25);
  canvas.Fill(Stroke({{524, 440}, {520, 500}, {538, 548}}, 16), {person.skin_shadow, 0.55, 8});
  canvas.Fill(Stroke({{476, 440}, {482, 500}, {464, 548}}, 10), {person.skin_shadow, 0.3, 7});
  canvas.Fill(Oval({500, 566}, 48, 17), {person.skin_shadow, 0.7, 9});
  canvas.Fill(Oval({500, 546}, 27, 21), {person.skin, 0.85, 7});
  canvas.Fill(Stroke({{497, 400}, {496, 470}, {494, 530}}, 13), {light, 0.5, 6});
  canvas.Fill(Oval({492, 540}, 11, 9), {light, 0.75, 5});
  for (const Points& nostril : {Oval({520, 569}, 10, 5, -12), Oval({480, 569}, 10, 5, 12)}) {
    canvas.Fill(nostril, {dark, 0.85, 1.5});
  }
  const Points wing = Stroke({{536, 538}, {548, 556}, {536, 572}}, 5);
  for (const Points& line : {wing, Mirrored(wing)}) canvas.Fill(line, {dark, 0.45, 1.5});
}

void DrawMouth(Canvas& canvas, const Person& person) {
  const Rgb dark = Mix(person.lips, 0x000000, 0.45);
  const Points upper = Smooth({{424, 612},
                               {458, 611},
                               {486, 606},
                               {500, 610},
                               {514, 606},
                               {542, 611},
                               {576, 612},
                               {540, 635},
                               {500, 643},
                               {460, 635}});
  const Points lower = Smooth({{428, 615},
                               {462, 633},
                               {500, 640},
                               {538, 633},
                               {572, 615},
                               {548, 654},
                               {500, 673},
                               {452, 654}});
  canvas.Fill(Oval({500, 690}, 46, 10), {person.skin_shadow, 0.6, 8});
  canvas.Fill(lower, {Mix(person.lips, 0xffffff, 0.1), 1, 0.8});
  canvas.Fill(upper, {person.lips, 1, 0.8});
  canvas.Fill(Oval({494, 655}, 30, 6), {0xffffff, 0.35, 5});
  canvas.Fill(Stroke({{418, 608}, {460, 633}, {500, 641}, {540, 633}, {582, 608}}, 7.5),
              {dark, 0.9, 0.8});
  for (const Points& corner : {Oval({583, 608}, 9, 8), Oval({417, 608}, 9, 8)}) {
    canvas.Fill(corner, {person.skin_shadow, 0.8, 4});
  }
}

void DrawEyes(Canvas& canvas, const Person& person) {
  DrawEye(canvas, person, false);
  DrawEye(canvas, person, true);
}

void DrawGlasses(Canvas& canvas) {
  constexpr Rgb kFrame = 0x5a2f2a;
  const cv::Point2d lens_centre(588, 446);
  for (const bool mirrored : {false, true}) {
    const auto placed = [mirrored](const Points& p) { return mirrored ? Mirrored(p) : p; };
    const Points lens = Smooth({{512, 410},
                                {560, 396},
                                {620, 398},
                                {662, 414},
                                {656, 466},
                                {626, 498},
                                {566, 498},
                                {526, 470}});
    Points rim;
    for (const cv::Point2d& point : lens) {
      rim.push_back(lens_centre + (point - lens_centre) * 1.11);
    }
    const cv::Mat ring = canvas.Mask(placed(rim)) - canvas.Mask(placed(lens));
    canvas.Fill(placed(lens), {0xffffff, 0.12});
    canvas.Fill(placed(rim), {kFrame, 1, 0, &ring});
    canvas.Fill(placed(Stroke({{654, 420}, {676, 414}, {704, 412}}, 9)), {kFrame});
  }
  canvas.Fill(Stroke({{478, 422}, {500, 410}, {522, 422}}, 11), {kFrame});
}

}  // namespace lumora::tools
