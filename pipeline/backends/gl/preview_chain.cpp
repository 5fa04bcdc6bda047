// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/gl/chains.h"

#include <algorithm>
#include <vector>

#include "lumora/platform/gl_api.h"
#include "pipeline/backends/gl/engine_faults.h"
#include "pipeline/backends/gl/merge.h"
#include "pipeline/plan/frame_plan.h"
#include "pipeline/plan/warp_geometry.h"

namespace lumora {
namespace {

using Job = std::vector<WhiteningJob>::const_iterator;

/// The end of the jobs from `begin` on that the engine can do in one pass over the frame.
Job GroupEnd(Job begin, Job end) {
  return std::find_if(
      begin, end, [&first = *begin](const WhiteningJob& job) { return !SameLevels(job, first); });
}

/// Draws one group: the engine's result for the whole frame goes to `work`.
Status WhitenGroup(const ChainFrame& chain, const FramePlan& plan, Job begin, Job end) {
  android::GPUBeautyFace& engine = chain.setup.engine();
  std::vector<FACE_INFO_t>& records = chain.memory.records;
  records.clear();
  for (Job job = begin; job != end; ++job) records.push_back(plan.faces[job->face].record);
  const bool done =
      engine.LoadPreviewFrameBuffer(chain.frame.luma()) != 0 && engine.ConvertYUV() != 0 &&
      engine.DoFaceWhitening(records.data(), static_cast<int>(records.size()),
                             begin->intensity_level, begin->saturation_level,
                             EngineEffect(plan.whitening.effect)) != 0 &&
      engine.ConvertHSItoYUV() != 0 &&
      engine.CopyMemYUVfromSrcTexture(chain.memory.work.luma(), chain.memory.work.chroma()) != 0;
  return done ? Status{} : EngineRefused();
}

/// Slims `work`, which holds the frame, in place. The engine writes the luma over its input and the
/// chroma to its output: the frame again. In colour-convert mode it takes what is in the input
/// image instead.
Status Slim(const ChainFrame& chain, const FramePlan& plan, PaddedFrame& work) {
  android::GPUBeautyFace& engine = chain.setup.engine();
  std::vector<FACE_INFO_t>& records = chain.memory.records;
  records.clear();
  for (const FacePlan& face : plan.faces) records.push_back(face.record);
  const int done =
      records.size() == 1
          ? engine.FaceProcess(work.luma(), work.chroma(), kBeautyLevel, records.front(), 0)
          : engine.FaceProcessMultiface(work.luma(), work.chroma(), kBeautyLevel, records.data(),
                                        static_cast<int>(records.size()), 0);
  return done != 0 ? Status{} : EngineRefused();
}

/// Makes the preview set-up ready to slim the frame.
Status PrepareSlimming(const ChainFrame& chain) {
  const PaddedFrame& frame = chain.frame;
  if (Status status = chain.setup.Preview(frame.width(), frame.height(), false); !status.ok()) {
    return status;
  }
  chain.setup.SetPreviewFilters(GL_LINEAR);
  if (!chain.setup.has_colour()) return {};
  const int loaded = chain.setup.engine().LoadPreviewFrameBuffer(chain.frame.luma());
  return loaded != 0 ? Status{} : EngineRefused();
}

}  // namespace

Status WhitenPreview(const ChainFrame& chain, const FramePlan& plan) {
  const std::vector<WhiteningJob>& jobs = plan.whitening.jobs;
  if (jobs.empty()) return {};
  if (Status status = chain.setup.Preview(chain.frame.width(), chain.frame.height(), true);
      !status.ok()) {
    return status;
  }
  chain.setup.SetPreviewFilters(GL_NEAREST);
  chain.memory.work.Resize(chain.frame);
  for (Job begin = jobs.begin(); begin != jobs.end();) {
    const Job end = GroupEnd(begin, jobs.end());
    if (Status status = WhitenGroup(chain, plan, begin, end); !status.ok()) return status;
    for (; begin != end; ++begin) {
      Blend(chain.memory.work, begin->mask, &chain.frame, &chain.memory.weights);
    }
  }
  return {};
}

Status SlimPreview(const ChainFrame& chain, const FramePlan& plan) {
  if (Status status = PrepareSlimming(chain); !status.ok()) return status;
  if (ChangesCirclesOnly(plan)) return Slim(chain, plan, chain.frame);
  PaddedFrame& work = chain.memory.work;
  if (chain.setup.has_colour()) {
    work.Resize(chain.frame);
  } else {
    work.Copy(chain.frame);
  }
  if (Status status = Slim(chain, plan, work); !status.ok()) return status;
  // The engine draws the warp of a small face over the whole frame, where rounding moves pixels.
  for (const FacePlan& face : plan.faces) CopyCircle(work, face, &chain.frame);
  return {};
}

bool ChangesCirclesOnly(const FramePlan& plan) {
  return plan.chain == Chain::Preview && !plan.whitens;
}

}  // namespace lumora
