// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/cpu/whitening.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>

#include "lumora/geometry/rounding.h"
#include "lumora/geometry/whitening.h"
#include "pipeline/backends/cpu/kernels/whiten_rows.h"
#include "pipeline/backends/cpu/tile.h"
#include "pipeline/frames/frame_copy.h"
#include "pipeline/frames/frame_layout.h"
#include "pipeline/plan/face_means.h"
#include "pipeline/support/angles.h"

namespace lumora::cpu {
namespace {

/// Room for the columns of a mask, in whole groups of any kernel's.
size_t ColumnsOf(const SkinMask& mask) {
  return static_cast<size_t>(RoundUpTo32(mask.bounds().width));
}

WhitenTone ToneOf(const WhiteningJob& job, const WhiteningShifts& shifts, Chain chain) {
  const Ellipse& outer = job.outer;
  const double angle = static_cast<double>(outer.angle_degrees) / kDegreesPerRadian;
  const auto cosine = static_cast<float>(std::cos(angle));
  const auto sine = static_cast<float>(std::sin(angle));
  WhitenTone tone{};
  tone.along_x = cosine / outer.half_along;
  tone.along_y = sine / outer.half_along;
  tone.across_x = -sine / outer.half_across;
  tone.across_y = cosine / outer.half_across;
  tone.gain = static_cast<float>(std::exp(kLogitSlope * static_cast<double>(shifts.intensity)));
  tone.saturation = shifts.saturation / 255;
  tone.darkest = job.mask.darkest();
  tone.luma_scale = 1 / (job.mask.lit() - job.mask.darkest());
  tone.round_rgb = chain == Chain::Preview;  // whose colours go through an image on their way
  return tone;
}

/// What the levels of a face come to in the frame as it is.
WhiteningShifts ShiftsIn(const ConstFrameView& frame, const FACE_INFO_t& record,
                         const WhiteningJob& job) {
  const FaceMeans means = MeansOf(frame, MeasureFace(record));
  return ComputeShifts({means.intensity, means.saturation, 1}, job.intensity_level,
                       job.saturation_level);
}

/// Two rows of a frame as kernels take them: what lies beyond an odd border repeats it.
struct RowPair {
  uint8_t* luma[2];
  uint8_t* chroma;
};

void LoadRows(const ConstFrameView& frame, const PixelRectangle& part, const RowPair& to) {
  FrameView view;
  view.format = PixelFormat::NV21;
  view.width = part.width;
  view.height = part.height;
  view.planes = {to.luma[0], to.chroma, nullptr};
  view.strides = {to.luma[1] - to.luma[0], 2 * ChromaSize(part.width), 0};
  CopyFrame(PartOf(frame, part), view);
  if (part.width % 2 != 0) {
    for (uint8_t* const row : to.luma) row[part.width] = row[part.width - 1];
  }
  if (part.height == 1) {
    std::memcpy(to.luma[1], to.luma[0], static_cast<size_t>(RoundUpToEven(part.width)));
  }
}

void StoreRows(const RowPair& from, const PixelRectangle& part, const FrameView& frame) {
  for (int row = 0; row < part.height; ++row) {
    std::memcpy(frame.planes[0] + (part.y + row) * frame.strides[0] + part.x, from.luma[row],
                static_cast<size_t>(part.width));
  }
  const int first = part.x / 2;
  StoreChromaPairs(from.chroma, part.y / 2, {first, first + ChromaSize(part.width)}, frame);
}

/// The columns of a part that are not 0 in either row, as even numbers: what has to be touched.
RowSpan HeldBy(const MaskRow& upper, const MaskRow& lower, int width) {
  const auto joined = [](const RowSpan& a, const RowSpan& b) {
    if (a.begin == a.end) return b;
    if (b.begin == b.end) return a;
    return RowSpan{std::min(a.begin, b.begin), std::max(a.end, b.end)};
  };
  const RowSpan both = joined(upper.held, lower.held);
  return {both.begin & ~1, std::min((both.end + 1) & ~1, width)};
}

}  // namespace

void Whitening::Prepare(const FramePlan& plan, const Workers& workers) {
  for (const WhiteningJob& job : plan.whitening.jobs) {
    columns_ = std::max(columns_, ColumnsOf(job.mask));
  }
  const size_t rows = columns_ * static_cast<size_t>(workers.threads());
  weights_.resize(std::max(weights_.size(), 2 * rows));
  samples_.resize(std::max(samples_.size(), 3 * rows));
  taps_.Reserve(columns_ + kWhitenColumns);
}

void Whitening::Draw(const FramePlan& plan, const FrameView& frame, Workers& workers) {
  const std::vector<WhiteningJob>& jobs = plan.whitening.jobs;
  for (size_t i = 0; i < jobs.size(); ++i) {
    const WhiteningJob& job = jobs[i];
    // A face that lies over others is measured as they have left it.
    const bool is_over = std::any_of(jobs.begin(), jobs.begin() + static_cast<std::ptrdiff_t>(i),
                                     [&job](const WhiteningJob& earlier) {
                                       return Meet(earlier.mask.bounds(), job.mask.bounds());
                                     });
    const WhiteningShifts shifts =
        is_over ? ShiftsIn(AsConst(frame), plan.faces[job.face].record, job) : job.shifts;
    DrawFace(job, shifts, plan.chain, frame, workers);
  }
}

void Whitening::DrawFace(const WhiteningJob& job, const WhiteningShifts& shifts, Chain chain,
                         const FrameView& frame, Workers& workers) {
  const PixelRectangle bounds = CutToImage(job.mask.bounds(), frame.width, frame.height);
  if (IsEmpty(bounds)) return;
  const WhitenTone tone = ToneOf(job, shifts, chain);
  taps_.Set(job.mask.RowAt(bounds.y).step, ColumnsOf(job.mask) + kWhitenColumns);
  workers.Run((bounds.height + 1) / 2, [&](int pair, int worker) {
    const auto offset = static_cast<size_t>(worker) * columns_;
    float* const weights[2] = {weights_.data() + 2 * offset,
                               weights_.data() + 2 * offset + columns_};
    uint8_t* const samples = samples_.data() + 3 * offset;
    const RowPair memory = {{samples, samples + columns_}, samples + 2 * columns_};
    const int y = bounds.y + 2 * pair;
    const MaskRow mask_rows[2] = {job.mask.RowAt(y), job.mask.RowAt(y + 1)};
    const RowSpan held = HeldBy(mask_rows[0], mask_rows[1], bounds.width);
    if (held.begin >= held.end) return;
    const int groups = (held.end - held.begin + kWhitenColumns - 1) / kWhitenColumns;
    for (int row = 0; row < 2; ++row) {
      MaskWeights(mask_rows[row], taps_, {held.begin, held.begin + groups * kWhitenColumns},
                  weights[row]);
    }
    const PixelRectangle part = {bounds.x + held.begin, y, held.end - held.begin,
                                 std::min(2, bounds.y + bounds.height - y)};
    LoadRows(AsConst(frame), part, memory);
    if (part.width % 2 != 0) {
      for (float* const row : weights) row[part.width] = row[part.width - 1];
    }
    WhitenRows rows{};
    rows.x = static_cast<float>(part.x) + 0.5f - job.outer.centre.x;
    rows.y = static_cast<float>(part.y) + 0.5f - job.outer.centre.y;
    rows.columns = groups * kWhitenColumns;
    rows.chroma = memory.chroma;
    for (int row = 0; row < 2; ++row) {
      rows.weights[row] = weights[row];
      rows.luma[row] = memory.luma[row];
    }
    DrawWhitening(tone, rows);
    StoreRows(memory, part, frame);
  });
}

}  // namespace lumora::cpu
