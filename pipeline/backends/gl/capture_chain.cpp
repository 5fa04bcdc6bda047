// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/gl/chains.h"

#include "pipeline/backends/gl/engine_faults.h"
#include "pipeline/backends/gl/merge.h"
#include "pipeline/plan/frame_plan.h"
#include "pipeline/plan/warp_geometry.h"

namespace lumora {
Status WhitenCapture(const ChainFrame& chain, const FramePlan& plan) {
  if (plan.whitening.jobs.empty()) return {};
  android::GPUBeautyFace& engine = chain.setup.engine();
  PaddedFrame& frame = chain.frame;
  PaddedFrame& work = chain.memory.work;
  const CaptureScope capture(chain.setup);
  if (Status status = chain.setup.CaptureBlocks(frame.width(), frame.height()); !status.ok()) {
    return status;
  }
  work.Resize(frame);
  for (const WhiteningJob& job : plan.whitening.jobs) {
    FACE_INFO_t record = plan.faces[job.face].record;
    const bool done = engine.DoFaceWhiteningLarge(frame.luma(), frame.chroma(), &record, 1,
                                                  job.intensity_level, job.saturation_level,
                                                  EngineEffect(plan.whitening.effect)) != 0 &&
                      engine.CopyMemYUVfromSrcTextureLarge(work.luma(), work.chroma(), 0, 1) != 0;
    if (!done) return EngineRefused();
    Blend(work, {}, job.mask, &frame, &chain.memory.weights);
  }
  return {};
}

Status SlimCapture(const ChainFrame& chain, const FramePlan& plan) {
  android::GPUBeautyFace& engine = chain.setup.engine();
  PaddedFrame& frame = chain.frame;
  PaddedFrame& work = chain.memory.work;
  const CaptureScope capture(chain.setup);
  if (Status status = chain.setup.CapturePlanes(frame); !status.ok()) return status;
  work.Resize(frame);
  for (const FacePlan& face : plan.faces) {
    FACE_INFO_t record = face.record;
    engine.FaceProcessLarge(work.luma(), work.chroma(), frame.width(), frame.height(), 0, &record,
                            1, kBeautyLevel);
    CopyCircle(work, face, &frame);
    // The engine reads every face from the plane textures: the next one has to find this one's
    // result there.
    chain.setup.UpdatePlanes(frame, face.bounds.y, face.bounds.height);
  }
  return {};
}

}  // namespace lumora
