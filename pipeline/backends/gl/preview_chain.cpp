#include "pipeline/backends/gl/chains.h"

#include <algorithm>
#include <iterator>

#include "pipeline/backends/gl/gl_state.h"
#include "pipeline/faces/face_record.h"
#include "pipeline/frames/merge.h"
#include "pipeline/plan/warp_geometry.h"
#include "pipeline/support/failure.h"

namespace lumora {
namespace {

/// Jobs that the engine can do in one pass over the frame: those with the same levels, moved to the
/// front of [begin, end) in their order. Returns the end of the group.
using Jobs = std::vector<WhiteningJob>;
Jobs::iterator NextGroup(Jobs::iterator begin, Jobs::iterator end) {
  const int intensity = begin->intensity_level;
  const int saturation = begin->saturation_level;
  auto group_end = begin;
  for (auto job = begin; job != end; ++job) {
    if (job->intensity_level != intensity || job->saturation_level != saturation) continue;
    // In place, where std::stable_partition would ask for memory.
    if (job != group_end) std::rotate(group_end, job, std::next(job));
    ++group_end;
  }
  return group_end;
}

/// Draws one group: the engine's result for the whole frame goes to `work`.
Status WhitenGroup(const ChainFrame& chain, Jobs::const_iterator begin, Jobs::const_iterator end,
                   BEAUTYSHOT_EFFECT_t effect) {
  android::GPUBeautyFace& engine = chain.setup.engine();
  std::vector<FACE_INFO_t>& records = chain.memory.records;
  records.clear();
  for (auto job = begin; job != end; ++job) records.push_back(job->record);
  const bool done =
      engine.LoadPreviewFrameBuffer(chain.frame.luma()) != 0 && engine.ConvertYUV() != 0 &&
      engine.DoFaceWhitening(records.data(), static_cast<int>(records.size()),
                             begin->intensity_level, begin->saturation_level, effect) != 0 &&
      engine.ConvertHSItoYUV() != 0 &&
      engine.CopyMemYUVfromSrcTexture(chain.memory.work.luma(), chain.memory.work.chroma()) != 0;
  return done ? Status{} : EngineRefused();
}

}  // namespace

Status WhitenPreview(const ChainFrame& chain, const std::vector<FaceJob>& faces, const Look& look) {
  Jobs& jobs = chain.memory.whitening;
  PlanWhitening(chain.frame, faces, look, &jobs, &chain.report.tones);
  if (jobs.empty()) return {};
  if (Status status = chain.setup.Preview(chain.frame.width(), chain.frame.height(), true);
      !status.ok()) {
    return status;
  }
  chain.setup.SetPreviewFilters(GL_NEAREST);
  chain.memory.work.Resize(chain.frame);
  for (auto begin = jobs.begin(); begin != jobs.end();) {
    const auto end = NextGroup(begin, jobs.end());
    if (Status status = WhitenGroup(chain, begin, end, EngineEffect(look)); !status.ok()) {
      return status;
    }
    for (; begin != end; ++begin) {
      Blend(chain.memory.work, begin->mask, &chain.frame, &chain.memory.weights);
    }
  }
  return {};
}

Status SlimPreview(const ChainFrame& chain, const std::vector<FaceJob>& faces) {
  PaddedFrame& frame = chain.frame;
  if (Status status = chain.setup.Preview(frame.width(), frame.height(), false); !status.ok()) {
    return status;
  }
  chain.setup.SetPreviewFilters(GL_LINEAR);
  android::GPUBeautyFace& engine = chain.setup.engine();
  // The engine writes the luma over its input and the chroma to its output: the frame again. In
  // colour-convert mode it takes what is in the input image instead.
  PaddedFrame& work = chain.memory.work;
  if (!chain.setup.has_colour()) {
    work.Copy(frame);
  } else {
    work.Resize(frame);
    if (engine.LoadPreviewFrameBuffer(frame.luma()) == 0) return EngineRefused();
  }
  std::vector<FACE_INFO_t>& records = chain.memory.records;
  records.clear();
  for (const FaceJob& face : faces) records.push_back(face.record);
  const int done =
      records.size() == 1
          ? engine.FaceProcess(work.luma(), work.chroma(), kBeautyLevel, records.front(), 0)
          : engine.FaceProcessMultiface(work.luma(), work.chroma(), kBeautyLevel, records.data(),
                                        static_cast<int>(records.size()), 0);
  if (done == 0) return EngineRefused();
  // The engine draws the warp of a small face over the whole frame, where rounding moves pixels.
  for (const FACE_INFO_t& record : records) {
    CopyCircle(work, WarpCentre(record), PreviewRadius(record, frame.width()), &frame);
  }
  return {};
}

}  // namespace lumora
