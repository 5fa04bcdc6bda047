// SPDX-License-Identifier: Apache-2.0
#include "engine/slimming_scene.h"

#include <optional>

#include "support/compare.h"
#include "support/property_override.h"

namespace lumora::test {
namespace {

reference::PreviewModel::Options WithMask(bool show_mask) {
  reference::PreviewModel::Options options;
  options.show_mask = show_mask;
  return options;
}

}  // namespace

std::vector<FACE_INFO_t> RecordsOf(const std::vector<FaceRecord>& faces) {
  std::vector<FACE_INFO_t> records;
  for (const FaceRecord& face : faces) records.push_back(face.as<FACE_INFO_t>());
  return records;
}

SlimmingScene::SlimmingScene(int src_width, int src_height, int proc_width, int proc_height,
                             bool show_mask)
    : width_(proc_width),
      height_(proc_height),
      model_(src_width, src_height, proc_width, proc_height, WithMask(show_mask)) {
  std::optional<ScopedProperty> property;
  if (show_mask) property.emplace(kShowMaskProperty, "1");
  engine_.Init(src_width, src_height, proc_width, proc_height, nullptr, false);
  ClearImages(engine_);
}

testing::AssertionResult SlimmingScene::slims(const reference::Frame& frame, int level,
                                              const FaceRecord& face) {
  CallerFrame caller(frame);
  const int returned =
      engine_.FaceProcess(caller.luma(), caller.chroma(), level, face.as<FACE_INFO_t>(), 0);
  return compared(model_.face_process(frame, level, face), returned, caller);
}

testing::AssertionResult SlimmingScene::slims_all(const reference::Frame& frame, int level,
                                                  const std::vector<FaceRecord>& faces) {
  CallerFrame caller(frame);
  std::vector<FACE_INFO_t> records = RecordsOf(faces);
  const int returned = engine_.FaceProcessMultiface(
      caller.luma(), caller.chroma(), level, records.data(), static_cast<int>(records.size()), 0);
  return compared(model_.face_process_multiface(frame, level, faces), returned, caller);
}

testing::AssertionResult SlimmingScene::compared(const reference::FrameBounds& expected,
                                                 int returned, const CallerFrame& caller) {
  result_ = caller.frame(width_, height_);
  if (returned != 1) return testing::AssertionFailure() << "the call returned " << returned;
  if (!caller.intact()) return testing::AssertionFailure() << "bytes beside the frame were written";
  return WithinFrame(expected, result_);
}

}  // namespace lumora::test
