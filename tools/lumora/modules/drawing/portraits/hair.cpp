// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/modules/drawing/portraits/hair.h"

#include <cmath>

namespace lumora::tools {
namespace {

Rgb Dark(const Person& person) {
  return Mix(person.hair, 0x000000, 0.35);
}
Rgb Shine(const Person& person) {
  return Mix(person.hair, 0xffe8d0, 0.28);
}

// Locks from the parting down one side, `count` of them, alternately darker and brighter.
void Locks(Canvas& canvas, const Person& person, const Points& first, const Points& last, int count,
           const cv::Mat& clip) {
  for (int i = 0; i < count; ++i) {
    const double share = (i + 0.5) / count;
    Points lock;
    for (size_t p = 0; p < first.size(); ++p) {
      lock.push_back(first[p] + (last[p] - first[p]) * share);
    }
    const Points stroke = Stroke(lock, 15);
    const Paint paint{i % 2 == 0 ? Dark(person) : Shine(person), 0.45, 2.5, &clip};
    canvas.Fill(stroke, paint);
    canvas.Fill(Mirrored(stroke), paint);
  }
}

// Rings of overlapping curls around the head between two angles; 0 points up.
void Curls(Canvas& canvas, const Person& person, double from_degrees, double to_degrees,
           double inner, double outer, double curl) {
  const int rings = static_cast<int>((outer - inner) / (curl * 0.75)) + 1;
  for (int ring = 0; ring < rings; ++ring) {
    const double radius = outer - ring * curl * 0.75;
    const int count = static_cast<int>((to_degrees - from_degrees) * CV_PI / 180 * radius / curl);
    for (int i = 0; i <= count; ++i) {
      const double degrees = from_degrees + (to_degrees - from_degrees) * i / count;
      const double angle = degrees * CV_PI / 180;
      const cv::Point2d centre(500 + radius * std::sin(angle),
                               365 - radius * 1.02 * std::cos(angle));
      canvas.Fill(Oval(centre, curl, curl), {person.hair});
      canvas.Fill(Oval(centre + cv::Point2d(-curl * 0.2, -curl * 0.25), curl * 0.55, curl * 0.5),
                  {Shine(person), 0.35, curl * 0.22});
    }
  }
}

const Points& LongOutline() {
  static const Points outline = Smooth(Symmetric({{500, 112},
                                                  {610, 124},
                                                  {700, 190},
                                                  {738, 310},
                                                  {744, 450},
                                                  {752, 590},
                                                  {778, 730},
                                                  {772, 860},
                                                  {720, 930},
                                                  {640, 900},
                                                  {500, 880}}));
  return outline;
}

const Points& BobOutline() {
  static const Points outline = Smooth(Symmetric({{500, 112},
                                                  {610, 126},
                                                  {700, 196},
                                                  {742, 320},
                                                  {756, 460},
                                                  {760, 590},
                                                  {738, 690},
                                                  {690, 722},
                                                  {630, 690},
                                                  {500, 680}}));
  return outline;
}

const Points& PartedFringe() {
  // The right side of a centre parting: down over the temple, back up along the hairline.
  static const Points outline = Smooth({{486, 120},
                                        {560, 118},
                                        {650, 150},
                                        {716, 240},
                                        {738, 350},
                                        {736, 480},
                                        {716, 560},
                                        {700, 480},
                                        {684, 390},
                                        {650, 310},
                                        {586, 250},
                                        {510, 206}});
  return outline;
}

Points BobFringe() {
  return Smooth({{500, 112},
                 {610, 124},
                 {694, 190},
                 {726, 300},
                 {728, 420},
                 {706, 470},
                 {690, 390},
                 {664, 338},
                 {600, 330},
                 {500, 338},
                 {400, 330},
                 {336, 338},
                 {310, 390},
                 {294, 470},
                 {272, 420},
                 {274, 300},
                 {306, 190},
                 {390, 124}});
}

Points ShortTop() {
  return Smooth({{318, 400},
                 {304, 330},
                 {304, 240},
                 {346, 158},
                 {420, 112},
                 {520, 92},
                 {612, 110},
                 {676, 166},
                 {700, 250},
                 {698, 330},
                 {684, 400},
                 {672, 330},
                 {640, 262},
                 {580, 236},
                 {500, 246},
                 {420, 232},
                 {364, 262},
                 {332, 330}});
}

}  // namespace

void DrawHairBehindHead(Canvas& canvas, const Person& person) {
  switch (person.hair_style) {
    case HairStyle::Long: {
      const cv::Mat clip = canvas.Mask(LongOutline());
      canvas.Fill(LongOutline(), {Dark(person)});
      Locks(canvas, person, {{640, 300}, {690, 520}, {660, 900}},
            {{740, 300}, {770, 560}, {790, 920}}, 7, clip);
      break;
    }
    case HairStyle::Bob: {
      canvas.Fill(BobOutline(), {person.hair});
      const cv::Mat clip = canvas.Mask(BobOutline());
      Locks(canvas, person, {{690, 260}, {700, 480}, {680, 730}},
            {{750, 260}, {770, 480}, {756, 730}}, 4, clip);
      break;
    }
    case HairStyle::Short:
      canvas.Fill(Smooth(Symmetric({{500, 118},
                                    {600, 126},
                                    {676, 186},
                                    {706, 290},
                                    {704, 400},
                                    {690, 450},
                                    {640, 440},
                                    {500, 430}})),
                  {Dark(person)});
      break;
    case HairStyle::Curls:
      canvas.Fill(Oval({500, 365}, 250, 258), {person.hair});
      Curls(canvas, person, -128, 128, 205, 262, 34);
      break;
  }
}

void DrawHairOverForehead(Canvas& canvas, const Person& person) {
  switch (person.hair_style) {
    case HairStyle::Long: {
      const Points& side = PartedFringe();
      for (const Points& outline : {side, Mirrored(side)}) canvas.Fill(outline, {person.hair});
      cv::Mat clip = canvas.Mask(side);
      cv::max(clip, canvas.Mask(Mirrored(side)), clip);
      Locks(canvas, person, {{505, 200}, {610, 270}, {700, 500}},
            {{500, 122}, {650, 150}, {745, 480}}, 6, clip);
      break;
    }
    case HairStyle::Bob: {
      const Points fringe = BobFringe();
      canvas.Fill(fringe, {person.hair});
      const cv::Mat clip = canvas.Mask(fringe);
      Locks(canvas, person, {{500, 116}, {512, 200}, {510, 345}},
            {{620, 124}, {700, 230}, {700, 400}}, 8, clip);
      break;
    }
    case HairStyle::Short: {
      const Points top = ShortTop();
      canvas.Fill(top, {person.hair});
      const cv::Mat clip = canvas.Mask(top);
      for (int i = 0; i < 9; ++i) {
        const double x = 350 + 38 * i;
        canvas.Fill(Stroke({{x - 14, 262}, {x + 4, 190}, {x + 52, 116}}, 13),
                    {i % 2 == 0 ? Shine(person) : Dark(person), 0.4, 3, &clip});
      }
      break;
    }
    case HairStyle::Curls:
      Curls(canvas, person, -66, 66, 168, 196, 30);
      break;
  }
}

}  // namespace lumora::tools
