// SPDX-License-Identifier: Apache-2.0
// Frames to texels on the CPU.
#include <libyuv/convert_argb.h>
#include <libyuv/planar_functions.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <opencv2/imgproc.hpp>

#include "bench/counters.h"
#include "bench/families.h"
#include "bench/limit_kernels.h"
#include "bench/scene.h"
#include "lumora/convert/sp2yuvxs.h"
#include "lumora/convert/sp2yuvxs_scalar.h"

namespace lumora::bench {
namespace {

/// A frame, its texels, and the planes that MergeARGBPlane takes. Both sides write the same texels:
/// two destinations would lie differently in the caches.
struct Work {
  explicit Work(Size size_in)
      : size(size_in),
        frame(RandomFrame(size)),
        texels(size.Pixels() * 4),
        planes(size.Pixels() * 2) {
    std::memcpy(planes.data(), frame.data(), size.Pixels());
    std::memcpy(planes.data() + size.Pixels(), frame.data(), size.Pixels());
  }

  void Expand() const {
    sp2yuvxs(texels.data(), size.width, frame.data(), size.width, size.height, 0, 0, size.width,
             size.height);
  }

  Size size;
  Buffer frame, texels, planes;
};

/// The definition of the texels, a byte at a time.
void ExpandPlainly(const Work& work, uint8_t* texels) {
  const auto width = static_cast<size_t>(work.size.width);
  const uint8_t* const luma = work.frame.data();
  for (size_t i = 0; i < work.size.Pixels(); ++i) {
    const size_t row = i / width;
    const uint8_t* const pair =
        luma + work.size.Pixels() + row / 2 * width + (i % width & ~size_t{1});
    const uint8_t texel[4] = {luma[i], pair[0], pair[1], 255};
    std::memcpy(texels + 4 * i, texel, 4);
  }
}

void RequireTexels(const Work& work) {
  Buffer expected(work.size.Pixels() * 4);
  ExpandPlainly(work, expected.data());
  Require(std::memcmp(expected.data(), work.texels.data(), expected.size()) == 0,
          "the texels are wrong");
}

std::vector<Side> Limits(const std::shared_ptr<Work>& work) {
  std::vector<Side> sides;
  for (const LimitKernel kernel : LimitKernels()) {
    sides.push_back({[work, kernel] {
                       kernel(work->texels.data(), work->frame.data(), work->size.width,
                              work->size.height);
                     },
                     {}});
  }
  return sides;
}

void NV21ToABGR(const Work& work) {
  const int width = work.size.width;
  libyuv::NV21ToABGR(work.frame.data(), width, work.frame.data() + work.size.Pixels(), width,
                     work.texels.data(), 4 * width, width, work.size.height);
}

/// Three planes of the frame's size, interleaved with 255: the layout of the texels, from more
/// bytes.
void MergePlanes(const Work& work) {
  const int width = work.size.width;
  const uint8_t* const planes = work.planes.data();
  libyuv::MergeARGBPlane(planes + work.size.Pixels(), width, planes, width, work.frame.data(),
                         width, nullptr, 0, work.texels.data(), 4 * width, width, work.size.height);
}

void OpenCvToRgba(const Work& work) {
  const cv::Mat frame(work.size.height * 3 / 2, work.size.width, CV_8UC1, work.frame.data());
  cv::Mat texels(work.size.height, work.size.width, CV_8UC4, work.texels.data());
  cv::cvtColor(frame, texels, cv::COLOR_YUV2RGBA_NV21);
}

/// The scalar form over a whole frame, row by row.
void ExpandScalar(const Work& work) {
  const auto width = static_cast<size_t>(work.size.width);
  const auto blocks = static_cast<std::ptrdiff_t>(width) / kBlockPixels;
  for (size_t row = 0; row < static_cast<size_t>(work.size.height); ++row) {
    ExpandRowScalar(work.texels.data() + 4 * width * row, work.frame.data() + width * row,
                    work.frame.data() + work.size.Pixels() + row / 2 * width, blocks);
  }
}

using Kernel = void (*)(const Work&);

void Compare(benchmark::State& state, Size size, Kernel ours, const std::vector<Kernel>& peers) {
  cv::setNumThreads(1);
  const auto work = std::make_shared<Work>(size);
  ours(*work);
  RequireTexels(*work);
  std::vector<Side> anchors;
  for (const Kernel peer : peers) anchors.push_back({[work, peer] { peer(*work); }, {}});
  if (peers.empty()) anchors = Limits(work);
  Plan plan;
  plan.sample_ms = 5;
  plan.rounds = 31;
  ReportPair(state, Ratio::kSpeed, {[work, ours] { ours(*work); }, {}}, anchors, plan);
}

void Expand(const Work& work) {
  work.Expand();
}

}  // namespace

void RegisterConvert() {
  const struct {
    const char* name;
    Kernel ours;
    std::vector<Kernel> peers;  // none: the limit kernels
  } rows[] = {{"limit", Expand, {}},
              {"nv21_to_abgr", Expand, {NV21ToABGR}},
              {"merge_argb", Expand, {MergePlanes}},
              {"opencv", Expand, {OpenCvToRgba}},
              {"scalar", ExpandScalar, {}}};
  for (const auto& row : rows) {
    for (const Size size : {kVga, k720, k1080, k12Megapixels}) {
      Register(std::string("convert/") + row.name + "/" + size.Text(),
               [row, size](benchmark::State& state) { Compare(state, size, row.ours, row.peers); });
    }
  }
}

}  // namespace lumora::bench
