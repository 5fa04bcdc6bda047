// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cstdint>
#include <vector>

#include "lumora/platform/gl_api.h"
#include "pipeline/backends/gl/chains.h"
#include "pipeline/backends/gl/engine_faults.h"
#include "pipeline/backends/gl/gl_state.h"
#include "pipeline/backends/gl/merge.h"
#include "pipeline/plan/frame_plan.h"

namespace lumora {
namespace {

using Job = std::vector<WhiteningJob>::const_iterator;

/// Jobs that the engine can do in one pass over a crop: with the same levels, and apart. A face
/// that lies over another works on what that one has left, as in captures.
struct Group {
  Job begin, end;
};

Job GroupEnd(Job begin, Job end) {
  return std::find_if(begin, end, [&](const WhiteningJob& job) {
    return !SameLevels(job, *begin) ||
           std::any_of(begin, begin + (&job - &*begin), [&job](const WhiteningJob& earlier) {
             return Meet(earlier.mask.bounds(), job.mask.bounds());
           });
  });
}

const PixelRectangle& ReachOf(const ChainFrame& chain, const Group& group, Job job) {
  return chain.memory.reaches[static_cast<size_t>(job - group.begin)];
}

/// Lays the crops of a group.
void LayCrops(const ChainFrame& chain, const FramePlan& plan, const Group& group) {
  ChainMemory& memory = chain.memory;
  const int width = chain.frame.width(), height = chain.frame.height();
  memory.reaches.clear();
  for (Job job = group.begin; job != group.end; ++job) {
    memory.reaches.push_back(WhiteningReach(plan.faces[job->face].record));
  }
  LayCrops(memory.reaches, width, height, &memory.crops);
  if (!memory.whole_frames) return;
  PixelRectangle reach;
  for (const Crop& crop : memory.crops) reach = Union(reach, crop.reach);
  memory.crops.assign(1, {{0, 0, width, height}, reach});
}

/// The records of the faces that a crop is drawn with. The engine measures a face in an image that
/// takes in every second one of the faces before: where a crop holds more than one, all of the
/// group are told, so that the places of those that count stay the same.
void CollectRecords(const ChainFrame& chain, const FramePlan& plan, const Group& group,
                    const Crop& crop) {
  std::vector<FACE_INFO_t>& records = chain.memory.records;
  const auto is_held = [&](const PixelRectangle& reach) { return crop.Holds(reach); };
  const std::vector<PixelRectangle>& reaches = chain.memory.reaches;
  const bool all = std::count_if(reaches.begin(), reaches.end(), is_held) > 1;
  records.clear();
  for (Job job = group.begin; job != group.end; ++job) {
    if (!all && !crop.Holds(ReachOf(chain, group, job))) continue;
    records.push_back(SeenFrom(crop, plan.faces[job->face].record));
  }
}

/// Draws one crop of the frame: the engine's result goes to `work`.
Status DrawCrop(const ChainFrame& chain, const FramePlan& plan, const Group& group,
                const Crop& crop) {
  PaddedFrame& frame = chain.frame;
  PaddedFrame& part = chain.memory.part;
  PaddedFrame& work = chain.memory.work;
  EngineSetup* setup = nullptr;
  const auto most_pixels = int64_t{2} * frame.width() * frame.height();
  if (Status status =
          chain.crop_setups.Find(crop.area.width, crop.area.height, most_pixels, &setup);
      !status.ok()) {
    return status;
  }
  ClearGlErrors();
  setup->SetPreviewFilters(GL_NEAREST);
  CollectRecords(chain, plan, group, crop);
  const bool whole = crop.area.width == frame.width() && crop.area.height == frame.height();
  if (!whole) part.Load(frame.Part(crop.area));
  PaddedFrame& source = whole ? frame : part;
  work.Resize(source);
  std::vector<FACE_INFO_t>& records = chain.memory.records;
  android::GPUBeautyFace& engine = setup->engine();
  const bool done =
      engine.LoadPreviewFrameBuffer(source.luma()) != 0 && engine.ConvertYUV() != 0 &&
      engine.DoFaceWhitening(records.data(), static_cast<int>(records.size()),
                             group.begin->intensity_level, group.begin->saturation_level,
                             EngineEffect(plan.whitening.effect)) != 0 &&
      engine.ConvertHSItoYUV() != 0 &&
      engine.CopyMemYUVfromSrcTexture(work.luma(), work.chroma()) != 0;
  return done ? CheckGlErrors() : EngineRefused();
}

Status WhitenGroup(const ChainFrame& chain, const FramePlan& plan, const Group& group) {
  ChainMemory& memory = chain.memory;
  LayCrops(chain, plan, group);
  for (const Crop& crop : memory.crops) {
    if (Status status = DrawCrop(chain, plan, group, crop); !status.ok()) return status;
    for (Job job = group.begin; job != group.end; ++job) {
      if (!crop.Holds(ReachOf(chain, group, job))) continue;
      Blend(memory.work, {crop.area.x, crop.area.y}, job->mask, &chain.frame, &memory.weights);
    }
  }
  return {};
}

}  // namespace

Status WhitenPreview(const ChainFrame& chain, const FramePlan& plan) {
  const std::vector<WhiteningJob>& jobs = plan.whitening.jobs;
  // How faces fall into groups and crops may change from frame to frame without asking for memory.
  chain.memory.reaches.reserve(plan.faces.size());
  chain.memory.crops.reserve(plan.faces.size());
  chain.memory.records.reserve(plan.faces.size());
  for (Job begin = jobs.begin(); begin != jobs.end();) {
    const Job end = GroupEnd(begin, jobs.end());
    if (Status status = WhitenGroup(chain, plan, {begin, end}); !status.ok()) return status;
    begin = end;
  }
  return {};
}

}  // namespace lumora
