// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/gl/chains.h"

#include <vector>

#include "lumora/platform/gl_api.h"
#include "pipeline/backends/gl/engine_faults.h"
#include "pipeline/backends/gl/merge.h"
#include "pipeline/plan/frame_plan.h"
#include "pipeline/plan/warp_geometry.h"

namespace lumora {
namespace {

/// Slims `work`, which holds the frame, in place. The engine writes the luma over its input and the
/// chroma to its output: the frame again.
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

}  // namespace

Status SlimPreview(const ChainFrame& chain, const FramePlan& plan) {
  PaddedFrame& frame = chain.frame;
  if (Status status = chain.setup.Preview(frame.width(), frame.height(), false); !status.ok()) {
    return status;
  }
  chain.setup.SetPreviewFilters(GL_LINEAR);
  if (ChangesCirclesOnly(plan)) return Slim(chain, plan, frame);
  PaddedFrame& work = chain.memory.work;
  work.Copy(frame);
  if (Status status = Slim(chain, plan, work); !status.ok()) return status;
  // The engine draws the warp of a small face over the whole frame, where rounding moves pixels.
  for (const FacePlan& face : plan.faces) CopyCircle(work, face, &frame);
  return {};
}

bool ChangesCirclesOnly(const FramePlan& plan) {
  return plan.chain == Chain::Preview && !plan.whitens;
}

}  // namespace lumora
