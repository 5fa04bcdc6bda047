// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/faces/faces_json.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>
#include <nlohmann/json.hpp>

#include "tools/lumora/faces/face_geometry.h"
#include "tools/lumora/support/failure.h"

namespace lumora::tools {

const char kFacesFormat[] =
    R"(FACES.json holds {"faces": [face, ...]}; a face is one of
  {"eyes": [[x, y], [x, y]]}                  centres of the eyes, the viewer's left one first
  {"box": [x, y, width, height], "roll": deg} from the brows to below the chin; roll is clockwise
                                              about the box's middle and may be left out
  {"landmarks68": [[x, y], ... 68 times]}     the points of the iBUG annotation
  a face of a report of --json, with its box, roll and landmarks
Coordinates are pixels of the upright picture, from its upper left corner.)";

namespace {

using Json = nlohmann::json;

constexpr size_t kMostFaces = 1000;
constexpr double kLargestCoordinate = 1e6;
constexpr float kSmallestEyeDistance = 2;  // pixels

/// A value with its place in the file, for messages.
class Value {
 public:
  Value(const Json& json, std::string place) : json_(json), place_(std::move(place)) {}

  [[noreturn]] void Reject(const std::string& what) const {
    throw Failure(ExitCode::Unreadable, place_ + ": " + what);
  }

  bool Has(const char* key) const { return json_.is_object() && json_.contains(key); }
  Value At(const char* key) const { return {json_.at(key), place_ + "." + key}; }
  Value Item(size_t index) const {
    return {json_.at(index), place_ + "[" + std::to_string(index) + "]"};
  }
  const Json& json() const { return json_; }

  size_t Size(const std::string& expected) const {
    if (!json_.is_array()) Reject("expected " + expected);
    return json_.size();
  }

  void MustHave(size_t count, const std::string& expected) const {
    const size_t size = Size(expected);
    if (size != count)
      Reject("expected " + expected + ", found " + std::to_string(size) + " values");
  }

  void MustKnow(std::initializer_list<const char*> keys) const {
    for (const auto& entry : json_.items()) {
      if (std::find(keys.begin(), keys.end(), entry.key()) == keys.end()) {
        Reject("unknown key \"" + entry.key() + "\"");
      }
    }
  }

  float Number() const {
    if (!json_.is_number()) Reject("expected a number");
    const double number = json_.get<double>();
    if (!(std::abs(number) <= kLargestCoordinate)) Reject("the number is out of range");
    return static_cast<float>(number);
  }

  PointF Point() const {
    MustHave(2, "[x, y], two numbers");
    return {Item(0).Number(), Item(1).Number()};
  }

  RectF Rect() const {
    MustHave(4, "[x, y, width, height], four numbers");
    return {Item(0).Number(), Item(1).Number(), Item(2).Number(), Item(3).Number()};
  }

 private:
  const Json& json_;
  std::string place_;
};

Face FromEyes(const Value& value) {
  value.MustHave(2, "[[x, y], [x, y]], the centres of both eyes");
  const PointF left = value.Item(0).Point(), right = value.Item(1).Point();
  if (std::hypot(right.x - left.x, right.y - left.y) < kSmallestEyeDistance) {
    value.Reject("the eyes are less than 2 pixels apart");
  }
  return FaceFromEyes(left, right);
}

Face FromBox(const Value& value, float roll) {
  const RectF box = value.Rect();
  if (!(box.width > 0 && box.height > 0)) value.Reject("width and height must be positive");
  return FaceFromTurnedBox(box, roll);
}

Face FromLandmarks68(const Value& value) {
  value.MustHave(68, "68 points [x, y]");
  PointF points[68];
  for (size_t i = 0; i < std::size(points); ++i) points[i] = value.Item(i).Point();
  return FaceFromIbug68(points);
}

/// A face as a report tells it. What else the report says of it follows from these three.
Face FromReport(const Value& value) {
  if (!value.Has("box") || !value.Has("roll")) {
    value.Reject(R"("landmarks" needs "box" and "roll" beside it, as --json gives them)");
  }
  value.MustKnow({"found_by", "box", "roll", "circle", "ellipses", "landmarks"});
  Face face;
  face.box = value.At("box").Rect();
  face.roll_degrees = value.At("roll").Number();
  const Value landmarks = value.At("landmarks");
  ForEachLandmark(face.landmarks, [&landmarks](const std::string& name, PointF& point) {
    if (!landmarks.Has(name.c_str())) landmarks.Reject("\"" + name + "\" is missing");
    point = landmarks.At(name.c_str()).Point();
  });
  return face;
}

Face ParseFace(const Value& value) {
  if (!value.json().is_object()) value.Reject("expected an object");
  if (value.Has("landmarks")) return FromReport(value);
  const std::array<const char*, 3> kinds = {"eyes", "box", "landmarks68"};
  int found = 0;
  for (const char* kind : kinds) found += value.Has(kind) ? 1 : 0;
  if (found != 1) value.Reject(R"(expected exactly one of "eyes", "box" and "landmarks68")");
  if (value.Has("roll") && !value.Has("box")) value.Reject(R"("roll" belongs to "box" only)");
  value.MustKnow({"roll", "eyes", "box", "landmarks68"});
  if (value.Has("eyes")) return FromEyes(value.At("eyes"));
  if (value.Has("landmarks68")) return FromLandmarks68(value.At("landmarks68"));
  return FromBox(value.At("box"), value.Has("roll") ? value.At("roll").Number() : 0);
}

/// Landmarks that no picture's face has would be refused later, without their place in the file.
void CheckReach(const Value& value, const Face& face, Size picture) {
  const float farthest =
      kFarthestInSides * static_cast<float>(std::max(picture.width, picture.height));
  for (const NamedPoint& point : NamedLandmarks(face.landmarks)) {
    if (std::abs(point.at.x) <= farthest && std::abs(point.at.y) <= farthest) continue;
    value.Reject(point.name + " lies farther away than " +
                 std::to_string(static_cast<int>(kFarthestInSides)) +
                 " times the longer side of the picture");
  }
}

std::string Doubt(size_t index, const Face& face) {
  return "face " + std::to_string(index + 1) + " is turned by " +
         std::to_string(std::lround(face.roll_degrees)) +
         " degrees; if it is upright, left and right are exchanged: the viewer's left eye comes "
         "first";
}

}  // namespace

std::vector<Face> ParseFaces(const std::string& text, const std::string& name, Size picture,
                             int* left_out, std::vector<std::string>* doubts) {
  Json json;
  try {
    json = Json::parse(text);
  } catch (const Json::parse_error& error) {
    throw Failure(ExitCode::Unreadable,
                  name + ": not JSON (at byte " + std::to_string(error.byte) + ")");
  } catch (const Json::out_of_range&) {
    throw Failure(ExitCode::Unreadable, name + ": a number is out of range");
  }
  const Value root(json, name);
  if (!root.Has("faces")) root.Reject(R"(expected {"faces": [...]})");
  const Value list(json.at("faces"), name + ": faces");
  const size_t count = list.Size("a list of faces");
  if (count > kMostFaces) list.Reject("more than 1000 faces");
  std::vector<Face> faces;
  for (size_t i = 0; i < count; ++i) {
    const Value value = list.Item(i);
    const Face face = ParseFace(value);
    if (left_out != nullptr && SlimmingCircle(face, picture.width, picture.height).radius == 0) {
      ++*left_out;
      continue;
    }
    faces.push_back(face);
    const bool told_by_roll = value.Has("box") && !value.Has("landmarks");
    if (doubts != nullptr && !told_by_roll && LooksExchanged(face)) {
      doubts->push_back(Doubt(i, face));
    }
    if (left_out != nullptr) continue;
    const PointF centre = FaceCentre(face);
    const bool inside = centre.x >= 0 && centre.y >= 0 &&
                        centre.x < static_cast<float>(picture.width) &&
                        centre.y < static_cast<float>(picture.height);
    if (!inside) {
      value.Reject("the face lies outside the picture of " + std::to_string(picture.width) + " x " +
                   std::to_string(picture.height) + " pixels");
    }
    CheckReach(value, faces.back(), picture);
  }
  return faces;
}

}  // namespace lumora::tools
