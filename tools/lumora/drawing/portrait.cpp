#include "tools/lumora/drawing/portrait.h"

#include <iterator>

#include "tools/lumora/drawing/canvas.h"
#include "tools/lumora/drawing/portrait_hair.h"
#include "tools/lumora/drawing/portrait_people.h"

// All coordinates below are units of the drawing plane (1000 x 1000); every head is symmetric about
// x = 500 and looks at the viewer.
namespace lumora::tools {
namespace {

constexpr double kEyeY = 436;
constexpr double kEyeX = 582;  // centre of the right eye
constexpr double kEyeHalfWidth = 40;
constexpr double kBrowY = 368;
constexpr double kMouthY = 632;

const Points& HeadOutline() {
  static const Points outline = Smooth(Symmetric({{500, 176},
                                                  {590, 188},
                                                  {656, 250},
                                                  {684, 345},
                                                  {688, 430},
                                                  {690, 510},
                                                  {684, 585},
                                                  {664, 656},
                                                  {620, 720},
                                                  {560, 754},
                                                  {500, 763}}));
  return outline;
}

void Rectangle(Canvas& canvas, double x, double y, double width, double height, Paint paint) {
  canvas.Fill({{x, y}, {x + width, y}, {x + width, y + height}, {x, y + height}}, paint);
}

void DrawWallpaper(Canvas& canvas, const Person& person) {
  const Rgb line = person.wall_line;
  switch (person.wallpaper) {
    case Wallpaper::Tiles:
      for (int row = 0; row < 20; ++row) {
        for (int column = row % 2; column < 20; column += 2) {
          Rectangle(canvas, 50 * column, 50 * row, 50, 50, {line, 0.45});
        }
      }
      break;
    case Wallpaper::Stripes:
      for (int i = 0; i < 20; ++i) {
        Rectangle(canvas, 50 * i + 12, 0, 22, 1000, {line, 0.5});
        Rectangle(canvas, 50 * i + 41, 0, 3, 1000, {line, 0.7});
      }
      break;
    case Wallpaper::Grid:
      for (int i = 0; i < 25; ++i) {
        Rectangle(canvas, 40 * i + 18, 0, 4, 1000, {line, 0.8});
        Rectangle(canvas, 0, 40 * i + 18, 1000, 4, {line, 0.8});
      }
      break;
    case Wallpaper::Planks:
      for (int row = 0; row < 20; ++row) {
        Rectangle(canvas, 0, 50 * row, 1000, 4, {line, 0.9});
        for (int i = 0; i < 9; ++i) {
          Rectangle(canvas, 125 * i + (row % 2) * 62, 50 * row, 4, 50, {line, 0.9});
        }
        if (row % 3 == 0) Rectangle(canvas, 0, 50 * row, 1000, 50, {line, 0.15});
      }
      break;
  }
  // Light falls in from the upper left.
  canvas.Fill(Ellipse({200, 100}, 420, 380), {0xffffff, 0.35, 140});
  canvas.Fade(350, 1100, Mix(line, 0x202020, 0.45), 0.35);
}

void DrawBody(Canvas& canvas, const Person& person) {
  const Points shoulders = Smooth(Symmetric({{500, 815},
                                             {590, 812},
                                             {690, 838},
                                             {800, 872},
                                             {880, 930},
                                             {915, 1040},
                                             {930, 1200},
                                             {500, 1200}}));
  canvas.Fill(shoulders, {0x202020, 0.35, 22});
  canvas.Fill(shoulders, {person.shirt});
  const cv::Mat shirt = canvas.Mask(shoulders);
  for (int row = 0; row < 7; ++row) {
    canvas.Fill(
        Stroke({{-200, 950.0 + 44 * row}, {500, 905.0 + 44 * row}, {1200, 950.0 + 44 * row}}, 15),
        {person.shirt_stripe, 0.9, 0, &shirt});
  }
  for (const Points& side : {Ellipse({830, 1010}, 110, 130), Ellipse({170, 1010}, 110, 130)}) {
    canvas.Fill(side, {0x000000, 0.22, 50, &shirt});
  }
  // Neckline, neck and the shadow of the chin on it.
  const Points neck = Smooth(Symmetric(
      {{500, 600}, {568, 620}, {574, 720}, {582, 790}, {622, 828}, {560, 878}, {500, 890}}));
  const Points collar =
      Smooth(Symmetric({{500, 806}, {590, 800}, {646, 826}, {574, 894}, {500, 910}}));
  canvas.Fill(collar, {person.shirt_stripe});
  canvas.Fill(neck, {person.skin});
  const cv::Mat clip = canvas.Mask(neck);
  canvas.Fill(Ellipse({500, 730}, 130, 82), {person.skin_shadow, 0.95, 16, &clip});
  canvas.Fill(Ellipse({590, 800}, 30, 90), {person.skin_shadow, 0.5, 18, &clip});
  canvas.Fill(Ellipse({410, 800}, 30, 90), {person.skin_shadow, 0.5, 18, &clip});
}

void DrawEars(Canvas& canvas, const Person& person) {
  const Points ear = Ellipse({692, 462}, 25, 54, 9);
  const Points inner = Ellipse({696, 460}, 12, 34, 9);
  for (const Points& outline : {ear, Mirrored(ear)}) {
    canvas.Fill(outline, {Mix(person.skin, person.skin_shadow, 0.25)});
  }
  for (const Points& outline : {inner, Mirrored(inner)}) {
    canvas.Fill(outline, {person.skin_shadow, 0.7, 4});
  }
  if (!person.earrings) return;
  for (const cv::Point2d centre : {cv::Point2d(700, 540), cv::Point2d(300, 540)}) {
    canvas.Fill(Ellipse(centre, 15, 15), {0xd9a832});
    canvas.Fill(Ellipse(centre + cv::Point2d(-4, -5), 6, 5), {0xfff0b8, 0.9, 2});
  }
}

void DrawSkin(Canvas& canvas, const Person& person) {
  const Points& head = HeadOutline();
  canvas.Fill(head, {person.skin});
  const cv::Mat clip = canvas.Mask(head);
  const Rgb light = Mix(person.skin, 0xffffff, 0.3);
  // A rounded head: darker towards its rim, most on the side away from the light.
  canvas.Fill(Ellipse({706, 500}, 50, 270), {person.skin_shadow, 0.8, 32, &clip});
  canvas.Fill(Ellipse({290, 500}, 38, 270), {person.skin_shadow, 0.55, 30, &clip});
  canvas.Fill(Ellipse({520, 782}, 130, 32), {person.skin_shadow, 0.65, 22, &clip});
  canvas.Fill(Ellipse({500, 205}, 180, 52), {person.skin_shadow, 0.55, 28, &clip});
  canvas.Fill(Ellipse({470, 300}, 90, 42), {light, 0.5, 30, &clip});
  canvas.Fill(Ellipse({492, 712}, 36, 22), {light, 0.4, 14, &clip});
  for (const cv::Point2d cheek : {cv::Point2d(606, 560), cv::Point2d(394, 560)}) {
    canvas.Fill(Ellipse(cheek, 52, 40), {person.blush, 0.5, 24, &clip});
    canvas.Fill(Ellipse(cheek + cv::Point2d(-8, -28), 34, 16), {light, 0.4, 14, &clip});
  }
  if (person.stubble) {
    const Points jaw = Smooth(Symmetric({{500, 592},
                                         {560, 600},
                                         {622, 640},
                                         {664, 540},
                                         {700, 530},
                                         {690, 660},
                                         {620, 750},
                                         {500, 790}}));
    canvas.Fill(jaw, {Mix(person.hair, person.skin_shadow, 0.35), 0.4, 20, &clip});
  }
  if (person.freckles) {
    constexpr double kSpots[][3] = {{548, 520, 3}, {566, 534, 4}, {590, 522, 3}, {608, 540, 4},
                                    {578, 552, 3}, {626, 526, 3}, {600, 560, 3}, {532, 506, 3},
                                    {640, 546, 3}, {556, 508, 2}};
    for (const auto& spot : kSpots) {
      const cv::Point2d place(spot[0], spot[1]);
      for (const cv::Point2d at : {place, Mirrored(place) + cv::Point2d(5, -4)}) {
        canvas.Fill(Ellipse(at, spot[2], spot[2]), {person.skin_shadow, 0.65, 1});
      }
    }
  }
}

void DrawNose(Canvas& canvas, const Person& person) {
  const Rgb light = Mix(person.skin, 0xffffff, 0.45);
  const Rgb dark = Mix(person.skin_shadow, 0x000000, 0.25);
  canvas.Fill(Stroke({{524, 440}, {520, 500}, {538, 548}}, 16), {person.skin_shadow, 0.55, 8});
  canvas.Fill(Stroke({{476, 440}, {482, 500}, {464, 548}}, 10), {person.skin_shadow, 0.3, 7});
  canvas.Fill(Ellipse({500, 566}, 48, 17), {person.skin_shadow, 0.7, 9});
  canvas.Fill(Ellipse({500, 546}, 27, 21), {person.skin, 0.85, 7});
  canvas.Fill(Stroke({{497, 400}, {496, 470}, {494, 530}}, 13), {light, 0.5, 6});
  canvas.Fill(Ellipse({492, 540}, 11, 9), {light, 0.75, 5});
  for (const Points& nostril : {Ellipse({520, 569}, 10, 5, -12), Ellipse({480, 569}, 10, 5, 12)}) {
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
  canvas.Fill(Ellipse({500, 690}, 46, 10), {person.skin_shadow, 0.6, 8});
  canvas.Fill(lower, {Mix(person.lips, 0xffffff, 0.1), 1, 0.8});
  canvas.Fill(upper, {person.lips, 1, 0.8});
  canvas.Fill(Ellipse({494, 655}, 30, 6), {0xffffff, 0.35, 5});
  canvas.Fill(Stroke({{418, 608}, {460, 633}, {500, 641}, {540, 633}, {582, 608}}, 7.5),
              {dark, 0.9, 0.8});
  for (const Points& corner : {Ellipse({583, 608}, 9, 8), Ellipse({417, 608}, 9, 8)}) {
    canvas.Fill(corner, {person.skin_shadow, 0.8, 4});
  }
}

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
  canvas.Fill(placed(Ellipse({kEyeX, kEyeY - 6}, 54, 36)), {person.skin_shadow, 0.5, 12});
  canvas.Fill(opening, {0xfbf8f4});
  const cv::Mat clip = canvas.Mask(opening);
  const cv::Point2d iris(kEyeX - 1, kEyeY - 2);
  canvas.Fill(placed(Ellipse(iris, 21, 21)), {Mix(person.iris, 0x000000, 0.55), 1, 0, &clip});
  canvas.Fill(placed(Ellipse(iris, 17, 17)), {person.iris, 1, 1.5, &clip});
  canvas.Fill(placed(Ellipse(iris + cv::Point2d(0, 7), 11, 8)),
              {Mix(person.iris, 0xffffff, 0.4), 0.6, 3, &clip});
  canvas.Fill(placed(Ellipse(iris, 9, 9)), {0x0c0808, 1, 0.7, &clip});
  canvas.Fill(placed(Stroke(lid, 26)), {0x2a1a14, 0.4, 5, &clip});  // shadow of the lid
  canvas.Fill(Ellipse({shine_x, kEyeY - 9}, 6, 6), {0xffffff, 0.95, 0.7, &clip});
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

void DrawGlasses(Canvas& canvas) {
  constexpr Rgb kFrame = 0x5a2f2a;
  const cv::Point2d kLensCentre(588, 446);
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
      rim.push_back(kLensCentre + (point - kLensCentre) * 1.11);
    }
    const cv::Mat ring = canvas.Mask(placed(rim)) - canvas.Mask(placed(lens));
    canvas.Fill(placed(lens), {0xffffff, 0.12});
    canvas.Fill(placed(rim), {kFrame, 1, 0, &ring});
    canvas.Fill(placed(Stroke({{654, 420}, {676, 414}, {704, 412}}, 9)), {kFrame});
  }
  canvas.Fill(Stroke({{478, 422}, {500, 410}, {522, 422}}, 11), {kFrame});
}

PointF Placed(double x, double y, double scale) {
  return {static_cast<float>(x * scale), static_cast<float>(y * scale)};
}

FeatureBox Around(double x, double y, double half_width, double half_height, double scale) {
  return {Placed(x - half_width, y, scale), Placed(x + half_width, y, scale),
          Placed(x, y - half_height, scale), Placed(x, y + half_height, scale)};
}

Face Landmarks(double scale) {
  Face face;
  face.box = {static_cast<float>(312 * scale), static_cast<float>(340 * scale),
              static_cast<float>(376 * scale), static_cast<float>(412 * scale)};
  FaceLandmarks& marks = face.landmarks;
  marks.left_eye = Around(1000 - kEyeX, kEyeY, kEyeHalfWidth, 21, scale);
  marks.right_eye = Around(kEyeX, kEyeY, kEyeHalfWidth, 21, scale);
  marks.left_brow = Around(1000 - kEyeX, kBrowY, 57, 13, scale);
  marks.right_brow = Around(kEyeX, kBrowY, 57, 13, scale);
  marks.mouth = Around(500, kMouthY + 7, 80, 34, scale);
  marks.nasion = Placed(500, kEyeY - 14, scale);
  marks.nose_tip = Placed(500, 548, scale);
  marks.chin = Placed(500, 763, scale);
  marks.left_temple = Placed(312, kEyeY, scale);
  marks.right_temple = Placed(688, kEyeY, scale);
  marks.left_jaw = Placed(327, kMouthY, scale);
  marks.right_jaw = Placed(673, kMouthY, scale);
  return face;
}

}  // namespace

int PortraitCount() {
  return static_cast<int>(std::size(kPeople));
}

Portrait DrawPortrait(int index, int size) {
  const Person& person = kPeople[index];
  Canvas canvas(size, person.wall);
  DrawWallpaper(canvas, person);
  DrawHairBehindHead(canvas, person);
  DrawBody(canvas, person);
  DrawEars(canvas, person);
  DrawSkin(canvas, person);
  DrawNose(canvas, person);
  DrawMouth(canvas, person);
  DrawEye(canvas, person, false);
  DrawEye(canvas, person, true);
  DrawHairOverForehead(canvas, person);
  if (person.glasses) DrawGlasses(canvas);
  return {canvas.Picture(), Landmarks(size / 1000.0)};
}

}  // namespace lumora::tools
