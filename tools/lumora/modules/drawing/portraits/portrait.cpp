// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/modules/drawing/portraits/portrait.h"

#include <iterator>

#include "tools/lumora/modules/drawing/portraits/canvas.h"
#include "tools/lumora/modules/drawing/portraits/features.h"
#include "tools/lumora/modules/drawing/portraits/hair.h"
#include "tools/lumora/modules/drawing/portraits/people.h"

// All coordinates below are units of the drawing plane (1000 x 1000); every head is symmetric about
// x = 500 and looks at the viewer.
namespace lumora::tools {
namespace {

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
  canvas.Fill(Oval({200, 100}, 420, 380), {0xffffff, 0.35, 140});
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
                                             {935, 1700},
                                             {500, 1700}}));
  canvas.Fill(shoulders, {0x202020, 0.35, 22});
  canvas.Fill(shoulders, {person.shirt});
  const cv::Mat shirt = canvas.Mask(shoulders);
  for (int row = 0; row < 17; ++row) {
    canvas.Fill(
        Stroke({{-200, 950.0 + 44 * row}, {500, 905.0 + 44 * row}, {1200, 950.0 + 44 * row}}, 15),
        {person.shirt_stripe, 0.9, 0, &shirt});
  }
  for (const Points& side : {Oval({830, 1010}, 110, 130), Oval({170, 1010}, 110, 130)}) {
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
  canvas.Fill(Oval({500, 730}, 130, 82), {person.skin_shadow, 0.95, 16, &clip});
  canvas.Fill(Oval({590, 800}, 30, 90), {person.skin_shadow, 0.5, 18, &clip});
  canvas.Fill(Oval({410, 800}, 30, 90), {person.skin_shadow, 0.5, 18, &clip});
}

void DrawEars(Canvas& canvas, const Person& person) {
  const Points ear = Oval({692, 462}, 25, 54, 9);
  const Points inner = Oval({696, 460}, 12, 34, 9);
  for (const Points& outline : {ear, Mirrored(ear)}) {
    canvas.Fill(outline, {Mix(person.skin, person.skin_shadow, 0.25)});
  }
  for (const Points& outline : {inner, Mirrored(inner)}) {
    canvas.Fill(outline, {person.skin_shadow, 0.7, 4});
  }
  if (!person.earrings) return;
  for (const cv::Point2d centre : {cv::Point2d(700, 540), cv::Point2d(300, 540)}) {
    canvas.Fill(Oval(centre, 15, 15), {0xd9a832});
    canvas.Fill(Oval(centre + cv::Point2d(-4, -5), 6, 5), {0xfff0b8, 0.9, 2});
  }
}

void DrawSkin(Canvas& canvas, const Person& person) {
  const Points& head = HeadOutline();
  canvas.Fill(head, {person.skin});
  const cv::Mat clip = canvas.Mask(head);
  const Rgb light = Mix(person.skin, 0xffffff, 0.3);
  // A rounded head: darker towards its rim, most on the side away from the light.
  canvas.Fill(Oval({706, 500}, 50, 270), {person.skin_shadow, 0.8, 32, &clip});
  canvas.Fill(Oval({290, 500}, 38, 270), {person.skin_shadow, 0.55, 30, &clip});
  canvas.Fill(Oval({520, 782}, 130, 32), {person.skin_shadow, 0.65, 22, &clip});
  canvas.Fill(Oval({500, 205}, 180, 52), {person.skin_shadow, 0.55, 28, &clip});
  canvas.Fill(Oval({470, 300}, 90, 42), {light, 0.5, 30, &clip});
  canvas.Fill(Oval({492, 712}, 36, 22), {light, 0.4, 14, &clip});
  for (const cv::Point2d cheek : {cv::Point2d(606, 560), cv::Point2d(394, 560)}) {
    canvas.Fill(Oval(cheek, 52, 40), {person.blush, 0.5, 24, &clip});
    canvas.Fill(Oval(cheek + cv::Point2d(-8, -28), 34, 16), {light, 0.4, 14, &clip});
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
        canvas.Fill(Oval(at, spot[2], spot[2]), {person.skin_shadow, 0.65, 1});
      }
    }
  }
}

/// Takes points of the drawing plane to pixels of the picture.
struct Place {
  cv::Point2d corner;
  double side;

  double Length(double units) const { return units * side / 1000; }
  PointF At(double x, double y) const {
    return {static_cast<float>(corner.x + Length(x)), static_cast<float>(corner.y + Length(y))};
  }
  FeatureBox Around(double x, double y, double half_width, double half_height) const {
    return {At(x - half_width, y), At(x + half_width, y), At(x, y - half_height),
            At(x, y + half_height)};
  }
};

Face FaceAt(const Place& place) {
  Face face;
  const PointF corner = place.At(312, 340);
  face.box = {corner.x, corner.y, static_cast<float>(place.Length(376)),
              static_cast<float>(place.Length(412))};
  FaceLandmarks& marks = face.landmarks;
  marks.left_eye = place.Around(1000 - kEyeX, kEyeY, kEyeHalfWidth, 21);
  marks.right_eye = place.Around(kEyeX, kEyeY, kEyeHalfWidth, 21);
  marks.left_brow = place.Around(1000 - kEyeX, kBrowY, 57, 13);
  marks.right_brow = place.Around(kEyeX, kBrowY, 57, 13);
  marks.mouth = place.Around(500, kMouthY + 7, 80, 34);
  marks.nasion = place.At(500, kEyeY - 14);
  marks.nose_tip = place.At(500, 548);
  marks.chin = place.At(500, 763);
  marks.left_temple = place.At(312, kEyeY);
  marks.right_temple = place.At(688, kEyeY);
  marks.left_jaw = place.At(327, kMouthY);
  marks.right_jaw = place.At(673, kMouthY);
  return face;
}

void DrawPerson(Canvas& canvas, const Person& person) {
  DrawHairBehindHead(canvas, person);
  DrawBody(canvas, person);
  DrawEars(canvas, person);
  DrawSkin(canvas, person);
  DrawNose(canvas, person);
  DrawMouth(canvas, person);
  DrawEyes(canvas, person);
  DrawHairOverForehead(canvas, person);
  if (person.glasses) DrawGlasses(canvas);
}

/// Who stands where in a group, from the back to the front: shares of the picture's height.
struct Standing {
  int person;
  double centre_x, top;
};
constexpr Standing kStanding[] = {
    {1, 0.475, 0.0}, {3, 0.86, 0.01}, {0, 0.19, 0.37}, {2, 1.14, 0.36}};
constexpr double kStandingSide = 0.63;
constexpr int kGroupWall = 2;  // the person whose wall is behind them: its lines are straight

}  // namespace

int PortraitCount() {
  return static_cast<int>(std::size(kPeople));
}

Portrait DrawPortrait(int index, int size) {
  const Person& person = kPeople[index];
  Canvas canvas({size, size}, person.wall);
  DrawWallpaper(canvas, person);
  DrawPerson(canvas, person);
  return {canvas.Picture(), FaceAt({{0, 0}, static_cast<double>(size)})};
}

Group DrawGroup(cv::Size size) {
  Canvas canvas(size, kPeople[kGroupWall].wall);
  canvas.Place({0, 0}, size.width);  // the wall is square, and its lower end is out of sight
  DrawWallpaper(canvas, kPeople[kGroupWall]);
  Group group;
  for (const Standing& standing : kStanding) {
    const double side = kStandingSide * size.height;
    const Place place = {{standing.centre_x * size.height - side / 2, standing.top * size.height},
                         side};
    canvas.Place(place.corner, place.side);
    DrawPerson(canvas, kPeople[standing.person]);
    group.faces.push_back(FaceAt(place));
  }
  group.picture = canvas.Picture();
  return group;
}

}  // namespace lumora::tools
